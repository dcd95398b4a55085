#pragma once

#include <pthread.h>
#include <sstream>
#include <vector>

#include "Platform/Cim/ITeskRepository.h"
#include "Platform/Http/TSKGenericHTTPIStream.h"
#include "Platform/Http/TSKGenericHTTPOStream.h"
#include "Platform/Http/TSKHTTPRequest.h"
#include "Platform/ProviderFramework/Provider.h"

/// Publishes a WSDL 1.1 document and an XML Schema document for every class that the object manager
/// holds.
///
/// There is one object in a process; the library makes it at the first call of
/// getTeskWsdlWebProvider() and keeps it. All of its state is the base class's.
///
/// Thread safety: as the base class's.
class WsdlWebProvider : public urma::pf::Provider {
  public:
    /// The one provider object; made at the first call, null after it was deleted.
    /// Errors: std::bad_alloc; a later call tries again.
    static WsdlWebProvider* getInstance();
    using urma::pf::Provider::getInstance;

    /// Deletes the one provider object too, when that is another one.
    ~WsdlWebProvider() override;

    /// Has no transactions: null.
    TSKSmrPtr<ITeskTransaction> startTransaction(TSKSmrPtr<TeskTransactionInfo> info) override;
    void endTransaction(TSKSmrPtr<ITeskTransaction> transaction) override;

    /// Has no observers: null.
    TSKSmrPtr<ITeskValue> deregisterObserver(TSKSmrPtr<ITeskInstanceName> instance,
                                             TSKSmrPtr<ITeskSubscriber> subscriber,
                                             ITeskIndication::IndicationType type,
                                             TSKSmrPtr<ITeskSubscriptionFilter> filter,
                                             TSKSmrPtr<ITeskTransaction> transaction) override;

    /// Responds to a request of an authenticated caller; see process(). Reads no body, and leaves
    /// the flag as it is.
    /// Errors: TSKHTTPException with kAuthenticationFailed for any other caller, to which only the
    /// authenticator may have written; what process() throws.
    void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& flag,
                            TSKSmrPtr<ITeskTransaction> transaction) override;
    using urma::pf::Provider::processHTTPRequest;

    void startup() override;

    /// Registers "/" and its name for every namespace of the object manager.
    /// Errors: TSKNullPointerException where no plug-in manager is installed.
    void postStartup() override;

    void shutdown() override;

    /// The version of the platform.
    bool getVersion(TSKString& version) override;

    TSKString getProviderName() override;
    void debugDump(unsigned int level, std::ostream& stream) override;
    void logAuditInfo(TSKSmrPtr<ITeskValue> result, TSKSmrPtr<ITeskTransaction> transaction,
                      TSKSmrPtr<ITeskInstanceName> object, TSKString operation) override;

    /// A virtual operation of its own, not the base class's, which takes a constant text.
    virtual void setWorkArea(TSKString& path);
    using urma::pf::Provider::setWorkArea;

    /// Null: documents are made from the plug-in manager's repository.
    TSKSmrPtr<ITeskRepository> getTeskRepository();

  private:
    WsdlWebProvider() = default;

    static void _createInstance();

    static WsdlWebProvider* singleton_Instance;
    static pthread_once_t once;
};

/// Writes the whole response to a request: the document that its path names, as
///
///     /NAMESPACE/CLASS.wsdl    the WSDL document of a class
///     /NAMESPACE/CLASS.xsd     its XML Schema document
///     /CLASS.wsdl, /CLASS.xsd  those of a class of the namespace "interop"
///     …STSService.wsdl         the file of that name in the installation's directory "providers"
///
/// A path with "/xsd" anywhere, in lower case, asks for the schema whatever its ending. A path that
/// ends with ".xsd" in upper case asks for the WSDL document of a class with that ending in its
/// name.
///
/// The response is "404" "File Not Found" without a body where there is no such document, and "500"
/// "Internal Server Error" where there is no plug-in manager. Documents name the host by the
/// request's header field "Host", or by the client's address where there is none. The document is
/// complete before anything is written.
///
/// Errors: what the host's objects throw, and std::bad_alloc. A TeskBaseException of the class
/// lookup is no error but a document that is not there. Most exceptions come before anything is
/// written. Where the stream itself throws, it may hold a part of the response; where there is no
/// memory for the last line of the log, it holds the whole.
///
/// Thread safety: may be used by several threads at once, each with a request and a stream of its
/// own; also while the process runs its exit handlers.
void process(TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr);

/// Reads a request path, in lower case and without the spaces at the ends of each part: sets
/// `cimNS` to what stands between its first and its last "/", and appends what stands between the
/// last "/" and the first extension to `classNames`; to the end of the path where the extension is
/// not found behind the "/". The path begins with "/"; what stands before the first one is lost.
/// Returns false, and changes nothing, when the path has no "/" or ends, in any case, neither with
/// ".wsdl" nor with ".xsd".
[[nodiscard]] bool getUserInput(TSKString& cimNS, std::vector<TSKString>& classNames,
                                const TSKString& uri);

/// Copies a file to a stream. A stream that nothing was copied to, for instance because the file
/// cannot be opened, or not all, has failed then (std::ios_base::failbit).
void outputFile(const TSKString& fullPath, std::stringstream& ostr);

/// Whether a path holds "/wsdl".
[[nodiscard]] bool isWsdlUri(const TSKString& uri);

/// Appends the pieces of `src` between the separators to `values`, without the spaces around them
/// and without the empty ones. A rest that begins with a separator is not split any further.
void tokenize(std::vector<TSKString>& values, const TSKString& src, const TSKString& seperator);

/// The library's factory, called by the plug-in manager. The object stays the library's.
/// Errors: as WsdlWebProvider::getInstance().
extern "C" __attribute__((visibility("default"))) WsdlWebProvider* getTeskWsdlWebProvider();

#include "Providers/WsdlWebProvider/WsdlWebProvider.h"

#include <fstream>
#include <string_view>
#include <utility>

#include "Platform/Http/TSKHTTPException.h"
#include "Platform/Http/TSKHTTPResponse.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/ProviderFramework/TeskProviderGetDllVersion.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Platform/ProviderFramework/URMAConfigManager.h"
#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TSKValSlistIterator.h"
#include "Platform/Util/TeskBaseException.h"
#include "Providers/WsdlWebProvider/WsdlUtil.h"

namespace {

constexpr const char* kProviderName = "WsdlWebProvider";

// By number, since the names are each host's own.
constexpr auto kError = static_cast<TeskTraceLog::Severity>(1);
constexpr auto kInformation = static_cast<TeskTraceLog::Severity>(3);
constexpr auto kTrace = static_cast<TeskTraceLog::Severity>(4);

void log(const char* component, const TSKString& message, TeskTraceLog::Severity severity) {
    TSKLog::log(component, message, severity, static_cast<TeskTraceLog::Verbosity>(2), 0,
                TSKLog::CIMOMLOG);
}

void logLifeCycle(const TSKString& message) {
    log(kProviderName, message, kInformation);
}

void logRequest(const TSKString& message, TeskTraceLog::Severity severity) {
    log("WsdlAdapter::processInput", message, severity);
}

constexpr const char* kWsdlExtension = ".wsdl";
constexpr const char* kXsdExtension = ".xsd";
constexpr const char* kStaticDescription = "STSService.wsdl";
constexpr const char* kDefaultNamespace = "interop";

// How the search for the document of a request ended.
enum class Outcome { kFound, kNotFound, kNoManager };

Outcome copyStaticDescription(std::stringstream& document) {
    try {
        TSKString path = "providers";
        URMAConfigManager::cvtToAbsolutePath(path);
        outputFile(path + "/" + kStaticDescription, document);
        // Where nothing could be copied the document is empty, but it is never cut short.
        if (document.fail() && !document.view().empty())
            throw std::ios_base::failure(kStaticDescription);
        return Outcome::kFound;
    } catch (...) {
        logRequest("Exception while reading from providers/STSService.wsdl", kError);
        return Outcome::kNotFound;
    }
}

// The address of the service as the client knows it, with "/" at the end.
TSKString serviceAddress(TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
    TSKString address = "http://";
    if (const TSKString* host = request.getHost()) {
        address += *host;
    } else {
        TSKString peerHost;
        TSKString peerPort;
        ostr.getPeerAddressString(peerHost, peerPort);
        address += peerHost;
    }
    address += "/";
    return address;
}

struct StatusTexts {
    TSKString STR_OK_CODE = "200";
    TSKString STR_OK = "OK";
    TSKString STR_FILE_NOT_FOUND_CODE = "404";
    TSKString STR_FILE_NOT_FOUND = "File Not Found";
    TSKString STR_INTERNAL_SERVER_ERROR_CODE = "500";
    TSKString STR_INTERNAL_SERVER_ERROR = "Internal Server Error";
};

// Made at the first call and never destroyed: other threads may still serve requests while the
// process runs its exit handlers.
const StatusTexts& statusTexts() {
    static const StatusTexts& texts = *new StatusTexts;
    return texts;
}

// The classes that are found; null when none is asked for.
TSKSmrPtr<WsdlUtil::ClassList> findClasses(const ITeskRepository& repository,
                                           const TSKString& cimNS,
                                           const std::vector<TSKString>& classNames) {
    if (classNames.empty())
        return {};
    TSKSmrPtr<WsdlUtil::ClassList> classes(new WsdlUtil::ClassList);
    for (const TSKString& className : classNames) {
        try {
            if (TSKSmrPtr<ITeskClass> found = repository.getClass(cimNS, className))
                classes->append(std::move(found));
        } catch (const TeskBaseException& exception) {
            TSKString code;
            code.itoa(exception.getErrorCode(), 10);
            logRequest("Exception while writing response. err=" + code, kError);
        }
    }
    return classes;
}

bool isSchemaRequest(const TSKString& uri) {
    return uri.endsWith(kXsdExtension, 0) || uri.contains("/xsd", 0);
}

Outcome generateDocument(TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr,
                         std::stringstream& document) {
    const TSKString& uri = request.getUri();
    TSKString cimNS;
    std::vector<TSKString> classNames;
    if (!getUserInput(cimNS, classNames, uri))
        return Outcome::kNotFound;
    if (cimNS.length() == 0)
        cimNS = kDefaultNamespace;

    const auto manager = TeskProviderPluginManager::getTeskProviderPluginManager();
    const TSKString url = serviceAddress(request, ostr) + cimNS + "/";
    if (!manager)
        return Outcome::kNoManager;
    const TSKSmrPtr<ITeskRepository> repository = manager->getRepository();
    if (!repository)
        return Outcome::kNotFound;

    document << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    const auto classes = findClasses(*repository, cimNS, classNames);
    if (!classes || classes->entries() == 0)
        return Outcome::kNotFound;
    // The address of a schema has the namespace in it; a WSDL document is told of both.
    const bool written = isSchemaRequest(uri)
                             ? WsdlUtil::streamXsdDefinitions(document, url, classes) != 0
                             : WsdlUtil::streamDefinitions(document, serviceAddress(request, ostr),
                                                           cimNS, classes) != 0;
    return written ? Outcome::kFound : Outcome::kNotFound;
}

}  // namespace

WsdlWebProvider* WsdlWebProvider::singleton_Instance = nullptr;
pthread_once_t WsdlWebProvider::once = PTHREAD_ONCE_INIT;

WsdlWebProvider* getTeskWsdlWebProvider() {
    logLifeCycle("getTeskWsdlWebProvider() Called!");
    return WsdlWebProvider::getInstance();
}

WsdlWebProvider* WsdlWebProvider::getInstance() {
    pthread_once(&once, _createInstance);
    return singleton_Instance;
}

void WsdlWebProvider::_createInstance() {
    if (singleton_Instance == nullptr)
        singleton_Instance = new WsdlWebProvider;
}

WsdlWebProvider::~WsdlWebProvider() {
    // Cleared first: deleting the one object comes back here.
    const WsdlWebProvider* instance = std::exchange(singleton_Instance, nullptr);
    if (instance != this)
        delete instance;
}

TSKSmrPtr<ITeskTransaction> WsdlWebProvider::startTransaction(
    TSKSmrPtr<TeskTransactionInfo> /*info*/) {
    logLifeCycle("startTransaction called");
    return {};
}

void WsdlWebProvider::endTransaction(TSKSmrPtr<ITeskTransaction> /*transaction*/) {
    logLifeCycle("endTransaction called");
}

TSKSmrPtr<ITeskValue> WsdlWebProvider::deregisterObserver(
    TSKSmrPtr<ITeskInstanceName> /*instance*/, TSKSmrPtr<ITeskSubscriber> /*subscriber*/,
    ITeskIndication::IndicationType /*type*/, TSKSmrPtr<ITeskSubscriptionFilter> /*filter*/,
    TSKSmrPtr<ITeskTransaction> /*transaction*/) {
    return {};
}

void WsdlWebProvider::processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                                         TSKHTTPRequest& request, bool& /*flag*/,
                                         TSKSmrPtr<ITeskTransaction> /*transaction*/) {
    TSKSmrPtr<urma::security::ISecurityToken> securityToken;
    request.setContentLength(0);  // first of all, so that no one waits for a body
    if (!AuthenticationHelper::authenticateRequest(request, istr, ostr, securityToken))
        throw TSKHTTPException("WsdlWebProvider::processHTTPRequest", "Authentication failed", 4);
    process(request, ostr);
}

void WsdlWebProvider::startup() {
    logLifeCycle("Startup called");
}

void WsdlWebProvider::postStartup() {
    logLifeCycle("Post Startup called");
    const auto manager = TeskProviderPluginManager::getTeskProviderPluginManager();
    const TSKValSlist<TSKString> namespaces = manager->getNamespaceList();
    TSKValSlistIterator<TSKString> next(namespaces);
    while (next()) {
        const TSKString uri = "/" + next.key();
        logLifeCycle("dynamically registering URI" + uri);
        manager->registerURI(kProviderName, uri);
    }
}

void WsdlWebProvider::shutdown() {
    logLifeCycle("Shutdown called");
}

bool WsdlWebProvider::getVersion(TSKString& version) {
    return TeskProviderGetDllVersion(version);
}

TSKString WsdlWebProvider::getProviderName() {
    return kProviderName;
}

void WsdlWebProvider::debugDump(unsigned int /*level*/, std::ostream& /*stream*/) {}

void WsdlWebProvider::logAuditInfo(TSKSmrPtr<ITeskValue> /*result*/,
                                   TSKSmrPtr<ITeskTransaction> /*transaction*/,
                                   TSKSmrPtr<ITeskInstanceName> /*object*/,
                                   TSKString /*operation*/) {}

void WsdlWebProvider::setWorkArea(TSKString& /*path*/) {}

TSKSmrPtr<ITeskRepository> WsdlWebProvider::getTeskRepository() {
    return {};
}

void process(TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
    logRequest("Request received", kTrace);
    const StatusTexts& texts = statusTexts();
    std::stringstream ss;
    ss.exceptions(std::ios_base::badbit);  // so that no document is sent in part
    const Outcome outcome = request.getUri().endsWith(kStaticDescription, 0)
                                ? copyStaticDescription(ss)
                                : generateDocument(request, ostr, ss);
    TSKString status = texts.STR_FILE_NOT_FOUND_CODE;
    TSKString reason = texts.STR_FILE_NOT_FOUND;
    if (outcome == Outcome::kFound) {
        status = texts.STR_OK_CODE;
        reason = texts.STR_OK;
    } else if (outcome == Outcome::kNoManager) {
        status = texts.STR_INTERNAL_SERVER_ERROR_CODE;
        reason = texts.STR_INTERNAL_SERVER_ERROR;
    }

    TSKHTTPResponse response(request.getProtocol(), status, reason);
    response.setHeaderField("Connection", "close", false);
    if (outcome == Outcome::kFound) {
        const std::string_view document = ss.view();
        response.setContentLength(document.size());
        response.setContentType("text/xml");
        response.writeResponseTo(ostr);
        ostr.write(document.data(), document.size());
    } else {
        response.setContentLength(0);
        response.writeResponseTo(ostr);
    }
    logRequest("Request processing completed normally", kTrace);
}

bool getUserInput(TSKString& cimNS, std::vector<TSKString>& classNames, const TSKString& uri) {
    TSKString myUri = uri;
    myUri.toLower();
    if (!myUri.endsWith(kWsdlExtension, 0) && !myUri.endsWith(kXsdExtension, 0))
        return false;
    const long pos = myUri.reverseFind('/');
    const long iPos = myUri.find('/');
    if (pos < 0)
        return false;

    const long start = iPos + 1;
    const long end = pos == 0 ? 0 : pos - 1;
    cimNS = myUri.substr(static_cast<unsigned long>(start),
                         static_cast<unsigned long>(end - start + 1));
    cimNS.trim(" ");

    // Only ".xsd" in lower case asks for a schema. Where the extension is not found behind the
    // last "/", the length is negative and the name runs to the end of the path.
    const bool isXsdRequest = uri.endsWith(kXsdExtension, 0);
    const long iDotWsdl = myUri.find(isXsdRequest ? kXsdExtension : kWsdlExtension, 0);
    TSKString tmpClassName = myUri.substr(static_cast<unsigned long>(pos + 1),
                                          static_cast<unsigned long>(iDotWsdl - pos - 1));
    tmpClassName.trim(" ");
    classNames.push_back(tmpClassName);
    return true;
}

void outputFile(const TSKString& fullPath, std::stringstream& ostr) {
    const std::ifstream file(fullPath.data());
    ostr << file.rdbuf();
}

bool isWsdlUri(const TSKString& uri) {
    return uri.contains("/wsdl", 0);
}

void tokenize(std::vector<TSKString>& values, const TSKString& src, const TSKString& seperator) {
    const auto appendPiece = [&](TSKString piece) {
        piece.trim(" ");
        if (piece.length() > 0)
            values.push_back(piece);
    };
    unsigned long start = 0;
    for (;;) {
        const long pos = src.find(seperator.data(), static_cast<int>(start));
        if (pos <= static_cast<long>(start)) {
            appendPiece(src.substr(start, src.length() - start));
            return;
        }
        const auto end = static_cast<unsigned long>(pos);
        appendPiece(src.substr(start, end - start));
        start = end + seperator.length();
    }
}

#pragma once

#include <iosfwd>

#include "Platform/Cim/ITeskClass.h"
#include "Platform/Cim/ITeskIndication.h"
#include "Platform/Cim/ITeskInstance.h"
#include "Platform/Cim/ITeskInstanceName.h"
#include "Platform/Cim/ITeskSubscriber.h"
#include "Platform/Cim/ITeskSubscriptionFilter.h"
#include "Platform/Cim/ITeskValue.h"
#include "Platform/Http/TSKGenericHTTPIStream.h"
#include "Platform/Http/TSKGenericHTTPOStream.h"
#include "Platform/Http/TSKHTTPRequest.h"
#include "Platform/Http/TSKHTTPResponse.h"
#include "Platform/ProviderFramework/ITeskInstanceManager.h"
#include "Platform/ProviderFramework/ITeskProviderContext.h"
#include "Platform/ProviderFramework/ITeskTransaction.h"
#include "Platform/ProviderFramework/TeskTransactionInfo.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"
#include "Platform/Util/TSKValSlist.h"

namespace urma::pf {

/// The base class of every provider plug-in.
///
/// A provider library libNAME.so exports `extern "C" NAME* getTeskNAME()`, which returns its one
/// provider object; Provider must be its first base class. The library keeps the ownership of the
/// object, the plug-in manager drives it: startup, postStartup, postStartupIsComplete, then
/// operations, at last shutdown.
///
/// A provider overrides what it offers. An operation that it leaves throws TeskBaseException with
/// CIM_ERR_NOT_SUPPORTED, so that nothing seems to have been done. Only what the object manager
/// tells a provider does nothing by default: the life cycle, its work area, its context, its
/// instance manager, dumps and audits.
///
/// The operations are those that an object manager may have a use for. `tesk` and the plug-in
/// manager call few of them: the life cycle, getProviderName and the processHTTPRequest that writes
/// the whole response. They never call the operations on classes and instances, and neither those
/// of transactions, observers, indications, work area and version nor the processHTTPRequest that
/// fills a response.
///
/// The virtual operations are part of the binary interface: their order is kept, new ones are added
/// at the end.
///
/// Thread safety: the life-cycle operations are called by one thread; all others may be called by
/// several threads at once, from the end of postStartup to the begin of shutdown.
class TESK_PLATFORM_EXPORT Provider {
  public:
    using Transaction = TSKSmrPtr<ITeskTransaction>;
    using InstanceList = TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskInstance>>>;
    using InstanceNameList = TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskInstanceName>>>;
    using ClassList = TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskClass>>>;
    using NameList = TSKSmrPtr<TSKValSlist<TSKString>>;
    using ParameterList = TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>>;

    Provider() noexcept = default;
    Provider(const Provider&) = delete;
    Provider& operator=(const Provider&) = delete;

    // Transactions. tesk never calls these; it passes null pointers for transactions.

    virtual TSKSmrPtr<ITeskTransaction> startTransaction(TSKSmrPtr<TeskTransactionInfo> info);
    virtual void endTransaction(TSKSmrPtr<ITeskTransaction> transaction);

    // Operations on classes and instances (DSP0200, "Intrinsic methods"). A null property list
    // stands for all properties. tesk never calls these.

    virtual void setProperty(TSKSmrPtr<ITeskInstanceName> instance, const TSKString& name,
                             TSKSmrPtr<ITeskValue> value, Transaction transaction);
    virtual InstanceNameList enumerateInstanceNames(const TSKString& nameSpace,
                                                    const TSKString& className,
                                                    Transaction transaction);
    virtual InstanceNameList referenceNames(TSKSmrPtr<ITeskInstanceName> instance,
                                            const TSKString& resultClass, const TSKString& role,
                                            Transaction transaction);
    virtual InstanceNameList associatorNames(TSKSmrPtr<ITeskInstanceName> instance,
                                             const TSKString& associationClass,
                                             const TSKString& resultClass, const TSKString& role,
                                             const TSKString& resultRole, Transaction transaction);
    virtual NameList enumerateClassNames(const TSKString& nameSpace, const TSKString& className,
                                         bool deepInheritance, Transaction transaction);
    virtual ClassList enumerateClasses(const TSKString& nameSpace, const TSKString& className,
                                       bool deepInheritance, Transaction transaction);
    virtual TSKSmrPtr<ITeskClass> getClass(const TSKString& nameSpace, const TSKString& className,
                                           Transaction transaction);
    virtual TSKSmrPtr<ITeskInstance> getInstance(TSKSmrPtr<ITeskInstanceName> instance,
                                                 Transaction transaction);
    virtual TSKSmrPtr<ITeskInstance> getInstance(TSKSmrPtr<ITeskInstanceName> instance,
                                                 NameList properties, Transaction transaction);
    virtual InstanceList enumerateInstances(const TSKString& nameSpace, const TSKString& className,
                                            Transaction transaction);
    virtual InstanceList enumerateInstances(const TSKString& nameSpace, const TSKString& className,
                                            NameList properties, Transaction transaction);
    virtual InstanceList references(TSKSmrPtr<ITeskInstanceName> instance,
                                    const TSKString& resultClass, const TSKString& role,
                                    Transaction transaction);
    virtual InstanceList references(TSKSmrPtr<ITeskInstanceName> instance,
                                    const TSKString& resultClass, const TSKString& role,
                                    NameList properties, Transaction transaction);
    virtual InstanceList associators(TSKSmrPtr<ITeskInstanceName> instance,
                                     const TSKString& associationClass,
                                     const TSKString& resultClass, const TSKString& role,
                                     const TSKString& resultRole, Transaction transaction);
    virtual InstanceList associators(TSKSmrPtr<ITeskInstanceName> instance,
                                     const TSKString& associationClass,
                                     const TSKString& resultClass, const TSKString& role,
                                     const TSKString& resultRole, NameList properties,
                                     Transaction transaction);
    virtual TSKSmrPtr<ITeskInstanceName> createInstance(const TSKString& nameSpace,
                                                        TSKSmrPtr<ITeskInstance> instance,
                                                        Transaction transaction);
    virtual void deleteInstance(TSKSmrPtr<ITeskInstanceName> instance, Transaction transaction);
    virtual void modifyInstance(TSKSmrPtr<ITeskInstance> instance, NameList properties,
                                Transaction transaction);

    /// Returns the method's result and fills `output` with its output parameters.
    virtual TSKSmrPtr<ITeskValue> executeMethod(TSKSmrPtr<ITeskInstanceName> object,
                                                const TSKString& method, ParameterList input,
                                                ParameterList& output, Transaction transaction);

    // Observers of instances. tesk never calls these.

    virtual TSKSmrPtr<ITeskValue> registerObserver(TSKSmrPtr<ITeskInstanceName> instance,
                                                   TSKSmrPtr<ITeskSubscriber> subscriber,
                                                   ITeskIndication::IndicationType type,
                                                   TSKSmrPtr<ITeskSubscriptionFilter> filter,
                                                   TSKSmrPtr<ITeskTransaction> transaction);
    virtual TSKSmrPtr<ITeskValue> deregisterObserver(TSKSmrPtr<ITeskInstanceName> instance,
                                                     TSKSmrPtr<ITeskSubscriber> subscriber,
                                                     ITeskIndication::IndicationType type,
                                                     TSKSmrPtr<ITeskSubscriptionFilter> filter,
                                                     TSKSmrPtr<ITeskTransaction> transaction);

    // Requests under the URIs that the provider registered with the plug-in manager. The front end
    // turns what is thrown into a response; see TSKHTTPException.

    /// Fills `response`, the header section, and writes the body to `ostr`. `handled` is true when
    /// called; a provider sets it to false to leave the response to the front end. tesk never calls
    /// this one.
    virtual void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                                    TSKHTTPRequest& request, TSKHTTPResponse& response,
                                    bool& handled, TSKSmrPtr<ITeskTransaction> transaction);
    /// Writes the whole response, header section and body, to `ostr`; `handled` as above. tesk
    /// responds with 404 where it is false afterwards.
    virtual void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                                    TSKHTTPRequest& request, bool& handled,
                                    TSKSmrPtr<ITeskTransaction> transaction);

    // Life cycle.

    /// The object manager starts; other providers may not be there yet.
    virtual void startup();
    /// All providers have started. The time to register URIs.
    virtual void postStartup();
    /// Every provider has been through postStartup.
    virtual void postStartupIsComplete();
    /// The object manager ends; no operation is called any more.
    virtual void shutdown();

    /// For object managers that prepare a provider before startup. The plug-in manager here does
    /// not call it.
    virtual void initialize();

    /// Fills `version`; returns whether it is known. tesk never calls it.
    virtual bool getVersion(TSKString& version);
    /// The name that the provider registers its URIs under; unique among providers. Asked for
    /// when the provider is loaded, before startup; every provider overrides it.
    virtual TSKString getProviderName();

    /// Tells the provider of a directory that it may write to. tesk never calls it.
    virtual void setWorkArea(const TSKString& path);

    // Indications. tesk never calls these.

    virtual void addStaticSubscriber(TSKSmrPtr<ITeskSubscriber> subscriber,
                                     ITeskIndication::IndicationType type);
    virtual void removeStaticSubscriber(TSKSmrPtr<ITeskSubscriber> subscriber,
                                        ITeskIndication::IndicationType type);
    virtual void activateSubscription(TSKSmrPtr<ITeskSubscriber> subscriber,
                                      TSKSmrPtr<ITeskSubscriptionFilter> filter);
    virtual void deactivateSubscription(TSKSmrPtr<ITeskSubscriber> subscriber,
                                        TSKSmrPtr<ITeskSubscriptionFilter> filter);
    virtual void deliverIndication(TSKSmrPtr<ITeskIndication> indication);

    // Services of the object manager for this provider. tesk calls none of these and sets neither.

    virtual void setProviderContext(TSKSmrPtr<ITeskProviderContext> context);
    virtual TSKSmrPtr<ITeskProviderContext> getProviderContext();
    virtual void setInstanceManager(TSKSmrPtr<ITeskInstanceManager> manager);
    virtual TSKSmrPtr<ITeskInstanceManager> getInstanceManager();

    virtual bool hasActiveSubscribers();
    virtual TSKString getNextIndicationIdentifier();

    /// Writes what helps a developer to `stream`, in as much detail as `level` asks for. tesk never
    /// calls it.
    virtual void debugDump(unsigned int level, std::ostream& stream);

    virtual ~Provider();

    /// Records an operation for an audit: its result, its transaction, its object and its name.
    /// tesk never calls it.
    virtual void logAuditInfo(TSKSmrPtr<ITeskValue> result, TSKSmrPtr<ITeskTransaction> transaction,
                              TSKSmrPtr<ITeskInstanceName> object, TSKString operation);
};

}  // namespace urma::pf

#pragma once

#include <pthread.h>

#include "Platform/Cim/ITeskRepository.h"
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

    /// Null: requests are answered from the plug-in manager's repository.
    TSKSmrPtr<ITeskRepository> getTeskRepository();

  private:
    WsdlWebProvider() = default;

    static void _createInstance();

    static WsdlWebProvider* singleton_Instance;
    static pthread_once_t once;
};

/// The library's factory, called by the plug-in manager. The object stays the library's.
/// Errors: as WsdlWebProvider::getInstance().
extern "C" __attribute__((visibility("default"))) WsdlWebProvider* getTeskWsdlWebProvider();

#include "Providers/WsdlWebProvider/WsdlWebProvider.h"

#include <utility>

#include "Platform/ProviderFramework/TeskProviderGetDllVersion.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TSKValSlistIterator.h"

namespace {

constexpr const char* kProviderName = "WsdlWebProvider";

void logLifeCycle(const TSKString& message) {
    TSKLog::log(kProviderName, message, static_cast<TeskTraceLog::Severity>(3),
                static_cast<TeskTraceLog::Verbosity>(2), 0, TSKLog::CIMOMLOG);
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

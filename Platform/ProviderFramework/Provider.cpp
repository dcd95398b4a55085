#include "Platform/ProviderFramework/Provider.h"

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace urma::pf {

namespace {

[[noreturn]] void notSupported(const char* operation) {
    throw TeskBaseException(operation, "The provider does not support this operation",
                            CIM_ERR_NOT_SUPPORTED);
}

}  // namespace

TSKSmrPtr<ITeskTransaction> Provider::startTransaction(TSKSmrPtr<TeskTransactionInfo> /*info*/) {
    notSupported("Provider::startTransaction");
}

void Provider::endTransaction(TSKSmrPtr<ITeskTransaction> /*transaction*/) {
    notSupported("Provider::endTransaction");
}

void Provider::setProperty(TSKSmrPtr<ITeskInstanceName> /*instance*/, const TSKString& /*name*/,
                           TSKSmrPtr<ITeskValue> /*value*/, Transaction /*transaction*/) {
    notSupported("Provider::setProperty");
}

Provider::InstanceNameList Provider::enumerateInstanceNames(const TSKString& /*nameSpace*/,
                                                            const TSKString& /*className*/,
                                                            Transaction /*transaction*/) {
    notSupported("Provider::enumerateInstanceNames");
}

Provider::InstanceNameList Provider::referenceNames(TSKSmrPtr<ITeskInstanceName> /*instance*/,
                                                    const TSKString& /*resultClass*/,
                                                    const TSKString& /*role*/,
                                                    Transaction /*transaction*/) {
    notSupported("Provider::referenceNames");
}

Provider::InstanceNameList Provider::associatorNames(TSKSmrPtr<ITeskInstanceName> /*instance*/,
                                                     const TSKString& /*associationClass*/,
                                                     const TSKString& /*resultClass*/,
                                                     const TSKString& /*role*/,
                                                     const TSKString& /*resultRole*/,
                                                     Transaction /*transaction*/) {
    notSupported("Provider::associatorNames");
}

Provider::NameList Provider::enumerateClassNames(const TSKString& /*nameSpace*/,
                                                 const TSKString& /*className*/,
                                                 bool /*deepInheritance*/,
                                                 Transaction /*transaction*/) {
    notSupported("Provider::enumerateClassNames");
}

Provider::ClassList Provider::enumerateClasses(const TSKString& /*nameSpace*/,
                                               const TSKString& /*className*/,
                                               bool /*deepInheritance*/,
                                               Transaction /*transaction*/) {
    notSupported("Provider::enumerateClasses");
}

TSKSmrPtr<ITeskClass> Provider::getClass(const TSKString& /*nameSpace*/,
                                         const TSKString& /*className*/,
                                         Transaction /*transaction*/) {
    notSupported("Provider::getClass");
}

TSKSmrPtr<ITeskInstance> Provider::getInstance(TSKSmrPtr<ITeskInstanceName> /*instance*/,
                                               Transaction /*transaction*/) {
    notSupported("Provider::getInstance");
}

TSKSmrPtr<ITeskInstance> Provider::getInstance(TSKSmrPtr<ITeskInstanceName> /*instance*/,
                                               NameList /*properties*/,
                                               Transaction /*transaction*/) {
    notSupported("Provider::getInstance");
}

Provider::InstanceList Provider::enumerateInstances(const TSKString& /*nameSpace*/,
                                                    const TSKString& /*className*/,
                                                    Transaction /*transaction*/) {
    notSupported("Provider::enumerateInstances");
}

Provider::InstanceList Provider::enumerateInstances(const TSKString& /*nameSpace*/,
                                                    const TSKString& /*className*/,
                                                    NameList /*properties*/,
                                                    Transaction /*transaction*/) {
    notSupported("Provider::enumerateInstances");
}

Provider::InstanceList Provider::references(TSKSmrPtr<ITeskInstanceName> /*instance*/,
                                            const TSKString& /*resultClass*/,
                                            const TSKString& /*role*/,
                                            Transaction /*transaction*/) {
    notSupported("Provider::references");
}

Provider::InstanceList Provider::references(TSKSmrPtr<ITeskInstanceName> /*instance*/,
                                            const TSKString& /*resultClass*/,
                                            const TSKString& /*role*/, NameList /*properties*/,
                                            Transaction /*transaction*/) {
    notSupported("Provider::references");
}

Provider::InstanceList Provider::associators(TSKSmrPtr<ITeskInstanceName> /*instance*/,
                                             const TSKString& /*associationClass*/,
                                             const TSKString& /*resultClass*/,
                                             const TSKString& /*role*/,
                                             const TSKString& /*resultRole*/,
                                             Transaction /*transaction*/) {
    notSupported("Provider::associators");
}

Provider::InstanceList Provider::associators(TSKSmrPtr<ITeskInstanceName> /*instance*/,
                                             const TSKString& /*associationClass*/,
                                             const TSKString& /*resultClass*/,
                                             const TSKString& /*role*/,
                                             const TSKString& /*resultRole*/,
                                             NameList /*properties*/, Transaction /*transaction*/) {
    notSupported("Provider::associators");
}

TSKSmrPtr<ITeskInstanceName> Provider::createInstance(const TSKString& /*nameSpace*/,
                                                      TSKSmrPtr<ITeskInstance> /*instance*/,
                                                      Transaction /*transaction*/) {
    notSupported("Provider::createInstance");
}

void Provider::deleteInstance(TSKSmrPtr<ITeskInstanceName> /*instance*/,
                              Transaction /*transaction*/) {
    notSupported("Provider::deleteInstance");
}

void Provider::modifyInstance(TSKSmrPtr<ITeskInstance> /*instance*/, NameList /*properties*/,
                              Transaction /*transaction*/) {
    notSupported("Provider::modifyInstance");
}

TSKSmrPtr<ITeskValue> Provider::executeMethod(TSKSmrPtr<ITeskInstanceName> /*object*/,
                                              const TSKString& /*method*/, ParameterList /*input*/,
                                              ParameterList& /*output*/,
                                              Transaction /*transaction*/) {
    notSupported("Provider::executeMethod");
}

TSKSmrPtr<ITeskValue> Provider::registerObserver(TSKSmrPtr<ITeskInstanceName> /*instance*/,
                                                 TSKSmrPtr<ITeskSubscriber> /*subscriber*/,
                                                 ITeskIndication::IndicationType /*type*/,
                                                 TSKSmrPtr<ITeskSubscriptionFilter> /*filter*/,
                                                 TSKSmrPtr<ITeskTransaction> /*transaction*/) {
    notSupported("Provider::registerObserver");
}

TSKSmrPtr<ITeskValue> Provider::deregisterObserver(TSKSmrPtr<ITeskInstanceName> /*instance*/,
                                                   TSKSmrPtr<ITeskSubscriber> /*subscriber*/,
                                                   ITeskIndication::IndicationType /*type*/,
                                                   TSKSmrPtr<ITeskSubscriptionFilter> /*filter*/,
                                                   TSKSmrPtr<ITeskTransaction> /*transaction*/) {
    notSupported("Provider::deregisterObserver");
}

void Provider::processHTTPRequest(TSKGenericHTTPIStream& /*istr*/, TSKGenericHTTPOStream& /*ostr*/,
                                  TSKHTTPRequest& /*request*/, TSKHTTPResponse& /*response*/,
                                  bool& /*handled*/, TSKSmrPtr<ITeskTransaction> /*transaction*/) {
    notSupported("Provider::processHTTPRequest");
}

void Provider::processHTTPRequest(TSKGenericHTTPIStream& /*istr*/, TSKGenericHTTPOStream& /*ostr*/,
                                  TSKHTTPRequest& /*request*/, bool& /*handled*/,
                                  TSKSmrPtr<ITeskTransaction> /*transaction*/) {
    notSupported("Provider::processHTTPRequest");
}

void Provider::startup() {}

void Provider::postStartup() {}

void Provider::postStartupIsComplete() {}

void Provider::shutdown() {}

void Provider::initialize() {}

bool Provider::getVersion(TSKString& /*version*/) {
    notSupported("Provider::getVersion");
}

TSKString Provider::getProviderName() {
    notSupported("Provider::getProviderName");
}

void Provider::setWorkArea(const TSKString& /*path*/) {}

void Provider::addStaticSubscriber(TSKSmrPtr<ITeskSubscriber> /*subscriber*/,
                                   ITeskIndication::IndicationType /*type*/) {
    notSupported("Provider::addStaticSubscriber");
}

void Provider::removeStaticSubscriber(TSKSmrPtr<ITeskSubscriber> /*subscriber*/,
                                      ITeskIndication::IndicationType /*type*/) {
    notSupported("Provider::removeStaticSubscriber");
}

void Provider::activateSubscription(TSKSmrPtr<ITeskSubscriber> /*subscriber*/,
                                    TSKSmrPtr<ITeskSubscriptionFilter> /*filter*/) {
    notSupported("Provider::activateSubscription");
}

void Provider::deactivateSubscription(TSKSmrPtr<ITeskSubscriber> /*subscriber*/,
                                      TSKSmrPtr<ITeskSubscriptionFilter> /*filter*/) {
    notSupported("Provider::deactivateSubscription");
}

void Provider::deliverIndication(TSKSmrPtr<ITeskIndication> /*indication*/) {
    notSupported("Provider::deliverIndication");
}

void Provider::setProviderContext(TSKSmrPtr<ITeskProviderContext> /*context*/) {}

TSKSmrPtr<ITeskProviderContext> Provider::getProviderContext() {
    notSupported("Provider::getProviderContext");
}

void Provider::setInstanceManager(TSKSmrPtr<ITeskInstanceManager> /*manager*/) {}

TSKSmrPtr<ITeskInstanceManager> Provider::getInstanceManager() {
    notSupported("Provider::getInstanceManager");
}

bool Provider::hasActiveSubscribers() {
    notSupported("Provider::hasActiveSubscribers");
}

TSKString Provider::getNextIndicationIdentifier() {
    notSupported("Provider::getNextIndicationIdentifier");
}

void Provider::debugDump(unsigned int /*level*/, std::ostream& /*stream*/) {}

Provider::~Provider() = default;

void Provider::logAuditInfo(TSKSmrPtr<ITeskValue> /*result*/,
                            TSKSmrPtr<ITeskTransaction> /*transaction*/,
                            TSKSmrPtr<ITeskInstanceName> /*object*/, TSKString /*operation*/) {}

}  // namespace urma::pf

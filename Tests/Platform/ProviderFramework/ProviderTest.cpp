#include <cstddef>
#include <functional>
#include <gtest/gtest.h>
#include <sstream>
#include <utility>
#include <vector>

#include "Platform/ProviderFramework/Provider.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/Support/RecordingStreams.h"
#include "Tests/Support/VirtualTable.h"

namespace {

using urma::pf::Provider;

using SetConstantWorkArea = void (Provider::*)(const TSKString&);
using GetInstance = TSKSmrPtr<ITeskInstance> (Provider::*)(TSKSmrPtr<ITeskInstanceName>,
                                                           Provider::Transaction);
using GetChosenInstance = TSKSmrPtr<ITeskInstance> (Provider::*)(TSKSmrPtr<ITeskInstanceName>,
                                                                 Provider::NameList,
                                                                 Provider::Transaction);
using EnumerateInstances = Provider::InstanceList (Provider::*)(const TSKString&, const TSKString&,
                                                                Provider::Transaction);
using EnumerateChosenInstances = Provider::InstanceList (Provider::*)(const TSKString&,
                                                                      const TSKString&,
                                                                      Provider::NameList,
                                                                      Provider::Transaction);
using ChosenReferences = Provider::InstanceList (Provider::*)(TSKSmrPtr<ITeskInstanceName>,
                                                              const TSKString&, const TSKString&,
                                                              Provider::NameList,
                                                              Provider::Transaction);
using ChosenAssociators = Provider::InstanceList (Provider::*)(TSKSmrPtr<ITeskInstanceName>,
                                                               const TSKString&, const TSKString&,
                                                               const TSKString&, const TSKString&,
                                                               Provider::NameList,
                                                               Provider::Transaction);
using References = Provider::InstanceList (Provider::*)(TSKSmrPtr<ITeskInstanceName>,
                                                        const TSKString&, const TSKString&,
                                                        Provider::Transaction);
using Associators = Provider::InstanceList (Provider::*)(TSKSmrPtr<ITeskInstanceName>,
                                                         const TSKString&, const TSKString&,
                                                         const TSKString&, const TSKString&,
                                                         Provider::Transaction);
using ProcessWithResponse = void (Provider::*)(TSKGenericHTTPIStream&, TSKGenericHTTPOStream&,
                                               TSKHTTPRequest&, TSKHTTPResponse&, bool&,
                                               TSKSmrPtr<ITeskTransaction>);
using Process = void (Provider::*)(TSKGenericHTTPIStream&, TSKGenericHTTPOStream&, TSKHTTPRequest&,
                                   bool&, TSKSmrPtr<ITeskTransaction>);

// Libraries that are already built find the operations by their position.
TEST(Provider, OperationsKeepTheirPlaces) {
    const std::vector<std::size_t> slots = {
        slotOf(&Provider::startTransaction),
        slotOf(&Provider::endTransaction),
        slotOf(&Provider::setProperty),
        slotOf(&Provider::enumerateInstanceNames),
        slotOf(&Provider::referenceNames),
        slotOf(&Provider::associatorNames),
        slotOf(&Provider::enumerateClassNames),
        slotOf(&Provider::enumerateClasses),
        slotOf(&Provider::getClass),
        slotOf<GetInstance>(&Provider::getInstance),
        slotOf<GetChosenInstance>(&Provider::getInstance),
        slotOf<EnumerateInstances>(&Provider::enumerateInstances),
        slotOf<EnumerateChosenInstances>(&Provider::enumerateInstances),
        slotOf<References>(&Provider::references),
        slotOf<ChosenReferences>(&Provider::references),
        slotOf<Associators>(&Provider::associators),
        slotOf<ChosenAssociators>(&Provider::associators),
        slotOf(&Provider::createInstance),
        slotOf(&Provider::deleteInstance),
        slotOf(&Provider::modifyInstance),
        slotOf(&Provider::executeMethod),
        slotOf(&Provider::registerObserver),
        slotOf(&Provider::deregisterObserver),
        slotOf<ProcessWithResponse>(&Provider::processHTTPRequest),
        slotOf<Process>(&Provider::processHTTPRequest),
        slotOf(&Provider::startup),
        slotOf(&Provider::postStartup),
        slotOf(&Provider::postStartupIsComplete),
        slotOf(&Provider::shutdown),
        slotOf(&Provider::initialize),
        slotOf(&Provider::getVersion),
        slotOf(&Provider::getProviderName),
        slotOf<SetConstantWorkArea>(&Provider::setWorkArea),
        slotOf(&Provider::addStaticSubscriber),
        slotOf(&Provider::removeStaticSubscriber),
        slotOf(&Provider::activateSubscription),
        slotOf(&Provider::deactivateSubscription),
        slotOf(&Provider::deliverIndication),
        slotOf(&Provider::setProviderContext),
        slotOf(&Provider::getProviderContext),
        slotOf(&Provider::setInstanceManager),
        slotOf(&Provider::getInstanceManager),
        slotOf(&Provider::hasActiveSubscribers),
        slotOf(&Provider::getNextIndicationIdentifier),
        slotOf(&Provider::debugDump),
        // The destructor takes two places, one for deleting.
        slotOf(&Provider::debugDump) + 1,
        slotOf(&Provider::debugDump) + 2,
        slotOf(&Provider::logAuditInfo),
    };
    for (std::size_t position = 0; position < slots.size(); ++position)
        EXPECT_EQ(slots[position], position);
}

class BareProvider : public Provider {};

TEST(Provider, OperationsThatAreNotOverriddenAreNotSupported) {
    BareProvider provider;
    EmptyInput input;
    RecordedOutput responses;
    TSKHTTPRequest request("DELETE", "/", "HTTP/1.1");
    TSKHTTPResponse response("HTTP/1.1", "200", "OK");
    bool handled = true;
    Provider::ParameterList output;
    TSKString version;
    const std::vector<std::pair<const char*, std::function<void()>>> operations = {
        {"startTransaction", [&] { provider.startTransaction({}); }},
        {"endTransaction", [&] { provider.endTransaction({}); }},
        {"setProperty", [&] { provider.setProperty({}, "p", {}, {}); }},
        {"enumerateInstanceNames", [&] { provider.enumerateInstanceNames("n", "c", {}); }},
        {"referenceNames", [&] { provider.referenceNames({}, "c", "r", {}); }},
        {"associatorNames", [&] { provider.associatorNames({}, "a", "c", "r", "s", {}); }},
        {"enumerateClassNames", [&] { provider.enumerateClassNames("n", "c", true, {}); }},
        {"enumerateClasses", [&] { provider.enumerateClasses("n", "c", true, {}); }},
        {"getClass", [&] { provider.getClass("n", "c", {}); }},
        {"getInstance", [&] { provider.getInstance({}, {}); }},
        {"getInstance", [&] { provider.getInstance({}, {}, {}); }},
        {"enumerateInstances", [&] { provider.enumerateInstances("n", "c", {}); }},
        {"enumerateInstances", [&] { provider.enumerateInstances("n", "c", {}, {}); }},
        {"references", [&] { provider.references({}, "c", "r", {}); }},
        {"references", [&] { provider.references({}, "c", "r", {}, {}); }},
        {"associators", [&] { provider.associators({}, "a", "c", "r", "s", {}); }},
        {"associators", [&] { provider.associators({}, "a", "c", "r", "s", {}, {}); }},
        {"createInstance", [&] { provider.createInstance("n", {}, {}); }},
        {"deleteInstance", [&] { provider.deleteInstance({}, {}); }},
        {"modifyInstance", [&] { provider.modifyInstance({}, {}, {}); }},
        {"executeMethod", [&] { provider.executeMethod({}, "m", {}, output, {}); }},
        {"registerObserver",
         [&] { provider.registerObserver({}, {}, ITeskIndication::Process, {}, {}); }},
        {"deregisterObserver",
         [&] { provider.deregisterObserver({}, {}, ITeskIndication::Process, {}, {}); }},
        {"processHTTPRequest",
         [&] { provider.processHTTPRequest(input, responses, request, response, handled, {}); }},
        {"processHTTPRequest",
         [&] { provider.processHTTPRequest(input, responses, request, handled, {}); }},
        {"getVersion", [&] { provider.getVersion(version); }},
        {"getProviderName", [&] { provider.getProviderName(); }},
        {"addStaticSubscriber",
         [&] { provider.addStaticSubscriber({}, ITeskIndication::InstanceCreation); }},
        {"removeStaticSubscriber",
         [&] { provider.removeStaticSubscriber({}, ITeskIndication::InstanceDeletion); }},
        {"activateSubscription", [&] { provider.activateSubscription({}, {}); }},
        {"deactivateSubscription", [&] { provider.deactivateSubscription({}, {}); }},
        {"deliverIndication", [&] { provider.deliverIndication({}); }},
        {"getProviderContext", [&] { provider.getProviderContext(); }},
        {"getInstanceManager", [&] { provider.getInstanceManager(); }},
        {"hasActiveSubscribers", [&] { provider.hasActiveSubscribers(); }},
        {"getNextIndicationIdentifier", [&] { provider.getNextIndicationIdentifier(); }},
    };
    for (const auto& [name, operation] : operations) {
        try {
            operation();
            ADD_FAILURE() << name << " is supported";
        } catch (const TeskBaseException& exception) {
            EXPECT_EQ(exception.getErrorCode(), CIM_ERR_NOT_SUPPORTED);
            EXPECT_EQ(exception.getWhere(), TSKString("Provider::") + name);
        }
    }
    EXPECT_EQ(responses.writes, 0);
}

TEST(Provider, WhatAProviderIsToldDoesNothing) {
    BareProvider provider;
    std::ostringstream dump;
    EXPECT_NO_THROW({
        provider.startup();
        provider.postStartup();
        provider.postStartupIsComplete();
        provider.shutdown();
        provider.initialize();
        provider.setWorkArea("/tmp");
        provider.setProviderContext({});
        provider.setInstanceManager({});
        provider.debugDump(1, dump);
        provider.logAuditInfo({}, {}, {}, "operation");
    });
    EXPECT_EQ(dump.str(), "");
}

}  // namespace

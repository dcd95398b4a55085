#include <functional>
#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

#include "ObjectManager/Comparison/ContractComparison.h"

namespace {

using Comparison::Contract;
using Comparison::Element;
using Comparison::Operation;
using Comparison::ValueSet;

Element elementOf(const std::string& name, const std::string& type) {
    Element element;
    element.name = name;
    element.type = type;
    element.values = ValueSet(type);
    element.mayBeAbsent = true;
    element.mayBeNil = true;
    return element;
}

// A class with a key, two properties and a method.
Contract sample() {
    Contract contract;
    contract.targetNamespace = "urn:foo";
    contract.address = "http://host/wsman";
    Element key = elementOf("Id", "string");
    key.mayBeAbsent = false;
    key.mayBeNil = false;
    key.maxLength = 64;
    Element state = elementOf("State", "unsignedShort");
    state.values.addRange("1", "4");
    contract.properties = {key, elementOf("Name", "string"), state};
    Operation start;
    start.name = "Start";
    start.input = {"class:Start_INPUT",
                   {elementOf("Mode", "unsignedByte"), elementOf("Job", "reference")}};
    start.output = {"class:Start_OUTPUT", {elementOf("ReturnValue", "unsignedInt")}};
    contract.operations = {start};
    return contract;
}

// The changes without their place, which is the caller's: "type-changed Name: MESSAGE".
std::vector<std::string> textsOf(const std::vector<Comparison::Change>& changes) {
    std::vector<std::string> texts;
    for (const Comparison::Change& change : changes) {
        texts.push_back(std::string(isBreaking(change.rule) ? "! " : "") + nameOf(change.rule) +
                        " " + change.member + ": " + change.message);
    }
    return texts;
}

using Edit = std::function<void(Contract&)>;

// What an edit changes, and what its reversal does.
struct Case {
    const char* name;
    Edit edit;
    std::vector<std::string> changes;
    std::vector<std::string> reversed;
};

std::ostream& operator<<(std::ostream& stream, const Case& testCase) {
    return stream << testCase.name;
}

class ContractComparison : public testing::TestWithParam<Case> {};

TEST_P(ContractComparison, NamesEachChange) {
    const Contract before = sample();
    Contract after = sample();
    GetParam().edit(after);
    EXPECT_EQ(textsOf(compare(before, after)), GetParam().changes);
    EXPECT_EQ(textsOf(compare(after, before)), GetParam().reversed);
}

INSTANTIATE_TEST_SUITE_P(
    Each, ContractComparison,
    testing::Values(
        Case{"Nothing", [](Contract&) {}, {}, {}},
        Case{"Namespace",
             [](Contract& contract) { contract.targetNamespace = "urn:new"; },
             {"! namespace-changed : the XML namespace was urn:foo and is urn:new"},
             {"! namespace-changed : the XML namespace was urn:new and is urn:foo"}},
        Case{"Address",
             [](Contract& contract) { contract.address = "http://other/wsman"; },
             {"! address-changed : the address of the service was http://host/wsman and is "
              "http://other/wsman"},
             {"! address-changed : the address of the service was http://other/wsman and is "
              "http://host/wsman"}},
        Case{"Property",
             [](Contract& contract) { contract.properties.erase(contract.properties.begin() + 1); },
             {"! property-removed Name: the property is gone"},
             {"property-added Name: the property is new"}},
        Case{"Key",
             [](Contract& contract) { contract.properties.erase(contract.properties.begin()); },
             {"! property-removed Id: the property is gone"},
             {"! required-added Id: the property is new, and a key or required"}},
        Case{"Type",
             [](Contract& contract) { contract.properties[1].type = "dateTime"; },
             {"! type-changed Name: the type was string and is dateTime"},
             {"! type-changed Name: the type was dateTime and is string"}},
        Case{"Structure",
             [](Contract& contract) { contract.properties[1].type = "<xs:complexType/>"; },
             {"! type-changed Name: the type was string and is a structure"},
             {"! type-changed Name: the type was a structure and is string"}},
        Case{"Array",
             [](Contract& contract) { contract.properties[1].isArray = true; },
             {"! array-changed Name: is now an array"},
             {"! array-changed Name: is no array now"}},
        Case{"Required",
             [](Contract& contract) { contract.properties[1].mayBeAbsent = false; },
             {"! required-added Name: must have a value now"},
             {"required-removed Name: may be without a value now"}},
        Case{"Order",
             [](Contract& contract) { std::swap(contract.properties[0], contract.properties[2]); },
             {"! order-changed : the order was Id, Name, State and is State, Name, Id"},
             {"! order-changed : the order was State, Name, Id and is Id, Name, State"}},
        Case{"Values",
             [](Contract& contract) { contract.properties[2].values.addValue("9"); },
             {"values-widened State: values are allowed in addition: 9"},
             {"! values-narrowed State: values are not allowed any more: 9"}},
        Case{"AllValues",
             [](Contract& contract) { contract.properties[2].values.addAll(); },
             {"values-widened State: values are allowed in addition: 0, 5 and more"},
             {"! values-narrowed State: values are not allowed any more: 0, 5 and more"}},
        Case{"Length",
             [](Contract& contract) { contract.properties[0].maxLength = 32; },
             {"! length-lowered Id: the maximum length was 64 and is 32"},
             {"length-raised Id: the maximum length was 32 and is 64"}},
        Case{"NoLength",
             [](Contract& contract) { contract.properties[0].maxLength.reset(); },
             {"length-raised Id: the maximum length was 64 and is any"},
             {"! length-lowered Id: the maximum length was any and is 64"}},
        Case{"Method",
             [](Contract& contract) { contract.operations.clear(); },
             {"! method-removed Start: the method is gone"},
             {"method-added Start: the method is new"}},
        Case{"Parameter",
             [](Contract& contract) { contract.operations[0].input.elements.pop_back(); },
             {"! parameter-removed Start.Job: the request has no such parameter any more"},
             {"! parameter-added Start.Job: the request has a new parameter"}},
        Case{"Result",
             [](Contract& contract) { contract.operations[0].output.elements.clear(); },
             {"! parameter-removed Start.ReturnValue: the response has no such value any more"},
             {"result-added Start.ReturnValue: the response has a new value"}},
        Case{"ParameterThatMustHaveAValue",
             [](Contract& contract) { contract.operations[0].input.elements[0].mayBeNil = false; },
             {"! required-added Start.Mode: must have a value now"},
             {"required-removed Start.Mode: may be without a value now"}},
        Case{"OrderOfParameters",
             [](Contract& contract) {
                 std::swap(contract.operations[0].input.elements[0],
                           contract.operations[0].input.elements[1]);
             },
             {"! order-changed Start: the order was Mode, Job and is Job, Mode"},
             {"! order-changed Start: the order was Job, Mode and is Mode, Job"}},
        Case{"Body",
             [](Contract& contract) { contract.operations[0].output.body.clear(); },
             {"! message-changed Start: the response held class:Start_OUTPUT and holds nothing"},
             {"! message-changed Start: the response held nothing and holds class:Start_OUTPUT"}}),
    [](const auto& tested) { return std::string(tested.param.name); });

TEST(ContractComparisonOrder, NewElementsBetweenOthersDoNotChangeTheOrder) {
    const Contract before = sample();
    Contract after = sample();
    after.properties.insert(after.properties.begin() + 1, elementOf("Kind", "string"));
    EXPECT_EQ(textsOf(compare(before, after)),
              std::vector<std::string>{"property-added Kind: the property is new"});
}

}  // namespace

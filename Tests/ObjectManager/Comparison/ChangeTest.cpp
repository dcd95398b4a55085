#include <gtest/gtest.h>
#include <set>
#include <string>

#include "ObjectManager/Comparison/Change.h"

namespace {

using Comparison::Change;
using Comparison::Rule;

Change changeOf(Rule rule, const std::string& member) {
    return {.rule = rule,
            .nameSpace = "root/cimv2",
            .className = "CIM_Foo",
            .member = member,
            .message = "something"};
}

TEST(Change, TextNamesSeverityPlaceMessageAndRule) {
    EXPECT_EQ(toText(changeOf(Rule::kTypeChanged, "Bar")),
              "breaking: root/cimv2:CIM_Foo.Bar: something (type-changed)");
    EXPECT_EQ(toText(changeOf(Rule::kClassAdded, "")),
              "compatible: root/cimv2:CIM_Foo: something (class-added)");
}

TEST(Change, EachRuleHasANameOfItsOwn) {
    std::set<std::string> names;
    int rules = 0;
    for (int number = 0; number <= static_cast<int>(Rule::kLengthRaised); ++number, ++rules) {
        const auto rule = static_cast<Rule>(number);
        names.insert(nameOf(rule));
        EXPECT_EQ(Comparison::ruleOf(nameOf(rule)), rule);
    }
    EXPECT_EQ(Comparison::ruleOf("unknown"), std::nullopt);
    EXPECT_EQ(names.size(), static_cast<std::size_t>(rules));
    EXPECT_FALSE(names.contains("unknown"));
}

TEST(Change, BreakingOnesComeFirst) {
    const Change breaking = changeOf(Rule::kLengthLowered, "Z");
    const Change compatible = changeOf(Rule::kLengthRaised, "A");
    EXPECT_TRUE(isBefore(breaking, compatible));
    EXPECT_FALSE(isBefore(compatible, breaking));
    EXPECT_TRUE(isBefore(changeOf(Rule::kTypeChanged, "A"), changeOf(Rule::kArrayChanged, "B")));
    EXPECT_FALSE(isBefore(breaking, breaking));
}

}  // namespace

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Comparison/ValueSet.h"

namespace {

using Comparison::ValueSet;

ValueSet listed(const std::string& type, const std::vector<std::string>& values) {
    ValueSet set(type);
    for (const std::string& value : values)
        set.addValue(value);
    return set;
}

TEST(ValueSet, HoldsAllValuesUntilSomeAreListed) {
    ValueSet set("unsignedByte");
    EXPECT_TRUE(set.holdsAll());
    set.addValue("1");
    EXPECT_FALSE(set.holdsAll());
    set.addAll();
    EXPECT_TRUE(set.holdsAll());
}

TEST(ValueSet, ComparesIntegersAsNumbers) {
    ValueSet range("unsignedShort");
    range.addRange("1", "3");
    const ValueSet values = listed("unsignedShort", {"3", "02", "+1"});
    EXPECT_TRUE(range.includes(values));
    EXPECT_TRUE(values.includes(range));
    EXPECT_TRUE(range.includes(listed("unsignedShort", {"2"})));
    EXPECT_FALSE(range.includes(listed("unsignedShort", {"4"})));
    EXPECT_FALSE(range.includes(listed("unsignedShort", {"0"})));
}

TEST(ValueSet, OpenRangesEndWhereTheTypeEnds) {
    ValueSet open("unsignedShort");
    open.addRange({}, {});
    EXPECT_TRUE(open.includes(ValueSet("unsignedShort")));
    ValueSet upwards("unsignedShort");
    upwards.addRange("12", {});
    ValueSet closed("unsignedShort");
    closed.addRange("12", "65535");
    EXPECT_TRUE(closed.includes(upwards));
    ValueSet least("byte");
    least.addRange({}, "-1");
    ValueSet most("byte");
    most.addRange("-128", "-1");
    EXPECT_TRUE(most.includes(least));
    EXPECT_TRUE(least.includes(most));
}

TEST(ValueSet, KnowsTheEndsOfTheLargestTypes) {
    ValueSet all("unsignedLong");
    all.addRange("0", "18446744073709551615");
    EXPECT_TRUE(all.includes(ValueSet("unsignedLong")));
    ValueSet almost("unsignedLong");
    almost.addRange("0", "18446744073709551614");
    EXPECT_FALSE(almost.includes(ValueSet("unsignedLong")));
    EXPECT_EQ(ValueSet("unsignedLong").textOfThoseNotIn(almost), "18446744073709551615");
    ValueSet most("long");
    most.addRange("-9223372036854775808", "9223372036854775807");
    EXPECT_TRUE(most.includes(ValueSet("long")));
}

TEST(ValueSet, RangesThatTouchOrOverlapAreOne) {
    ValueSet parts("int");
    parts.addRange("5", "9");
    parts.addRange("-3", "2");
    parts.addRange("1", "4");
    ValueSet whole("int");
    whole.addRange("-3", "9");
    EXPECT_TRUE(parts.includes(whole));
    EXPECT_TRUE(whole.includes(parts));
}

TEST(ValueSet, ComparesOtherValuesAsTexts) {
    const ValueSet few = listed("string", {"OK", "Error"});
    const ValueSet more = listed("string", {"Error", "OK", "ok"});
    EXPECT_TRUE(more.includes(few));
    EXPECT_FALSE(few.includes(more));
    EXPECT_FALSE(more.includes(ValueSet("string")));
    EXPECT_TRUE(ValueSet("string").includes(more));
}

TEST(ValueSet, TextsThatAreNoNumbersOfTheTypeAreValues) {
    const ValueSet strange = listed("unsignedByte", {"one"});
    EXPECT_FALSE(listed("unsignedByte", {"1"}).includes(strange));
    EXPECT_TRUE(strange.includes(strange));
    ValueSet backwards("unsignedByte");
    backwards.addRange("9", "1");
    EXPECT_FALSE(strange.includes(backwards));
    EXPECT_EQ(backwards.textOfThoseNotIn(strange), R"("9..1")");
}

TEST(ValueSet, NamesTheValuesThatAnotherHasNot) {
    ValueSet before("unsignedShort");
    before.addRange("0", "9");
    before.addRange("100", {});
    EXPECT_EQ(before.textOfThoseNotIn(listed("unsignedShort", {"0", "1", "5"})),
              "2 to 4, 6 to 9, 100 and more");
    EXPECT_EQ(listed("string", {"b", "a"}).textOfThoseNotIn(listed("string", {"b"})), R"("a")");
    EXPECT_EQ(ValueSet("string").textOfThoseNotIn(listed("string", {"b"})), "others");
    EXPECT_EQ(before.textOfThoseNotIn(ValueSet("unsignedShort")), "");
    ValueSet negative("short");
    negative.addRange("-5", "-2");
    EXPECT_EQ(negative.textOfThoseNotIn(listed("short", {"-3"})), "-5 to -4, -2");
}

TEST(ValueSet, NamesTenValuesAtMost) {
    ValueSet odd("unsignedByte");
    for (int value = 1; value <= 21; value += 2)
        odd.addValue(std::to_string(value));
    EXPECT_EQ(odd.textOfThoseNotIn(listed("unsignedByte", {"0"})),
              "1, 3, 5, 7, 9, 11, 13, 15, 17, 19, ...");
    EXPECT_EQ(odd.textOfThoseNotIn(listed("unsignedByte", {"21"})),
              "1, 3, 5, 7, 9, 11, 13, 15, 17, 19");
}

}  // namespace

#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Inspection/ValueMapGaps.h"
#include "Tests/Support/MofModel.h"

namespace {

unsigned long gapsOf(const std::string& entries) {
    const MofModel model("class TST_A { [ValueMap{" + entries + "}] uint64 P; };");
    const urma::IQualifier* const valueMap =
        model.cimClass("TST_A").properties().front()->getQualifier("ValueMap", false);
    return Inspection::countGaps(*valueMap->getValue());
}

TEST(ValueMapGaps, AreTheUnlistedValuesBelowTheNumberBeforeADotDot) {
    EXPECT_EQ(gapsOf(R"("5", "..")"), 5U);
    EXPECT_EQ(gapsOf(R"("1", "3", "5", "..")"), 3U);
    EXPECT_EQ(gapsOf(R"("5", "..", "3")"), 5U);  // what follows is not known yet there
    EXPECT_EQ(gapsOf(R"("-2", "5", "..")"), 5U);
    EXPECT_EQ(gapsOf(R"("3", "3", "3", "..")"), 3U);
}

TEST(ValueMapGaps, AreNoneWithoutADotDotOrWithoutANumberBeforeIt) {
    EXPECT_EQ(gapsOf(""), 0U);
    EXPECT_EQ(gapsOf("null"), 0U);
    EXPECT_EQ(gapsOf(R"("5")"), 0U);
    EXPECT_EQ(gapsOf(R"("5..", "..9", "3..4")"), 0U);
    EXPECT_EQ(gapsOf(R"("..", "5")"), 0U);
    EXPECT_EQ(gapsOf(R"("-5", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("0", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("a", "..")"), 0U);
}

TEST(ValueMapGaps, AreNoneWhereAsManyValuesAreListed) {
    EXPECT_EQ(gapsOf(R"("0", "1", "2", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("-1", "1", "2", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("1", "2", "..")"), 1U);
}

// A range lists nothing.
TEST(ValueMapGaps, OfARangeTheFirstNumberCounts) {
    EXPECT_EQ(gapsOf(R"("1", "5..7", "..")"), 4U);
    EXPECT_EQ(gapsOf(R"("5..", "..")"), 5U);
    EXPECT_EQ(gapsOf(R"("..5", "..")"), 0U);
}

TEST(ValueMapGaps, OfSeveralDotDotsAddUp) {
    EXPECT_EQ(gapsOf(R"("2", "..", "5", "..")"), 2U + 4U);
}

TEST(ValueMapGaps, NumbersAreHexadecimalTooAndOfSixtyFourBits) {
    EXPECT_EQ(gapsOf(R"("0x10", "..")"), 16U);
    EXPECT_EQ(gapsOf(R"("0XfF", "..")"), 255U);
    EXPECT_EQ(gapsOf(R"("4294967295", "..")"), 4'294'967'295U);
    EXPECT_EQ(gapsOf(R"("0xFFFFFFFF", "..")"), 4'294'967'295U);
    EXPECT_EQ(gapsOf(R"("9223372036854775806", "..")"), 9'223'372'036'854'775'806U);
    EXPECT_EQ(gapsOf(R"("9223372036854775806", "..", "9223372036854775806", "..", "7", "..",
                        "9223372036854775806", "..")"),
              18'446'744'073'709'551'615U);  // and no more are counted
}

// Documents write it as a range without gaps.
TEST(ValueMapGaps, AreNoneBehindTheLargestNumber) {
    EXPECT_EQ(gapsOf(R"("9223372036854775807", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("18446744073709551615", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("0xFFFFFFFFFFFFFFFF", "..")"), 0U);
}

}  // namespace

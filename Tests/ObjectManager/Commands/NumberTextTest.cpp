#include <gtest/gtest.h>
#include <limits>

#include "ObjectManager/Commands/NumberText.h"

namespace {

using Commands::bytesText;
using Commands::counted;
using Commands::groupedDigits;
using Commands::secondsText;

TEST(NumberText, GroupsDigitsByThrees) {
    EXPECT_EQ(groupedDigits(0), "0");
    EXPECT_EQ(groupedDigits(999), "999");
    EXPECT_EQ(groupedDigits(1000), "1,000");
    EXPECT_EQ(groupedDigits(999'999), "999,999");
    EXPECT_EQ(groupedDigits(1'000'000), "1,000,000");
    EXPECT_EQ(groupedDigits(std::numeric_limits<std::size_t>::max()), "18,446,744,073,709,551,615");
}

TEST(NumberText, CountsInWords) {
    EXPECT_EQ(counted(0, "class", "classes"), "0 classes");
    EXPECT_EQ(counted(1, "class", "classes"), "1 class");
    EXPECT_EQ(counted(2, "class", "classes"), "2 classes");
    EXPECT_EQ(counted(1438, "class", "classes"), "1,438 classes");
}

TEST(NumberText, SizesHaveTheUnitThatFits) {
    EXPECT_EQ(bytesText(0), "0 bytes");
    EXPECT_EQ(bytesText(1), "1 byte");
    EXPECT_EQ(bytesText(999), "999 bytes");
    EXPECT_EQ(bytesText(1000), "1.0 KB");
    EXPECT_EQ(bytesText(1049), "1.0 KB");
    EXPECT_EQ(bytesText(1051), "1.1 KB");
    EXPECT_EQ(bytesText(2'414'958), "2.4 MB");
    EXPECT_EQ(bytesText(12'000'000'000), "12.0 GB");
    EXPECT_EQ(bytesText(12'000'000'000'000), "12.0 TB");
    EXPECT_EQ(bytesText(12'000'000'000'000'000), "12000.0 TB");
}

// Never "1000.0 KB".
TEST(NumberText, SizesThatRoundUpToAThousandHaveTheNextUnit) {
    EXPECT_EQ(bytesText(999'949), "999.9 KB");
    EXPECT_EQ(bytesText(999'950), "1.0 MB");
    EXPECT_EQ(bytesText(999'949'999), "999.9 MB");
    EXPECT_EQ(bytesText(999'950'000), "1.0 GB");
    EXPECT_EQ(bytesText(999'950'000'000), "1.0 TB");
}

TEST(NumberText, SecondsHaveTwoDecimals) {
    EXPECT_EQ(secondsText(0), "0.00 s");
    EXPECT_EQ(secondsText(0.516), "0.52 s");
    EXPECT_EQ(secondsText(61.001), "61.00 s");
}

}  // namespace

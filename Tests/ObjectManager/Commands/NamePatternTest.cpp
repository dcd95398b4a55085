#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Commands/NamePattern.h"

namespace {

using Commands::isNamePattern;
using Commands::matchesNamePattern;

TEST(NamePattern, IsWhatHoldsAStarOrAQuestionMark) {
    EXPECT_TRUE(isNamePattern("CIM_*"));
    EXPECT_TRUE(isNamePattern("?"));
    EXPECT_FALSE(isNamePattern("CIM_Foo"));
    EXPECT_FALSE(isNamePattern(""));
}

TEST(NamePattern, MatchesAllOfAName) {
    EXPECT_TRUE(matchesNamePattern("CIM_Foo", "CIM_Foo"));
    EXPECT_FALSE(matchesNamePattern("CIM_Foo", "CIM_Fo"));
    EXPECT_FALSE(matchesNamePattern("CIM_Foo", "CIM_Fooo"));
    EXPECT_FALSE(matchesNamePattern("CIM_Foo", "IM_Foo"));
    EXPECT_FALSE(matchesNamePattern("CIM_Foo", ""));
    EXPECT_TRUE(matchesNamePattern("", ""));
}

TEST(NamePattern, IgnoresCase) {
    EXPECT_TRUE(matchesNamePattern("CIM_Foo", "cim_fOO"));
    EXPECT_TRUE(matchesNamePattern("cim_foo", "CIM_F*"));
}

TEST(NamePattern, AStarStandsForAnyBytesAndForNone) {
    EXPECT_TRUE(matchesNamePattern("", "*"));
    EXPECT_TRUE(matchesNamePattern("CIM_Foo", "*"));
    EXPECT_TRUE(matchesNamePattern("CIM_Foo", "CIM_Foo*"));
    EXPECT_TRUE(matchesNamePattern("CIM_Foo", "*Foo"));
    EXPECT_TRUE(matchesNamePattern("CIM_Foo", "**M_*o*"));
    EXPECT_FALSE(matchesNamePattern("CIM_Foo", "*Bar*"));
    // The first place where a part fits is not the one where the rest does.
    EXPECT_TRUE(matchesNamePattern("CIM_FooFooBar", "*FooBar"));
    EXPECT_TRUE(matchesNamePattern("aXbXc", "a*X?"));
    EXPECT_FALSE(matchesNamePattern("aXbXc", "a*X"));
}

TEST(NamePattern, AQuestionMarkStandsForOneByte) {
    EXPECT_TRUE(matchesNamePattern("CIM_Foo", "CIM?F?o"));
    EXPECT_FALSE(matchesNamePattern("CIM_Foo", "CIM_Foo?"));
    EXPECT_FALSE(matchesNamePattern("", "?"));
}

// Trying every length of every star would take longer than the universe is old.
TEST(NamePattern, ManyStarsTakeNoLongTime) {
    std::string pattern;
    for (int count = 0; count < 1000; ++count)
        pattern += "a*";
    EXPECT_FALSE(matchesNamePattern(std::string(5000, 'a'), pattern + "b"));
    EXPECT_TRUE(matchesNamePattern(std::string(5000, 'a') + "b", pattern + "b"));
}

}  // namespace

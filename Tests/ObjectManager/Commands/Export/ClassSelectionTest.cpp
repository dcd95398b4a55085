#include <gtest/gtest.h>
#include <ostream>
#include <string>
#include <vector>

#include "ObjectManager/Commands/Export/ClassSelection.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/ObjectManager/Commands/NamedClasses.h"

namespace {

using Commands::ClassSelection;
using Commands::selectAllClasses;
using Commands::selectClasses;

std::vector<std::string> textOf(const std::vector<ClassSelection>& selections) {
    std::vector<std::string> text;
    for (const ClassSelection& selection : selections) {
        std::string line = std::string(selection.nameSpace->name()) + ":";
        for (const Repository::CimClass* cimClass : selection.classes)
            line += " " + std::string(cimClass->name());
        text.push_back(line);
    }
    return text;
}

class ClassSelectionTest : public testing::Test {
  protected:
    [[nodiscard]] std::vector<std::string> select(const std::vector<std::string>& names) const {
        return textOf(selectClasses(*repository_, names));
    }

    [[nodiscard]] std::string messageOf(const std::vector<std::string>& names) const {
        try {
            return select(names).empty() ? "nothing" : "something";
        } catch (const TeskBaseException& error) {
            return error.getMessage().data();
        }
    }

    TSKSmrPtr<Repository::ClassRepository> repository_ = makeNamedClasses(
        {{"root/a", {"CIM_Disk", "CIM_Fan", "CIM_Fans"}}, {"root/b", {"CIM_Fan"}}, {"empty", {}}});
};

TEST_F(ClassSelectionTest, AllAreThoseOfAllNamespaces) {
    EXPECT_EQ(textOf(selectAllClasses(*repository_)),
              (std::vector<std::string>{"root/a: CIM_Disk CIM_Fan CIM_Fans", "root/b: CIM_Fan",
                                        "empty:"}));
}

TEST_F(ClassSelectionTest, ANameStandsForTheClassesOfAllNamespacesInAnyCase) {
    EXPECT_EQ(select({"cim_FAN"}),
              (std::vector<std::string>{"root/a: CIM_Fan", "root/b: CIM_Fan"}));
    EXPECT_EQ(select({"CIM_Disk"}), (std::vector<std::string>{"root/a: CIM_Disk"}));
}

TEST_F(ClassSelectionTest, APatternStandsForAllThatItMatches) {
    EXPECT_EQ(select({"cim_fan*"}),
              (std::vector<std::string>{"root/a: CIM_Fan CIM_Fans", "root/b: CIM_Fan"}));
    EXPECT_EQ(select({"CIM_????"}), (std::vector<std::string>{"root/a: CIM_Disk CIM_Fans"}));
}

TEST_F(ClassSelectionTest, NoClassIsSelectedTwice) {
    EXPECT_EQ(select({"CIM_Fans", "*", "CIM_Disk", "CIM_Disk"}),
              (std::vector<std::string>{"root/a: CIM_Disk CIM_Fan CIM_Fans", "root/b: CIM_Fan"}));
}

TEST_F(ClassSelectionTest, EveryNameThatFitsNothingIsNamed) {
    EXPECT_EQ(messageOf({"CIM_None"}),
              "there is no class \"CIM_None\"; \"tesk classes\" lists them");
    EXPECT_EQ(messageOf({"XYZ_*", "CIM_Fan", "", "CIM_Dis"}),
              "there is no class \"XYZ_*\", \"\", \"CIM_Dis\"; \"tesk classes\" lists them");
}

struct NameCase {
    const char* name;
    const char* className;
    bool fits;
};

std::ostream& operator<<(std::ostream& stream, const NameCase& testCase) {
    return stream << '"' << testCase.name << "\" and " << testCase.className;
}

class ClassName : public testing::TestWithParam<NameCase> {};

TEST_P(ClassName, FitsOrNot) {
    const auto [name, className, fits] = GetParam();
    const TSKSmrPtr<Repository::ClassRepository> repository =
        makeNamedClasses({{"root", {className}}});
    bool isSelected = true;
    try {
        isSelected = !selectClasses(*repository, {name}).empty();
    } catch (const TeskBaseException&) {
        isSelected = false;
    }
    EXPECT_EQ(isSelected, fits) << name << " and " << className;
}

INSTANTIATE_TEST_SUITE_P(
    WithoutWildcards, ClassName,
    testing::Values(NameCase{"CIM_Foo", "CIM_Foo", true}, NameCase{"cim_fOO", "CIM_Foo", true},
                    NameCase{"CIM_Fo", "CIM_Foo", false}, NameCase{"CIM_Fooo", "CIM_Foo", false},
                    NameCase{"IM_Foo", "CIM_Foo", false}, NameCase{"", "CIM_Foo", false}));

INSTANTIATE_TEST_SUITE_P(
    WithStars, ClassName,
    testing::Values(NameCase{"*", "CIM_Foo", true}, NameCase{"CIM_Foo*", "CIM_Foo", true},
                    NameCase{"CIM_F*", "cim_foo", true}, NameCase{"*Foo", "CIM_Foo", true},
                    NameCase{"**M_*o*", "CIM_Foo", true}, NameCase{"*Bar*", "CIM_Foo", false},
                    // The first place where a part fits is not the one where the rest does.
                    NameCase{"*FooBar", "CIM_FooFooBar", true}, NameCase{"a*X?", "aXbXc", true},
                    NameCase{"a*X", "aXbXc", false}));

INSTANTIATE_TEST_SUITE_P(WithQuestionMarks, ClassName,
                         testing::Values(NameCase{"CIM?F?o", "CIM_Foo", true},
                                         NameCase{"CIM_Foo?", "CIM_Foo", false}));

// Only stars and question marks have a meaning.
INSTANTIATE_TEST_SUITE_P(WithOtherMarks, ClassName,
                         testing::Values(NameCase{"CIM_[EF]oo", "CIM_Foo", false},
                                         NameCase{"CIM_[!E]*", "CIM_Foo", false},
                                         NameCase{"a[b]*", "A[B]c", true},
                                         NameCase{"CIM_\\Foo", "CIM_Foo", false},
                                         NameCase{"a\\*", "a\\b", true},
                                         NameCase{".*", ".hidden", true}));

// Trying every length for every star would never end.
TEST(ClassSelection, ManyStarsTakeNoLongTime) {
    std::string pattern;
    for (int count = 0; count < 1000; ++count)
        pattern += "a*";
    const TSKSmrPtr<Repository::ClassRepository> repository =
        makeNamedClasses({{"a", {std::string(5000, 'a')}}, {"b", {std::string(5000, 'a') + "b"}}});
    EXPECT_EQ(selectClasses(*repository, {pattern + "b"}).size(), 1U);
}

}  // namespace

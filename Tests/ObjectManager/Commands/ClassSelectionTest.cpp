#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Commands/ClassSelection.h"
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

}  // namespace

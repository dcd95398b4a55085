#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Pages/ClassRelations.h"
#include "Tests/Support/MofModel.h"

namespace {

class ClassRelationsTest : public testing::Test {
  protected:
    [[nodiscard]] std::string subclassesOf(const char* name) const {
        std::string names;
        for (const Repository::CimClass* each : relations_.subclassesOf(model_.cimClass(name)))
            names += std::string(each->name()) + " ";
        return names;
    }

    [[nodiscard]] std::string endsAt(const char* name) const {
        std::string names;
        for (const Pages::AssociationEnd& end : relations_.endsAt(model_.cimClass(name)))
            names += std::string(end.association->name()) + "." +
                     std::string(end.reference->name()) + " ";
        return names;
    }

    MofModel model_{R"(
        class B : A {}; class A {}; class C : B {}; class D : B {};
        [Association] class Link { [Key] a REF Near; [Key] B REF Far; };
        [Association] class LinkOfOne : Link { };
        [Association] class Narrow : Link { [Key, Override ("Far")] C REF Far; };
        class Plain { A REF NotAnEnd; };)"};
    Pages::ClassRelations relations_{model_.nameSpace()};
};

TEST_F(ClassRelationsTest, KnowsDirectSubclasses) {
    EXPECT_EQ(subclassesOf("A"), "B ");
    EXPECT_EQ(subclassesOf("B"), "C D ");
    EXPECT_EQ(subclassesOf("C"), "");
}

// In any case, and those of the superclass of an association as its own.
TEST_F(ClassRelationsTest, KnowsTheAssociationsThatNameAClass) {
    EXPECT_EQ(endsAt("A"), "Link.Near LinkOfOne.Near Narrow.Near ");
    EXPECT_EQ(endsAt("B"), "Link.Far LinkOfOne.Far ");
    EXPECT_EQ(endsAt("C"), "Narrow.Far ");
    EXPECT_EQ(endsAt("D"), "");
}

}  // namespace

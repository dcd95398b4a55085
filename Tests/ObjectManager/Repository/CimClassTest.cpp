#include "ObjectManager/Repository/CimClass.h"
#include "Tests/Support/RepositoryTest.h"

namespace {

class CimClassTest : public RepositoryTest {
  protected:
    static TSKSmrPtr<Repository::CimClass> classIn(
        const TSKSmrPtr<Repository::ClassRepository>& repository, const char* name) {
        return repository->namespaces().at(0).findClass(name);
    }
};

TEST_F(CimClassTest, AClassMayBeEmpty) {
    const TSKSmrPtr<ITeskClass> found = classOf("class A_B {};", "A_B");
    EXPECT_EQ(found->getName(), "A_B");
    for (const bool all : {false, true}) {
        EXPECT_EQ(propertiesOf(*found, all), "");
        EXPECT_EQ(methodsOf(*found, all), "");
        EXPECT_EQ(qualifiersOf(*found, all), "");
    }
}

TEST_F(CimClassTest, PropertiesAreListedInByteOrderOfTheirNames) {
    constexpr const char* kMof =
        "class A_B { uint8 b; uint8 A_; uint8 Aa; uint8 _c; uint8 A1; uint8 Z; uint8 AB; };";
    EXPECT_EQ(propertiesOf(*classOf(kMof, "A_B"), true), "A1 AB A_ Aa Z _c b");
    EXPECT_EQ(propertiesOf(*classOf(kMof, "A_B"), false), "A1 AB A_ Aa Z _c b");
}

TEST_F(CimClassTest, PropertiesMayBeListedAsDeclared) {
    constexpr const char* kMof = "class A_B { uint8 b; uint8 A_; uint8 Aa; uint8 _c; uint8 A1; };";
    EXPECT_EQ(propertiesOf(*classOf(kMof, "A_B", kAsDeclared), true), "b A_ Aa _c A1");
    EXPECT_EQ(propertiesOf(*classOf(kMof, "A_B", kAsDeclared), false), "b A_ Aa _c A1");
}

// Properties and methods with the same names.
constexpr const char* kThreeLevels = R"(
class A_Top { uint8 d; uint8 c; uint8 b; uint8 d(); uint8 c(); uint8 b(); };
class A_Middle : A_Top { uint8 z; uint8 C; uint8 a; uint8 z(); uint8 C(); uint8 a(); };
class A_Bottom : A_Middle { uint8 Y; uint8 A; uint8 D; uint8 Y(); uint8 A(); uint8 D(); };
)";

TEST_F(CimClassTest, InheritedPropertiesAreInOrderWithTheClasssOwn) {
    EXPECT_EQ(propertiesOf(*classOf(kThreeLevels, "A_Top"), true), "b c d");
    EXPECT_EQ(propertiesOf(*classOf(kThreeLevels, "A_Middle"), true), "C a b d z");
    EXPECT_EQ(propertiesOf(*classOf(kThreeLevels, "A_Middle"), false), "C a z");
    EXPECT_EQ(propertiesOf(*classOf(kThreeLevels, "A_Bottom"), true), "A C D Y b z");
    EXPECT_EQ(propertiesOf(*classOf(kThreeLevels, "A_Bottom"), false), "A D Y");
}

TEST_F(CimClassTest, AsDeclaredAnOverrideTakesThePlaceOfTheOverriddenAndNewOnesAreAppended) {
    const auto listed = [&](const char* name, bool all) {
        return propertiesOf(*classOf(kThreeLevels, name, kAsDeclared), all);
    };
    EXPECT_EQ(listed("A_Top", true), "d c b");
    EXPECT_EQ(listed("A_Middle", true), "d C b z a");
    EXPECT_EQ(listed("A_Middle", false), "z C a");
    EXPECT_EQ(listed("A_Bottom", true), "D C b z A Y");
    EXPECT_EQ(listed("A_Bottom", false), "Y A D");
}

TEST_F(CimClassTest, MethodsAreAlwaysListedAsDeclared) {
    for (const Repository::Options& options : {Repository::Options(), kAsDeclared}) {
        const auto listed = [&](const char* name, bool all) {
            return methodsOf(*classOf(kThreeLevels, name, options), all);
        };
        EXPECT_EQ(listed("A_Top", true), "d c b");
        EXPECT_EQ(listed("A_Middle", true), "d C b z a");
        EXPECT_EQ(listed("A_Middle", false), "z C a");
        EXPECT_EQ(listed("A_Bottom", true), "D C b z A Y");
        EXPECT_EQ(listed("A_Bottom", false), "Y A D");
    }
}

TEST_F(CimClassTest, WhatIsNotOverriddenIsTheSuperclasssOwn) {
    const TSKSmrPtr<Repository::ClassRepository> repository = load(
        "class A_Top { uint8 p; uint8 q; uint8 M(); uint8 N(); };\n"
        "class A_Left : A_Top { uint8 q; uint8 N(); }; class A_Right : A_Top {};\n"
        "class A_Below : A_Left {};");
    const TSKSmrPtr<Repository::CimClass> top = classIn(repository, "A_Top");
    const TSKSmrPtr<Repository::CimClass> left = classIn(repository, "A_Left");
    for (const char* const name : {"A_Left", "A_Right", "A_Below"}) {
        const TSKSmrPtr<Repository::CimClass> below = classIn(repository, name);
        EXPECT_EQ(&propertyOf(*below, "p"), &propertyOf(*top, "p")) << name;
        EXPECT_EQ(&methodOf(*below, "M"), &methodOf(*top, "M")) << name;
    }
    EXPECT_NE(&propertyOf(*left, "q"), &propertyOf(*top, "q"));
    EXPECT_NE(&methodOf(*left, "N"), &methodOf(*top, "N"));
    EXPECT_EQ(&propertyOf(*classIn(repository, "A_Below"), "q"), &propertyOf(*left, "q"));
    EXPECT_EQ(&methodOf(*classIn(repository, "A_Below"), "N"), &methodOf(*left, "N"));
}

TEST_F(CimClassTest, KnowsItsSuperclassAndWhereItsMembersAreDeclared) {
    const TSKSmrPtr<Repository::ClassRepository> repository = load(kThreeLevels);
    const TSKSmrPtr<Repository::CimClass> bottom = classIn(repository, "A_Bottom");
    EXPECT_EQ(bottom->superclass()->name(), "A_Middle");
    EXPECT_EQ(classIn(repository, "A_Top")->superclass(), nullptr);
    std::string declaring;
    for (const Repository::CimProperty* const property : bottom->properties()) {
        declaring += std::string(property->name().data()) + " of " +
                     bottom->declaringClass(*property).name().data() + ", ";
    }
    EXPECT_EQ(declaring,
              "A of A_Bottom, C of A_Middle, D of A_Bottom, Y of A_Bottom, b of A_Top, "
              "z of A_Middle, ");
    declaring.clear();
    for (const Repository::CimMethod* const method : bottom->methods()) {
        declaring += std::string(method->name().data()) + " of " +
                     bottom->declaringClass(*method).name().data() + ", ";
    }
    EXPECT_EQ(declaring,
              "D of A_Bottom, C of A_Middle, b of A_Top, z of A_Middle, A of A_Bottom, "
              "Y of A_Bottom, ");
}

TEST_F(CimClassTest, PropertiesHaveEveryType) {
    const TSKSmrPtr<ITeskClass> found = classOf(R"(class A_B {
    uint8 a; sint8 b; uint16 c; sint16 d; uint32 e; sint32 f; uint64 g; sint64 h; real32 i;
    real64 j; char16 k; string l; boolean m; datetime n; A_B ref o; UINT8 p[]; string q[4];
};)",
                                                "A_B");
    std::string types;
    const auto properties = found->getProperties(true);
    for (; properties->hasCurrent(); properties->advance())
        types += textOf(properties->current().getType()) + " ";
    EXPECT_EQ(types,
              "uint8 sint8 uint16 sint16 uint32 sint32 uint64 sint64 real32 real64 char16 string "
              "boolean datetime ref uint8[] string[] ");
}

TEST_F(CimClassTest, ReferencesNameTheirClass) {
    const TSKSmrPtr<Repository::ClassRepository> repository =
        load("class A_B { A_B ref p; uint8 q; };");
    const std::vector<const Repository::CimProperty*>& properties =
        classIn(repository, "A_B")->properties();
    EXPECT_EQ(properties.at(0)->referencedClass(), "A_B");
    EXPECT_EQ(properties.at(1)->referencedClass(), "");
}

TEST_F(CimClassTest, AnOverrideMayChangeTheType) {
    const TSKSmrPtr<ITeskClass> found =
        classOf("class A_B { A_B ref p; }; class A_C : A_B { A_C ref p; };", "A_C");
    EXPECT_EQ(
        dynamic_cast<const Repository::CimProperty&>(propertyOf(*found, "p")).referencedClass(),
        "A_C");
}

TEST_F(CimClassTest, EmbeddedObjectsAndInstancesAreStrings) {
    const TSKSmrPtr<ITeskClass> found = classOf(
        "Qualifier EmbeddedObject : boolean = false, Scope (any);\n"
        "Qualifier EmbeddedInstance : string, Scope (any);\n"
        "class A_B { [EmbeddedObject] string p; [EmbeddedInstance (\"A_B\")] string q[]; };",
        "A_B");
    EXPECT_EQ(textOf(propertyOf(*found, "p").getType()), "string");
    EXPECT_EQ(textOf(propertyOf(*found, "q").getType()), "string[]");
}

TEST_F(CimClassTest, OutlivesTheRepository) {
    // The repository is gone when classOf returns.
    const TSKSmrPtr<ITeskClass> bottom = classOf(
        "[Note (\"a note that is longer than what is kept in the object\")]\n"
        "class A_Top { [Key] uint8 p; [Key] uint8 M([Key] uint8 q); };\n"
        "class A_Middle : A_Top { uint8 p; uint8 M(uint8 q); }; class A_Bottom : A_Middle {};",
        "A_Bottom");
    EXPECT_EQ(qualifiersOf(*bottom, true),
              "Note(a note that is longer than what is kept in the object)");
    EXPECT_EQ(qualifiersOf(propertyOf(*bottom, "p"), true), "Key(true)");
    const urma::IMethodDef& method = methodOf(*bottom, "M");
    EXPECT_EQ(qualifiersOf(method, true), "Key(true)");
    EXPECT_EQ(qualifiersOf(parameterOf(method, "q"), true), "Key(true)");
}

TEST_F(CimClassTest, IteratorsStayAtTheirEnd) {
    const TSKSmrPtr<ITeskClass> found = classOf("class A_B { uint8 p; };", "A_B");
    const auto properties = found->getProperties(true);
    EXPECT_TRUE(properties->hasCurrent());
    properties->advance();
    EXPECT_FALSE(properties->hasCurrent());
    properties->advance();
    EXPECT_FALSE(properties->hasCurrent());
}

TEST_F(CimClassTest, SeveralIteratorsMayWalkAClassAtOnce) {
    const TSKSmrPtr<ITeskClass> found = classOf("class A_B { uint8 p; uint8 q; };", "A_B");
    const auto first = found->getProperties(true);
    const auto second = found->getProperties(true);
    first->advance();
    EXPECT_EQ(first->current().getName(), "q");
    EXPECT_EQ(second->current().getName(), "p");
}

}  // namespace

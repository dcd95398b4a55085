#include "ObjectManager/Repository/CimQualifiers.h"
#include "Tests/Support/RepositoryTest.h"

namespace {

class CimQualifierTest : public RepositoryTest {
  protected:
    // The qualifier that is written alone on a class.
    const urma::IQualifier* only(const std::string& mof) {
        class_ = classOf("[" + mof + "] class A_B {};", "A_B");
        return &class_->getQualifiers(false)->current();
    }

    TSKSmrPtr<ITeskClass> class_;
};

TEST_F(CimQualifierTest, NamesAreAsWritten) {
    EXPECT_EQ(only("KEY")->getName(), "KEY");
}

TEST_F(CimQualifierTest, ABooleanWithoutAValueIsTrue) {
    const urma::IQualifier* const key = only("Key");
    EXPECT_TRUE(key->hasValue());
    EXPECT_TRUE(key->getValue()->toBoolean());
    EXPECT_EQ(textOf(*key->getValue()->getType()), "boolean");
    EXPECT_EQ(key->getValue()->toString(), "true");
    EXPECT_EQ(textOf(only("Key (false)")->getValue().get()), "false");
}

TEST_F(CimQualifierTest, NullIsNoValue) {
    const urma::IQualifier* const note = only("Note (null)");
    EXPECT_FALSE(note->hasValue());
    EXPECT_TRUE(note->getValue().isNull());
}

TEST_F(CimQualifierTest, WithoutAValueNothingButABooleanHasOneNotEvenItsDefault) {
    const std::string file = directory_.write(
        "b.mof", "Qualifier Note : string = \"default\", Scope (any); [Note] class A_B {};");
    const Loading::LoadedRepository loaded =
        Loading::loadRepository({{.name = "root/test", .paths = {file}}}, {}, {});
    EXPECT_EQ(qualifiersOf(*loaded.repository->getClass("root/test", "A_B"), true), "Note(null)");
}

TEST_F(CimQualifierTest, ValuesHaveTheDeclaredType) {
    const TSKSmrPtr<ITeskClass> found = classOf(
        "Qualifier MaxLen : uint32, Scope (any); Qualifier Levels : sint8[], Scope (any);\n"
        "[MaxLen (64), Levels {}, Values {null}] class A_B {};",
        "A_B");
    const auto typeOf = [&](const char* name) {
        return textOf(*found->getQualifier(name, false)->getValue()->getType());
    };
    EXPECT_EQ(typeOf("MaxLen"), "uint32");
    EXPECT_EQ(typeOf("Levels"), "sint8[]");
    EXPECT_EQ(typeOf("Values"), "string[]");
}

class CimQualifiersTest : public RepositoryTest {};

// Three levels of one property, and of one class.
constexpr const char* kThreeLevels = R"(
[Key, Note ("class top"), Version ("1"), Plain ("p"), Description ("top")]
class A_Top {
    [Key, Note ("top"), Version ("1"), Plain ("p")] uint8 p;
};
[Version ("2"), NOTE ("class middle")]
class A_Middle : A_Top {
    [Version ("2"), NOTE ("middle")] uint8 p;
};
class A_Bottom : A_Middle {
    [Description ("bottom")] uint8 p;
};
)";

TEST_F(CimQualifiersTest, WrittenOnesComeInTheirOrder) {
    const TSKSmrPtr<ITeskClass> top = classOf(kThreeLevels, "A_Top");
    EXPECT_EQ(qualifiersOf(*top, false),
              "Key(true) Note(class top) Version(1) Plain(p) Description(top)");
    EXPECT_EQ(qualifiersOf(*top, true), qualifiersOf(*top, false));
    EXPECT_EQ(qualifiersOf(propertyOf(*top, "p"), false),
              "Key(true) Note(top) Version(1) Plain(p)");
}

TEST_F(CimQualifiersTest, AClassHasWhatItsSuperclassPropagatesAndItDoesNotWrite) {
    const TSKSmrPtr<ITeskClass> middle = classOf(kThreeLevels, "A_Middle");
    EXPECT_EQ(qualifiersOf(*middle, false), "Version(2) NOTE(class middle)");
    EXPECT_EQ(qualifiersOf(*middle, true),
              "Version(2) NOTE(class middle) Key(true) Plain(p) Description(top)");
}

TEST_F(CimQualifiersTest, AnOverrideHasWhatTheOverriddenPropagatesAndItDoesNotWrite) {
    const TSKSmrPtr<ITeskClass> middle = classOf(kThreeLevels, "A_Middle");
    EXPECT_EQ(qualifiersOf(propertyOf(*middle, "p"), false), "Version(2) NOTE(middle)");
    EXPECT_EQ(qualifiersOf(propertyOf(*middle, "p"), true),
              "Version(2) NOTE(middle) Key(true) Plain(p)");
}

TEST_F(CimQualifiersTest, WhatIsPropagatedIsPropagatedFurther) {
    const TSKSmrPtr<ITeskClass> bottom = classOf(kThreeLevels, "A_Bottom");
    EXPECT_EQ(qualifiersOf(*bottom, false), "");
    EXPECT_EQ(qualifiersOf(*bottom, true),
              "NOTE(class middle) Key(true) Plain(p) Description(top)");
    EXPECT_EQ(qualifiersOf(propertyOf(*bottom, "p"), false), "Description(bottom)");
    EXPECT_EQ(qualifiersOf(propertyOf(*bottom, "p"), true),
              "Description(bottom) NOTE(middle) Key(true) Plain(p)");
}

TEST_F(CimQualifiersTest, AnInheritedDefinitionHasTheQualifiersOfTheSuperclassAsWrittenOnes) {
    const TSKSmrPtr<ITeskClass> found = classOf(
        "class A_Top { [Key, Version (\"1\")] uint8 p; [Version (\"2\")] uint8 M(); };\n"
        "class A_Middle : A_Top {}; class A_Bottom : A_Middle {};",
        "A_Bottom");
    EXPECT_EQ(qualifiersOf(propertyOf(*found, "p"), false), "Key(true) Version(1)");
    EXPECT_EQ(qualifiersOf(methodOf(*found, "M"), false), "Version(2)");
}

TEST_F(CimQualifiersTest, LookupIgnoresCaseAndFindsPropagatedOnesWhenAsked) {
    const TSKSmrPtr<ITeskClass> found = classOf(kThreeLevels, "A_Middle");
    const urma::IPropertyDef& property = propertyOf(*found, "p");
    EXPECT_EQ(property.getQualifier("KEY", true)->getName(), "Key");
    EXPECT_EQ(property.getQualifier("key", false), nullptr);
    EXPECT_EQ(property.getQualifier("note", true)->getValue()->toString(), "middle");
    EXPECT_EQ(property.getQualifier("note", false)->getValue()->toString(), "middle");
    EXPECT_EQ(property.getQualifier("Version", true)->getValue()->toString(), "2");
    EXPECT_EQ(property.getQualifier("Description", true), nullptr);
    EXPECT_EQ(property.getQualifier("", true), nullptr);
    EXPECT_EQ(found->getQualifier("DESCRIPTION", true)->getValue()->toString(), "top");
    EXPECT_EQ(found->getQualifier("DESCRIPTION", false), nullptr);
}

TEST_F(CimQualifiersTest, APropagatedQualifierIsThatOfTheOverriddenDefinition) {
    const TSKSmrPtr<Repository::ClassRepository> repository = load(kThreeLevels);
    const TSKSmrPtr<ITeskClass> top = repository->getClass("root/test", "A_Top");
    const TSKSmrPtr<ITeskClass> bottom = repository->getClass("root/test", "A_Bottom");
    EXPECT_EQ(propertyOf(*bottom, "p").getQualifier("Key", true),
              propertyOf(*top, "p").getQualifier("Key", false));
}

TEST_F(CimQualifiersTest, DeclaredDefaultsAreNotFound) {
    const TSKSmrPtr<ITeskClass> found = classOf("class A_B { uint8 p; };", "A_B");
    EXPECT_EQ(found->getQualifier("Note", true), nullptr);
    EXPECT_EQ(propertyOf(*found, "p").getQualifier("Key", true), nullptr);
}

TEST_F(CimQualifiersTest, AFlavorOnTheQualifierCountsBeforeThatOfItsDeclaration) {
    const TSKSmrPtr<ITeskClass> found = classOf(
        "[Note (\"n\") : Restricted, Version (\"1\") : ToSubclass, Plain (\"p\") : Restricted,\n"
        "Key : ToSubclass] class A_B {\n"
        "    [Note (\"n\") : Restricted, Version (\"1\") : ToSubclass] uint8 p; };\n"
        "class A_C : A_B { uint8 p; }; class A_D : A_C { uint8 p; };",
        "A_D");
    EXPECT_EQ(qualifiersOf(*found, true), "Version(1) Key(true)");
    EXPECT_EQ(qualifiersOf(propertyOf(*found, "p"), true), "Version(1)");
}

TEST_F(CimQualifiersTest, ARestrictedQualifierHidesWhatAHigherLevelPropagates) {
    const TSKSmrPtr<ITeskClass> found = classOf(
        "class A_B { [Note (\"top\")] uint8 p; };\n"
        "class A_C : A_B { [Note (\"middle\") : Restricted] uint8 p; };\n"
        "class A_D : A_C { uint8 p; };",
        "A_D");
    EXPECT_EQ(qualifiersOf(propertyOf(*found, "p"), true), "");
}

TEST_F(CimQualifiersTest, ANullIsWrittenAndHidesWhatIsPropagated) {
    const TSKSmrPtr<ITeskClass> found = classOf(
        "[Note (\"top\")] class A_B {}; [Note (null)] class A_C : A_B {}; class A_D : A_C {};",
        "A_D");
    EXPECT_EQ(qualifiersOf(*found, true), "Note(null)");
    EXPECT_EQ(qualifiersOf(*found, false), "");
}

// A lookup is for the value.
TEST_F(CimQualifiersTest, ANullIsNotFound) {
    const TSKSmrPtr<Repository::ClassRepository> repository = load(
        "class A_B { [Note (\"top\")] uint8 p; }; class A_C : A_B { [Note (null)] uint8 p; };\n"
        "class A_D : A_C { uint8 p; };");
    for (const char* const name : {"A_C", "A_D"}) {
        const TSKSmrPtr<ITeskClass> found = repository->getClass("root/test", name);
        EXPECT_EQ(propertyOf(*found, "p").getQualifier("Note", true), nullptr) << name;
        EXPECT_EQ(propertyOf(*found, "p").getQualifier("Note", false), nullptr) << name;
    }
}

TEST_F(CimQualifiersTest, LevelsWithoutTheDefinitionLieBetweenAnOverrideAndTheOverridden) {
    const TSKSmrPtr<ITeskClass> found = classOf(
        "class A_B { [Note (\"top\"), Version (\"1\")] uint8 p; }; class A_C : A_B {};\n"
        "class A_D : A_C { uint8 P; };",
        "A_D");
    EXPECT_EQ(qualifiersOf(propertyOf(*found, "P"), true), "Note(top)");
}

TEST_F(CimQualifiersTest, IsTrueLooksForABooleanThatIsWrittenOrPropagated) {
    const TSKSmrPtr<ITeskClass> found = classOf(
        "class A_B { [Key] uint8 p; [Key (false)] uint8 q; [Key (null)] uint8 r; uint8 s;\n"
        "[Note (\"true\")] uint8 t; };\n"
        "class A_C : A_B { uint8 p; };",
        "A_C");
    const auto isKey = [&](const char* name) {
        return Repository::isTrue(propertyOf(*found, name), "KEY");
    };
    EXPECT_TRUE(isKey("p"));
    EXPECT_FALSE(isKey("q"));
    EXPECT_FALSE(isKey("r"));
    EXPECT_FALSE(isKey("s"));
    EXPECT_FALSE(Repository::isTrue(propertyOf(*found, "t"), "Note"));
}

}  // namespace

#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "ObjectManager/Mof/Compiler.h"
#include "ObjectManager/Mof/DeclarationChecker.h"
#include "Tests/ObjectManager/Mof/DeclarationText.h"
#include "Tests/Support/MofDirectory.h"

namespace {

using Mof::Compilation;

// What the classes of these tests are qualified with.
constexpr const char* kQualifiers = R"(
Qualifier Key : boolean = false, Scope (any), Flavor (DisableOverride, ToSubclass);
Qualifier Abstract : boolean = false, Scope (any), Flavor (Restricted);
Qualifier Flags : boolean[], Scope (any);
Qualifier Description : string = null, Scope (any), Flavor (ToSubclass, Translatable);
Qualifier Values : string[], Scope (any);
Qualifier MaxLen : uint32 = null, Scope (any);
Qualifier Level : sint8[2], Scope (any);
Qualifier Factor : real32, Scope (any);
Qualifier Letter : char16, Scope (any);
Qualifier Since : datetime, Scope (any);
)";

std::string numbered(const char* name, int number) {
    return name + std::to_string(number);
}

class MofDeclarationCheckerTest : public testing::Test {
  protected:
    // Two files: "q.mof" with the qualifiers, and "a.mof".
    Compilation compile(const std::string& mof) {
        return Mof::compile(
            {directory_.write("q.mof", kQualifiers), directory_.write("a.mof", mof)});
    }

    // All that is said about "a.mof".
    std::string faults(const std::string& mof) {
        return directory_.shown(compile(mof).diagnostics);
    }

    MofDirectory directory_;
};

// Superclasses.

TEST_F(MofDeclarationCheckerTest, ASuperclassMayBeDeclaredLaterAndInAnotherCase) {
    EXPECT_EQ(faults("class A_B : a_c {}; class A_C : A_D {}; class A_D {};"), "");
}

TEST_F(MofDeclarationCheckerTest, AMissingSuperclassIsAnErrorForEveryClassBelowIt) {
    EXPECT_EQ(faults("class A_B : A_X {};\nclass A_C : A_B {};\nclass A_D : A_X {};\n"),
              "a.mof:1:13: error: the superclass \"A_X\" of \"A_B\" is not declared\n"
              "class A_B : A_X {};\n"
              "            ^\n"
              "a.mof:3:13: error: the superclass \"A_X\" of \"A_D\" is not declared\n"
              "class A_D : A_X {};\n"
              "            ^\n");
}

TEST_F(MofDeclarationCheckerTest, AClassMustNotBeItsOwnSuperclass) {
    EXPECT_EQ(faults("class A_B : a_b {};"),
              "a.mof:1:13: error: the class \"A_B\" is its own superclass\n"
              "class A_B : a_b {};\n"
              "            ^\n");
}

TEST_F(MofDeclarationCheckerTest, ACycleOfTwoClassesIsOneError) {
    EXPECT_EQ(faults("class A_B : A_C {};\nclass A_C : A_B {};"),
              "a.mof:1:13: error: the class \"A_B\" is its own superclass, by way of \"A_C\"\n"
              "class A_B : A_C {};\n"
              "            ^\n");
}

TEST_F(MofDeclarationCheckerTest, ACycleOfThreeClassesIsOneError) {
    EXPECT_EQ(faults("class A_B : A_C {};\nclass A_C : A_D {};\nclass A_D : A_B {};"),
              "a.mof:1:13: error: the class \"A_B\" is its own superclass, by way of \"A_C\", by "
              "way of \"A_D\"\n"
              "class A_B : A_C {};\n"
              "            ^\n");
}

TEST_F(MofDeclarationCheckerTest, AClassBelowACycleIsNotPartOfIt) {
    EXPECT_EQ(faults("class A_E : A_F {};\nclass A_F : A_B {};\nclass A_B : A_C {};\n"
                     "class A_C : A_B {};\nclass A_G : A_C {};\n"),
              "a.mof:3:13: error: the class \"A_B\" is its own superclass, by way of \"A_C\"\n"
              "class A_B : A_C {};\n"
              "            ^\n");
}

TEST_F(MofDeclarationCheckerTest, EveryCycleIsAnErrorOfItsOwn) {
    EXPECT_EQ(faults("class A_B : A_B {};\nclass A_C {};\nclass A_D : A_E {};\n"
                     "class A_E : A_D {};\n"),
              "a.mof:1:13: error: the class \"A_B\" is its own superclass\n"
              "class A_B : A_B {};\n"
              "            ^\n"
              "a.mof:3:13: error: the class \"A_D\" is its own superclass, by way of \"A_E\"\n"
              "class A_D : A_E {};\n"
              "            ^\n");
}

// Classes A_0 to A_`last`, each below the one before it.
std::string lineOfClasses(int last) {
    std::string mof = "class A_0 {};\n";
    for (int number = 1; number <= last; ++number)
        mof += numbered("class A_", number) + numbered(" : A_", number - 1) + " {};\n";
    return mof;
}

// Classes A_0 to A_`last`, each below the next, and the last one below the first.
std::string cycleOfClasses(int last) {
    std::string mof;
    for (int number = 0; number <= last; ++number)
        mof += numbered("class A_", number) + numbered(" : A_", number == last ? 0 : number + 1) +
               " {};\n";
    return mof;
}

std::string shownCycle(const std::string& classes) {
    return "a.mof:1:13: error: the class \"A_0\" is its own superclass" + classes +
           "\nclass A_0 : A_1 {};\n            ^\n";
}

TEST_F(MofDeclarationCheckerTest, ALongCycleNamesTenClassesAndCountsTheOthers) {
    std::string ten;
    for (int number = 1; number <= 10; ++number)
        ten += numbered(", by way of \"A_", number) + "\"";
    EXPECT_EQ(faults(cycleOfClasses(10)), shownCycle(ten));
    EXPECT_EQ(faults(cycleOfClasses(11)), shownCycle(ten + " and 1 more"));
    EXPECT_EQ(faults(cycleOfClasses(100000)), shownCycle(ten + " and 99990 more"));
}

// It was reported a second time, as classes with too many superclasses above them.
TEST_F(MofDeclarationCheckerTest, ACycleOfMoreThanTwoHundredClassesIsOneError) {
    EXPECT_EQ(Mof::compile({directory_.write("a.mof", cycleOfClasses(300))}).diagnostics.size(),
              1U);
}

TEST_F(MofDeclarationCheckerTest, TwoHundredSuperclassesAreAllowed) {
    EXPECT_EQ(faults(lineOfClasses(200)), "");
}

constexpr const char* kTooDeep =
    "a.mof:202:15: error: the class \"A_201\" has more than 200 superclasses above it\n"
    "class A_201 : A_200 {};\n"
    "              ^\n";

TEST_F(MofDeclarationCheckerTest, OneMoreThanTwoHundredSuperclassesIsAnError) {
    EXPECT_EQ(faults(lineOfClasses(201)), kTooDeep);
}

TEST_F(MofDeclarationCheckerTest, ClassesBelowOneThatIsTooDeepAreNotMentioned) {
    EXPECT_EQ(faults(lineOfClasses(100000)), kTooDeep);
}

TEST_F(MofDeclarationCheckerTest, DepthIsFoundWhateverTheOrderOfClasses) {
    std::string upwards;
    for (int number = 201; number > 0; --number)
        upwards += numbered("class A_", number) + numbered(" : A_", number - 1) + " {};\n";
    EXPECT_EQ(faults(upwards + "class A_0 {};"),
              "a.mof:1:15: error: the class \"A_201\" has more than 200 superclasses above it\n"
              "class A_201 : A_200 {};\n"
              "              ^\n");
}

TEST_F(MofDeclarationCheckerTest, EveryClassThatIsTooDeepIsAnError) {
    EXPECT_EQ(faults(lineOfClasses(201) + "class A_X : A_200 {};\n"),
              std::string(kTooDeep) +
                  "a.mof:203:13: error: the class \"A_X\" has more than 200 superclasses above it\n"
                  "class A_X : A_200 {};\n"
                  "            ^\n");
}

// Qualifiers.

TEST_F(MofDeclarationCheckerTest, AnUndeclaredQualifierIsWarnedOfOnceInWhateverCase) {
    EXPECT_EQ(faults("[Odd] class A_B {\n"
                     "    [ODD (1), Odder {1, \"a\"}] uint8 M([odd (\"x\")] uint8 p);\n"
                     "};"),
              "a.mof:1:2: warning: the qualifier \"Odd\" is not declared\n"
              "[Odd] class A_B {\n"
              " ^\n"
              "a.mof:2:15: warning: the qualifier \"Odder\" is not declared\n"
              "    [ODD (1), Odder {1, \"a\"}] uint8 M([odd (\"x\")] uint8 p);\n"
              "              ^\n");
}

TEST_F(MofDeclarationCheckerTest, AQualifierMayBeWrittenInAnotherCase) {
    EXPECT_EQ(faults("[KEY, maxlen (1)] class A_B {};"), "");
}

TEST_F(MofDeclarationCheckerTest, OnlyABooleanMayBeWrittenWithoutAValue) {
    const Compilation compilation = compile("[Key, Description, Flags] class A_B {};");
    EXPECT_EQ(directory_.shown(compilation.diagnostics),
              "a.mof:1:7: warning: the qualifier \"Description\" has no value\n"
              "[Key, Description, Flags] class A_B {};\n"
              "      ^\n"
              "a.mof:1:20: warning: the qualifier \"Flags\" has no value\n"
              "[Key, Description, Flags] class A_B {};\n"
              "                   ^\n");
    const Mof::Qualifiers& qualifiers = compilation.classes.at(0).qualifiers;
    EXPECT_FALSE(qualifiers.at(0).value.has_value());
    EXPECT_EQ(qualifiers.at(1).value.value().literals.at(0).kind, Mof::Literal::Kind::kNull);
    EXPECT_EQ(qualifiers.at(2).value.value().literals.at(0).kind, Mof::Literal::Kind::kNull);
}

TEST_F(MofDeclarationCheckerTest, ValuesOfQualifiersFitTheirDeclaration) {
    EXPECT_EQ(
        faults("[Key (true), Flags {true, false}, Description (\"d\"), Values {\"a\", null},\n"
               "MaxLen (4294967295), Level {-128, 127}, Factor (1.5), Letter ('x'),\n"
               "Since (\"20000101000000.000000+000\")] class A_B {};\n"
               "[Key (null), Flags (null), Description (null), MaxLen (null), Level {},\n"
               "Factor (1)] class A_C {};"),
        "");
}

TEST_F(MofDeclarationCheckerTest, AValueOfAnotherTypeIsAnErrorAtTheValue) {
    struct Wrong {
        const char* qualifier;  // with @ where the fault is
        const char* fault;
    };
    const Wrong kWrong[] = {
        {"Key (@\"true\")", "\"Key\" must be a boolean, not a string"},
        {"Key (@1)", "\"Key\" must be a boolean, not a whole number"},
        {"Key @{true}", "\"Key\" must be one value, not an array"},
        {"Flags (@true)", "\"Flags\" must be an array, in braces"},
        {"Flags {true, @'x'}", "\"Flags\" must be a boolean, not a character"},
        {"Description (@5)", "\"Description\" must be a string, not a whole number"},
        {"Description (@true)", "\"Description\" must be a string, not a boolean"},
        {"Description @{\"a\"}", "\"Description\" must be one value, not an array"},
        {"Values (@\"a\")", "\"Values\" must be an array, in braces"},
        {"Values {\"a\", @1.5}", "\"Values\" must be a string, not a real number"},
        {"MaxLen (@\"8\")", "\"MaxLen\" must be a uint32, not a string"},
        {"MaxLen (@1.5)", "\"MaxLen\" must be a uint32, not a real number"},
        {"MaxLen (@$A)", "\"MaxLen\" must be a uint32, not an alias"},
        {"maxlen (@-1)", "\"maxlen\" must be in the range of a uint32, 0 to 4294967295: -1 is not"},
        {"Level {0, @128}", "\"Level\" must be in the range of a sint8, -128 to 127: 128 is not"},
        {"Level @{0, 1, 2}", "\"Level\" must have no more than 2 elements"},
        {"Factor (@\"1.5\")", "\"Factor\" must be a real32, not a string"},
        {"Factor (@1.0e39)", "\"Factor\" must fit into a real32: 1e+39 does not"},
        {"Letter (@\"x\")", "\"Letter\" must be a char16, not a string"},
        {"Since (@2000)", "\"Since\" must be a datetime, not a whole number"},
    };
    for (const auto& [qualifier, fault] : kWrong) {
        std::string line = std::string("[") + qualifier + "] class A_B {};";
        const std::size_t place = line.find('@');
        line.erase(place, 1);
        EXPECT_EQ(faults(line), "a.mof:1:" + std::to_string(place + 1) + ": error: the qualifier " +
                                    fault + "\n" + line + "\n" + std::string(place, ' ') + "^\n");
    }
}

TEST_F(MofDeclarationCheckerTest, QualifiersAreCheckedWhereverTheyAreWritten) {
    EXPECT_EQ(faults("[Key (1)] class A_B {\n"
                     "    [Key (2)] uint8 p;\n"
                     "    [Key (3)] uint8 M([Key (4)] uint8 q);\n"
                     "};"),
              "a.mof:1:7: error: the qualifier \"Key\" must be a boolean, not a whole number\n"
              "[Key (1)] class A_B {\n"
              "      ^\n"
              "a.mof:2:11: error: the qualifier \"Key\" must be a boolean, not a whole number\n"
              "    [Key (2)] uint8 p;\n"
              "          ^\n"
              "a.mof:3:11: error: the qualifier \"Key\" must be a boolean, not a whole number\n"
              "    [Key (3)] uint8 M([Key (4)] uint8 q);\n"
              "          ^\n"
              "a.mof:3:29: error: the qualifier \"Key\" must be a boolean, not a whole number\n"
              "    [Key (3)] uint8 M([Key (4)] uint8 q);\n"
              "                            ^\n");
}

TEST_F(MofDeclarationCheckerTest, TheDefaultOfAQualifierMustFitItsType) {
    EXPECT_EQ(faults("Qualifier Odd : uint8 = 256, Scope (any);\n"
                     "Qualifier Even : uint8[] = 2, Scope (any);"),
              "a.mof:1:25: error: the default value of \"Odd\" must be in the range of a uint8, 0 "
              "to 255: 256 is not\n"
              "Qualifier Odd : uint8 = 256, Scope (any);\n"
              "                        ^\n"
              "a.mof:2:28: error: the default value of \"Even\" must be an array, in braces\n"
              "Qualifier Even : uint8[] = 2, Scope (any);\n"
              "                           ^\n");
}

TEST_F(MofDeclarationCheckerTest, AFlavorOfTheQualifierCountsBeforeThatOfItsDeclaration) {
    const Compilation compilation = compile(R"([
    Key, Key2, Abstract,
    Key3 : Restricted, Values {} : Restricted, Flags {} : ToSubclass,
    Factor (1) : EnableOverride, Odd, Odder : Restricted, Oddest : ToSubclass, Late : ToSubclass
] class A_B {};
Qualifier Key2 : boolean, Scope (any);
Qualifier Key3 : boolean, Scope (any), Flavor (ToSubclass);
Qualifier Late : boolean, Scope (any), Flavor (Restricted);)");
    EXPECT_FALSE(compilation.hasErrors());
    std::string propagating;
    for (const Mof::Qualifier& qualifier : compilation.classes.at(0).qualifiers) {
        if (qualifier.propagates)
            propagating += std::string(qualifier.name.text.data()) + " ";
    }
    EXPECT_EQ(propagating, "Key Key2 Flags Factor Odd Oddest Late ");
}

// Values of properties.

TEST_F(MofDeclarationCheckerTest, ADefaultValueMustFitItsProperty) {
    EXPECT_EQ(faults("class A_B {\n    uint8 p = 256;\n    boolean q[] = {true, 1};\n};"),
              "a.mof:2:15: error: the default value of \"p\" must be in the range of a uint8, 0 to "
              "255: 256 is not\n"
              "    uint8 p = 256;\n"
              "              ^\n"
              "a.mof:3:26: error: the default value of \"q\" must be a boolean, not a whole "
              "number\n"
              "    boolean q[] = {true, 1};\n"
              "                         ^\n");
}

TEST_F(MofDeclarationCheckerTest, AReferenceMayBeNoArrayUnlessItIsAParameter) {
    EXPECT_EQ(faults("class A_B {\n    A_B ref one;\n    A_B ref many[];\n"
                     "    uint8 M(A_B ref all[]);\n};"),
              "a.mof:3:13: error: the reference \"many\" must not be an array\n"
              "    A_B ref many[];\n"
              "            ^\n");
}

TEST_F(MofDeclarationCheckerTest, AReferencedClassThatIsNotDeclaredIsWarnedOfOnce) {
    EXPECT_EQ(faults("class A_B {\n    A_X ref p;\n    a_x ref q;\n    A_Y ref M(A_Z ref r);\n"
                     "    a_b ref s;\n};"),
              "a.mof:2:5: warning: the referenced class \"A_X\" is not declared\n"
              "    A_X ref p;\n"
              "    ^\n"
              "a.mof:4:5: warning: the referenced class \"A_Y\" is not declared\n"
              "    A_Y ref M(A_Z ref r);\n"
              "    ^\n"
              "a.mof:4:15: warning: the referenced class \"A_Z\" is not declared\n"
              "    A_Y ref M(A_Z ref r);\n"
              "              ^\n");
}

// What is declared twice.

TEST_F(MofDeclarationCheckerTest, APropertyDeclaredTwiceInWhateverCaseIsAnError) {
    EXPECT_EQ(faults("class A_B {\n    uint8 one;\n    uint8 two;\n    string ONE;\n};"),
              "a.mof:4:12: error: the class \"A_B\" has a property \"ONE\" already\n"
              "    string ONE;\n"
              "           ^\n");
}

TEST_F(MofDeclarationCheckerTest, AMethodDeclaredTwiceInWhateverCaseIsAnError) {
    EXPECT_EQ(faults("class A_B {\n    uint8 one();\n    uint8 ONE(uint8 p);\n};"),
              "a.mof:3:11: error: the class \"A_B\" has a method \"ONE\" already\n"
              "    uint8 ONE(uint8 p);\n"
              "          ^\n");
}

TEST_F(MofDeclarationCheckerTest, AParameterDeclaredTwiceInWhateverCaseIsAnError) {
    EXPECT_EQ(faults("class A_B {\n    uint8 M(uint8 one, string ONE);\n};"),
              "a.mof:2:31: error: the method \"M\" has a parameter \"ONE\" already\n"
              "    uint8 M(uint8 one, string ONE);\n"
              "                              ^\n");
}

TEST_F(MofDeclarationCheckerTest, AQualifierWrittenTwiceInWhateverCaseIsAnError) {
    EXPECT_EQ(faults("[Key, KEY] class A_B {\n"
                     "    [Key, KEY] uint8 p;\n"
                     "    [Key, KEY] uint8 M([Key, KEY] uint8 q);\n"
                     "};"),
              "a.mof:1:7: error: the qualifier \"KEY\" is written twice\n"
              "[Key, KEY] class A_B {\n"
              "      ^\n"
              "a.mof:2:11: error: the qualifier \"KEY\" is written twice\n"
              "    [Key, KEY] uint8 p;\n"
              "          ^\n"
              "a.mof:3:11: error: the qualifier \"KEY\" is written twice\n"
              "    [Key, KEY] uint8 M([Key, KEY] uint8 q);\n"
              "          ^\n"
              "a.mof:3:30: error: the qualifier \"KEY\" is written twice\n"
              "    [Key, KEY] uint8 M([Key, KEY] uint8 q);\n"
              "                             ^\n");
}

TEST_F(MofDeclarationCheckerTest, APropertyAMethodAndAParameterMayShareAName) {
    EXPECT_EQ(faults("class A_B {\n    uint8 one;\n    uint8 one(uint8 one);\n};"), "");
}

// Short lists are compared one by one, longer ones by a table.
TEST_F(MofDeclarationCheckerTest, ListsOfEveryLengthAreSearchedForDoubles) {
    for (int count = 2; count <= 30; ++count) {
        std::string mof = "class A_B {\n";
        for (int number = 1; number < count; ++number)
            mof += numbered("    uint8 p", number) + ";\n";
        EXPECT_EQ(faults(mof + "};"), "");
        const std::string place = "a.mof:" + std::to_string(count + 1) + ":11: ";
        EXPECT_EQ(faults(mof + "    uint8 P1;\n};"),
                  place +
                      "error: the class \"A_B\" has a property \"P1\" already\n"
                      "    uint8 P1;\n"
                      "          ^\n");
    }
}

TEST_F(MofDeclarationCheckerTest, AClassDeclaredTwiceAlikeIsThereOnce) {
    const Compilation compilation = compile(
        "class A_B { [Key] uint8 p = 1; };\nclass A_C {};\n"
        "CLASS a_b { /* again */ [KEY] UINT8 P = 0x1; };\nclass A_B { [Key] uint8 p = 1; };");
    EXPECT_EQ(diagnosticsOf(compilation), "");
    ASSERT_EQ(compilation.classes.size(), 2U);
    EXPECT_EQ(compilation.classes[0].name.text, "A_B");
    EXPECT_EQ(compilation.classes[1].name.text, "A_C");
}

TEST_F(MofDeclarationCheckerTest, AClassDeclaredOtherwiseIsAnErrorThatNamesTheFirst) {
    EXPECT_EQ(faults("class A_B {};\n  class A_B {};\n  class a_b { uint8 p; };\n"
                     "class A_B : A_C {};\nclass A_C {};"),
              "a.mof:3:9: error: the class \"a_b\" is declared otherwise at a.mof:1:7\n"
              "  class a_b { uint8 p; };\n"
              "        ^\n"
              "a.mof:4:7: error: the class \"A_B\" is declared otherwise at a.mof:1:7\n"
              "class A_B : A_C {};\n"
              "      ^\n");
}

TEST_F(MofDeclarationCheckerTest, AQualifierDeclaredTwiceAlikeIsThereOnce) {
    const Compilation compilation =
        compile("qualifier MAXLEN : UINT32 = NULL, /* again */ Scope (Any);\nclass A_B {};");
    EXPECT_EQ(diagnosticsOf(compilation), "");
    EXPECT_EQ(compilation.qualifiers.size(), 10U);
}

TEST_F(MofDeclarationCheckerTest, AQualifierDeclaredOtherwiseIsAnErrorThatNamesTheFirst) {
    EXPECT_EQ(faults("Qualifier MAXLEN : uint64 = null, Scope (any);"),
              "a.mof:1:11: error: the qualifier \"MAXLEN\" is declared otherwise at q.mof:7:11\n"
              "Qualifier MAXLEN : uint64 = null, Scope (any);\n"
              "          ^\n");
}

TEST_F(MofDeclarationCheckerTest, WhatIsWrongWithAClassDeclaredTwiceAlikeIsSaidOnce) {
    EXPECT_EQ(faults("class A_B { uint8 p = -1; };\nclass A_B { uint8 p = -1; };"),
              "a.mof:1:23: error: the default value of \"p\" must be in the range of a uint8, 0 to "
              "255: -1 is not\n"
              "class A_B { uint8 p = -1; };\n"
              "                      ^\n");
}

// Sizes that no schema has are answered in a moment.

// "PREFIX0, PREFIX1, ..."
std::string listOf(int count, const char* prefix) {
    std::string list;
    for (int number = 0; number < count; ++number)
        list += (number == 0 ? "" : ", ") + numbered(prefix, number);
    return list;
}

constexpr int kVeryMany = 20000;

TEST_F(MofDeclarationCheckerTest, AClassMayHaveVeryManyQualifiers) {
    const std::string list = listOf(kVeryMany, "Q");
    const Compilation compilation = compile("[" + list + "] class A_B {};");
    EXPECT_FALSE(compilation.hasErrors());
    EXPECT_EQ(compilation.classes.at(0).qualifiers.size(), std::size_t{kVeryMany});
    const Compilation doubled = compile("[" + list + ",\nq19999] class A_B {};");
    EXPECT_EQ(doubled.diagnostics.at(0).message, "the qualifier \"q19999\" is written twice");
    EXPECT_EQ(doubled.diagnostics.at(0).place.line, 2U);
}

TEST_F(MofDeclarationCheckerTest, AClassMayHaveVeryManyProperties) {
    std::string mof = "class A_B {\n";
    for (int number = 0; number < kVeryMany; ++number)
        mof += numbered("uint8 p", number) + ";\n";
    EXPECT_EQ(faults(mof + "};"), "");
    EXPECT_EQ(faults(mof + "uint8 P19999;\n};"),
              "a.mof:20002:7: error: the class \"A_B\" has a property \"P19999\" already\n"
              "uint8 P19999;\n"
              "      ^\n");
}

TEST_F(MofDeclarationCheckerTest, AClassMayHaveVeryManyMethodsAndAMethodVeryManyParameters) {
    std::string mof = "class A_B {\n";
    for (int number = 0; number < kVeryMany; ++number)
        mof += numbered("uint8 M", number) + "();\n";
    mof += "uint8 N(" + listOf(kVeryMany, "\nuint8 p") + ");\n";
    EXPECT_EQ(faults(mof + "};"), "");
    EXPECT_EQ(faults(mof + "uint8 m0();\n};"),
              "a.mof:40003:7: error: the class \"A_B\" has a method \"m0\" already\n"
              "uint8 m0();\n"
              "      ^\n");
}

// A class with 9,999 properties and a qualifier, with so many empty classes below it.
std::string wideClasses(int below) {
    std::string mof = "[Key] class A_B {\n";
    for (int number = 1; number <= 9999; ++number)
        mof += numbered("uint8 p", number) + ";\n";
    mof += "};\n";
    for (int number = 1; number <= below; ++number)
        mof += numbered("class A_", number) + " : A_B {};\n";
    return mof;
}

TEST_F(MofDeclarationCheckerTest, ClassesMayInheritTwentyMillionDefinitionsAndNoMore) {
    const std::string mof = wideClasses(1999);
    EXPECT_EQ(faults(mof), "");
    const auto fault = [](const std::string& line, const char* indentation) {
        return "error: up to this class, classes declare and inherit more than 20000000 "
               "properties, methods, parameters and qualifiers\n" +
               line + "\n" + indentation + "^\n";
    };
    for (const char* const line : {"class A_X { uint8 p; };", "class A_X { uint8 M(); };"})
        EXPECT_EQ(faults(mof + line), "a.mof:12001:7: " + fault(line, "      "));
    EXPECT_EQ(faults(mof + "[Key] class A_X {};"),
              "a.mof:12001:13: " + fault("[Key] class A_X {};", "            "));
    EXPECT_EQ(faults(wideClasses(1998) + "class A_X { [Key] uint8 M([Key] uint8 q); };\n" +
                     "class A_Y : A_B {};"),
              "a.mof:12001:7: " + fault("class A_Y : A_B {};", "      "));
}

TEST_F(MofDeclarationCheckerTest, ThereMayBeVeryManyClassesBelowOne) {
    std::string mof = "class A_B {};\n";
    for (int number = 0; number < kVeryMany; ++number)
        mof += numbered("class A_", number) + " : A_B {};\n";
    EXPECT_EQ(faults(mof), "");
}

// Classes that are left out.

// Places by the numbers of their declarations.
class NumberedPlaces : public Mof::Places {
  public:
    [[nodiscard]] Mof::Diagnostic diagnosticAt(const Mof::Position& position) const override {
        return {.file = nameOf(position),
                .place = {.line = 0, .column = 0},
                .message = "",
                .sourceLine = ""};
    }
    [[nodiscard]] std::string nameOf(const Mof::Position& position) const override {
        return numbered("place ", static_cast<int>(position.offset));
    }
};

Mof::ClassDeclaration classBelow(const char* name, const char* superclass, std::size_t place) {
    Mof::ClassDeclaration declaration;
    declaration.name = {.text = name, .position = {.file = 0, .offset = place}};
    declaration.superclass = {.text = superclass, .position = {.file = 0, .offset = place}};
    return declaration;
}

Mof::Property propertyOfType(const char* type, std::size_t place) {
    Mof::Property property;
    property.name = {.text = "P", .position = {.file = 0, .offset = place}};
    Mof::Literal literal;
    literal.kind = Mof::Literal::Kind::kString;
    literal.position = property.name.position;
    literal.text = type;
    property.type.dataType = Mof::DataType::kUint8;
    property.defaultValue = Mof::Value{.position = literal.position, .literals = {literal}};
    return property;
}

class MofLeaveOutFaulty : public testing::Test {
  protected:
    // The diagnostics, and the names of the classes that are left.
    std::string leaveOut(const std::vector<Mof::ClassFault>& known = {}) {
        Mof::Reporter reporter(std::make_unique<NumberedPlaces>(), compilation_.diagnostics);
        Mof::leaveOutFaulty(compilation_, reporter, known);
        std::string text;
        for (const Mof::Diagnostic& diagnostic : compilation_.diagnostics)
            text += diagnostic.toString();
        for (const Mof::ClassDeclaration& declaration : compilation_.classes)
            text += std::string(declaration.name.text) + " ";
        return text;
    }

    Compilation compilation_;
};

TEST_F(MofLeaveOutFaulty, AClassWithoutItsSuperclassGoesWithItsSubclasses) {
    compilation_.classes = {classBelow("A_Below", "A_Child", 1), classBelow("A_Top", "", 2),
                            classBelow("A_Child", "A_Gone", 3), classBelow("A_Left", "A_Top", 4),
                            classBelow("A_Other", "A_Child", 5)};
    EXPECT_EQ(leaveOut(),
              "place 3: warning: the superclass \"A_Gone\" of \"A_Child\" is not declared; the "
              "class is left out with its 2 subclasses\n"
              "A_Top A_Left ");
    EXPECT_FALSE(compilation_.hasErrors());
}

TEST_F(MofLeaveOutFaulty, AValueThatDoesNotFitIsAFaultOfItsClass) {
    compilation_.classes = {classBelow("A_Top", "", 1), classBelow("A_Child", "A_Top", 2),
                            classBelow("A_Other", "", 3)};
    compilation_.classes.front().properties.push_back(propertyOfType("x", 4));
    EXPECT_EQ(leaveOut(),
              "place 4: warning: the default value of \"P\" must be a uint8, not a string; the "
              "class is left out with its 1 subclass\n"
              "A_Other ");
}

TEST_F(MofLeaveOutFaulty, ACycleGoesWithAllBelowIt) {
    compilation_.classes = {classBelow("A_Below", "A_One", 1), classBelow("A_One", "A_Two", 2),
                            classBelow("A_Two", "A_One", 3), classBelow("A_Other", "", 4)};
    EXPECT_EQ(leaveOut(),
              "place 2: warning: the class \"A_One\" is its own superclass, by way of \"A_Two\"; "
              "the class is left out with its 2 subclasses\n"
              "A_Other ");
}

TEST_F(MofLeaveOutFaulty, ALineThatIsTooLongIsCut) {
    compilation_.classes.push_back(classBelow("A_0", "", 0));
    for (int number = 1; number <= 20'000; ++number)
        compilation_.classes.push_back(classBelow(numbered("A_", number).c_str(),
                                                  numbered("A_", number - 1).c_str(),
                                                  static_cast<std::size_t>(number)));
    EXPECT_TRUE(leaveOut().starts_with(
        "place 201: warning: the class \"A_201\" has more than 200 superclasses above it; the "
        "class is left out with its 19,799 subclasses\n"));
    EXPECT_EQ(compilation_.classes.size(), 201U);
}

TEST_F(MofLeaveOutFaulty, FaultsThatAreKnownCountToo) {
    compilation_.classes = {classBelow("A_Top", "", 1), classBelow("A_Child", "A_Top", 2),
                            classBelow("A_Other", "", 3)};
    EXPECT_EQ(leaveOut({{.className = "a_top", .position = {0, 7}, .message = "it is odd"}}),
              "place 7: warning: it is odd; the class is left out with its 1 subclass\nA_Other ");
}

TEST_F(MofLeaveOutFaulty, AQualifierKeepsNoDefaultThatDoesNotFit) {
    Mof::QualifierDeclaration qualifier;
    const Mof::Property property = propertyOfType("x", 4);
    qualifier.name = {.text = "Q", .position = {.file = 0, .offset = 4}};
    qualifier.type = property.type;
    qualifier.defaultValue = property.defaultValue;
    compilation_.qualifiers = {qualifier};
    EXPECT_EQ(leaveOut(),
              "place 4: warning: the default value of \"Q\" must be a uint8, not a string; it is "
              "left out\n");
    EXPECT_FALSE(compilation_.qualifiers.front().defaultValue);
}

}  // namespace

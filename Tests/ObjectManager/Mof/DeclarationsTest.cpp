#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/FileParser.h"

namespace {

// A change of a text.
struct Change {
    std::string_view from;
    std::string_view to;
};

Mof::FileDeclarations declarationsOf(const std::string& mof) {
    const auto fail = [&](std::size_t, const std::string& message) {
        ADD_FAILURE() << message << " in\n" << mof;
    };
    return Mof::FileParser(fail, fail).parse(Mof::SourceText("a.mof", mof), 0);
}

std::string changed(std::string text, const Change& change) {
    const auto at = text.find(change.from);
    if (at == std::string::npos)
        ADD_FAILURE() << change.from << " is no part of the text";
    else
        text.replace(at, change.from.size(), change.to);
    return text;
}

constexpr const char* kClass = R"(
[Description ("text") : ToSubclass, Values { "a", "b" }, Flag]
class A_B : A_C {
    [Key] string Text[4] = { "x", null };
    uint8 Number = 5;
    sint8 Less = -5;
    real64 Real = 1.5;
    char16 Character = 'x';
    boolean Truth = true;
    A_D ref Other = $Alias;
    [Static] uint32 Start([In] string What, A_D ref Whom[]);
    A_D ref Stop();
};
)";

bool isSameClass(const Change& change) {
    const Mof::FileDeclarations left = declarationsOf(kClass);
    const Mof::FileDeclarations right = declarationsOf(changed(kClass, change));
    return isSame(left.classes.at(0), right.classes.at(0));
}

// The grammar takes every other word as a name.
TEST(ReservedWord, IsOneThatCannotBeTheNameOfAProperty) {
    for (const char* const word :
         {"uint8", "String", "DATETIME", "ref", "as", "of", "null", "true", "False"})
        EXPECT_TRUE(Mof::isReservedWord(word)) << word;
    for (const char* const word :
         {"class", "Property", "Reference", "any", "instance", "restricted", "strings", "", "re"}) {
        EXPECT_FALSE(Mof::isReservedWord(word)) << word;
    }
}

TEST(SameDeclaration, AClassIsTheSameAsItself) {
    EXPECT_TRUE(isSameClass({"", ""}));
}

TEST(SameDeclaration, CaseOfNamesSpacesCommentsAndSpellingOfValuesMakeNoDifference) {
    for (const Change& change : {
             Change{"class A_B", "CLASS a_b"},
             {": A_C", ":a_c"},
             {"Description", "DESCRIPTION"},
             {"[Key]", "/* the key */ [ KEY ] // it is\n"},
             {"[Key]", "[Key (true)]"},
             {"Flag", "Flag (TRUE)"},
             {"Text", "tEXT"},
             {"\"text\"", "\"te\" \"xt\""},
             {"\"text\"", "\"te\\x78t\""},
             {"= 5", "= 0x05"},
             {"= 5", "= +5"},
             {"= 1.5", "= 0.15e1"},
             {"'x'", "'\\x78'"},
             {"true", "TRUE"},
             {"A_D ref Other", "a_d REF OTHER"},
             {"Start", "START"},
             {"What", "WHAT"},
         })
        EXPECT_TRUE(isSameClass(change)) << change.from << " -> " << change.to;
}

TEST(SameDeclaration, EveryDifferenceOfTheClassItselfCounts) {
    for (const Change& change : {
             Change{"A_B", "A_BB"},
             {": A_C", ": A_CC"},
             {": A_C", ""},
             {"\"text\"", "\"Text\""},
             {"(\"text\")", "{ \"text\" }"},
             {" (\"text\")", ""},
             {": ToSubclass", ": Restricted"},
             {": ToSubclass", ""},
             {": ToSubclass", ": ToSubclass DisableOverride"},
             {": ToSubclass", ": ToSubclass Translatable"},
             {"Values", "ValueMap"},
             {"\"a\", \"b\"", "\"b\", \"a\""},
             {"\"a\", \"b\"", "\"a\""},
             {"\"a\", \"b\"", "\"a\", \"b\", \"c\""},
             {", Flag", ""},
             {"Flag", "Flag (false)"},
             {"Flag", "Flag (null)"},
             {"Flag", "Flag { true }"},
             {"Flag", "Flag (1)"},
             {"Flag", "Flag, Other"},
         })
        EXPECT_FALSE(isSameClass(change)) << change.from << " -> " << change.to;
}

TEST(SameDeclaration, EveryDifferenceOfAPropertyCounts) {
    for (const Change& change : {
             Change{"Text", "Texts"},
             {"[Key]", ""},
             {"[Key]", "[Required]"},
             {"string Text[4]", "datetime Text[4]"},
             {"Text[4]", "Text[5]"},
             {"Text[4]", "Text[]"},
             {"Text[4]", "Text"},
             {"null", "\"null\""},
             {"{ \"x\", null }", "null"},
             {" = { \"x\", null }", ""},
             {"= 5", "= 6"},
             {"= 5", "= -5"},
             {"= 5", "= '\\x05'"},
             {"= 5", "= true"},
             {"= 5", "= null"},
             {"= -5", "= 5"},
             {"= 1.5", "= 1.25"},
             {"= 1.5", "= -1.5"},
             {"'x'", "'X'"},
             {"true", "false"},
             {"A_D ref Other", "A_E ref Other"},
             {"A_D ref Other = $Alias", "string Other = $Alias"},
             {"$Alias", "$OtherAlias"},
             {"$Alias", "\"$Alias\""},
             {"    uint8 Number = 5;\n", ""},
             {"uint8 Number = 5;", "uint8 Number = 5; uint8 Added;"},
             {"uint8 Number = 5;\n    sint8 Less = -5;", "sint8 Less = -5;\n    uint8 Number = 5;"},
         })
        EXPECT_FALSE(isSameClass(change)) << change.from << " -> " << change.to;
}

TEST(SameDeclaration, EveryDifferenceOfAMethodCounts) {
    for (const Change& change : {
             Change{"Start", "Begin"},
             {"[Static]", ""},
             {"uint32 Start", "uint16 Start"},
             {"A_D ref Stop", "A_E ref Stop"},
             {"[In]", ""},
             {"[In]", "[In (false)]"},
             {"string What", "datetime What"},
             {"string What", "string What[]"},
             {"What", "Which"},
             {"A_D ref Whom[]", "A_E ref Whom[]"},
             {"A_D ref Whom[]", "A_D ref Whom[2]"},
             {", A_D ref Whom[]", ""},
             {"Whom[]", "Whom[], uint8 How"},
             {"[In] string What, A_D ref Whom[]", "A_D ref Whom[], [In] string What"},
             {"    A_D ref Stop();\n", ""},
         })
        EXPECT_FALSE(isSameClass(change)) << change.from << " -> " << change.to;
}

constexpr const char* kQualifier =
    "Qualifier Odd : sint8[2] = { 1, -1 }, Scope (method, parameter), Flavor (Restricted);";

bool isSameQualifier(const Change& change) {
    const Mof::FileDeclarations left = declarationsOf(kQualifier);
    const Mof::FileDeclarations right = declarationsOf(changed(kQualifier, change));
    return isSame(left.qualifiers.at(0), right.qualifiers.at(0));
}

TEST(SameDeclaration, AQualifierIsTheSameHoweverItIsSpelled) {
    for (const Change& change : {
             Change{"", ""},
             {"Qualifier Odd", "qualifier ODD"},
             {"{ 1, -1 }", "{1,-1} /* odd */"},
             {"method, parameter", "Parameter, Method"},
             {", Scope (method, parameter), Flavor (Restricted)",
              ", Flavor (Restricted), Scope (method, parameter)"},
         })
        EXPECT_TRUE(isSameQualifier(change)) << change.from << " -> " << change.to;
}

TEST(SameDeclaration, EveryDifferenceOfAQualifierCounts) {
    for (const Change& change : {
             Change{"Odd", "Even"},
             {"sint8", "sint16"},
             {"[2]", "[]"},
             {"[2] = { 1, -1 }", " = 1"},
             {" = { 1, -1 }", ""},
             {"-1", "1"},
             {"method, ", ""},
             {"method", "any"},
             {", Flavor (Restricted)", ""},
             {"Restricted", "ToSubclass"},
             {"Restricted", "Restricted, EnableOverride"},
             {"Restricted", "Restricted, Translatable"},
         })
        EXPECT_FALSE(isSameQualifier(change)) << change.from << " -> " << change.to;
}

}  // namespace

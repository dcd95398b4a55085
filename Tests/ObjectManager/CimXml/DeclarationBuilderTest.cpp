#include <gtest/gtest.h>
#include <string>

#include "Tests/ObjectManager/CimXml/Collected.h"

namespace {

// The lines of a class A_B with that content, without its own, and what is wrong.
std::string membersOf(const std::string& content, const std::string& qualifiers = "") {
    const std::string text = Collected(qualifiers).classes(cimClass("A_B", "", content)).text();
    const std::size_t begin = text.find("class A_B\n");
    return begin == std::string::npos ? text
                                      : text.substr(begin + std::string("class A_B\n").size());
}

// Why a class A_B with that content is left out.
std::string faultOf(const std::string& content) {
    std::string text = Collected().classes(cimClass("A_B", "", content)).text();
    constexpr std::string_view kBefore = "http://host:5988: root/test: ";
    constexpr std::string_view kAfter = "; the class is left out\n";
    if (!text.starts_with(kBefore) || !text.ends_with(kAfter))
        return "not left out: " + text;
    return text.substr(kBefore.size(), text.size() - kBefore.size() - kAfter.size());
}

// A default value of a property of a type.
std::string valueOf(const std::string& type, const std::string& text) {
    return "<PROPERTY NAME=\"P\" TYPE=\"" + type + "\"><VALUE>" + text + "</VALUE></PROPERTY>";
}

std::string read(const std::string& type, const std::string& text) {
    const std::string line = membersOf(valueOf(type, text));
    const std::string start = "  " + type + " P = ";
    return line.starts_with(start) ? line.substr(start.size(), line.size() - start.size() - 1)
                                   : line;
}

TEST(CimXmlDeclarationBuilder, MakesEveryFormOfProperties) {
    EXPECT_EQ(membersOf("<PROPERTY NAME=\"One\" TYPE=\"uint16\" CLASSORIGIN=\"A_B\"/>"
                        "<PROPERTY.ARRAY NAME=\"Many\" TYPE=\"datetime\"/>"
                        "<PROPERTY.ARRAY NAME=\"Four\" TYPE=\"real32\" ARRAYSIZE=\"4\">"
                        "<VALUE.ARRAY><VALUE>1.5</VALUE><VALUE.NULL/></VALUE.ARRAY>"
                        "</PROPERTY.ARRAY>"
                        "<PROPERTY.REFERENCE NAME=\"Self\" REFERENCECLASS=\"A_B\">"
                        "<VALUE.REFERENCE><CLASSNAME NAME=\"A_B\"/></VALUE.REFERENCE>"
                        "</PROPERTY.REFERENCE>"),
              "  uint16 One\n"
              "  datetime Many[]\n"
              "  real32 Four[4] = {1.5r, null}\n"
              "  A_B ref Self\n");
}

TEST(CimXmlDeclarationBuilder, MakesMethodsWithEveryFormOfParameters) {
    EXPECT_EQ(membersOf("<METHOD NAME=\"Do\" TYPE=\"uint32\">" + qualifier("Note", "m") +
                            "<PARAMETER NAME=\"One\" TYPE=\"boolean\">" + qualifier("Note", "p") +
                            "</PARAMETER>"
                            "<PARAMETER.ARRAY NAME=\"Many\" TYPE=\"char16\" ARRAYSIZE=\"2\"/>"
                            "<PARAMETER.REFERENCE NAME=\"Whom\" REFERENCECLASS=\"A_B\"/>"
                            "<PARAMETER.REFARRAY NAME=\"All\" REFERENCECLASS=\"A_B\"/></METHOD>",
                        kNoteAndMine),
              "  [Note(\"m\")] uint32 Do()\n"
              "    [Note(\"p\")] boolean One\n"
              "    char16 Many[2]\n"
              "    A_B ref Whom\n"
              "    A_B ref All[]\n");
}

TEST(CimXmlDeclarationBuilder, MakesQualifiersWithEveryFormOfValues) {
    const std::string declarations =
        "<QUALIFIER.DECLARATION NAME=\"Text\" TYPE=\"string\"/>"
        "<QUALIFIER.DECLARATION NAME=\"Texts\" TYPE=\"string\" ISARRAY=\"true\"/>"
        "<QUALIFIER.DECLARATION NAME=\"Flag\" TYPE=\"boolean\"/>";
    EXPECT_EQ(
        membersOf(property("P",
                           "<QUALIFIER NAME=\"Text\" TYPE=\"string\" OVERRIDABLE=\"false\" "
                           "TOSUBCLASS=\"true\" TRANSLATABLE=\"true\"><VALUE>a &lt; "
                           "b</VALUE></QUALIFIER>"
                           "<QUALIFIER NAME=\"Texts\" TYPE=\"string\"><VALUE.ARRAY><VALUE>a</VALUE>"
                           "<VALUE/><VALUE.NULL/></VALUE.ARRAY></QUALIFIER>"
                           "<QUALIFIER NAME=\"Flag\" TYPE=\"boolean\"><VALUE>TRUE</VALUE>"
                           "</QUALIFIER>"),
                  declarations),
        "  [Text(\"a < b\") DisableOverride ToSubclass Translatable, Texts({\"a\", \"\", null}), "
        "Flag(true)] string P\n");
    EXPECT_EQ(membersOf(property("P",
                                 "<QUALIFIER NAME=\"Text\" TYPE=\"string\"><VALUE.NULL/>"
                                 "</QUALIFIER><QUALIFIER NAME=\"Flag\" TYPE=\"boolean\"/>"),
                        declarations),
              "  [Text(null), Flag(null)] string P\n");
}

TEST(CimXmlDeclarationBuilder, MakesDeclarationsOfQualifiers) {
    EXPECT_EQ(
        Collected(
            "<QUALIFIER.DECLARATION NAME=\"A\" TYPE=\"boolean\" OVERRIDABLE=\"false\">"
            "<SCOPE CLASS=\"true\" METHOD=\"TRUE\" PROPERTY=\"false\"/>"
            "<VALUE>FALSE</VALUE></QUALIFIER.DECLARATION>"
            "<QUALIFIER.DECLARATION NAME=\"B\" TYPE=\"sint8\" ISARRAY=\"true\" ARRAYSIZE=\"2\""
            " TOSUBCLASS=\"false\" TRANSLATABLE=\"true\"><VALUE.ARRAY><VALUE>-1</VALUE>"
            "</VALUE.ARRAY></QUALIFIER.DECLARATION>")
            .text(),
        "qualifier boolean A = false scopes 33 DisableOverride\n"
        "qualifier sint8 B[2] = {-1} scopes 127 Restricted Translatable\n");
}

TEST(CimXmlDeclarationBuilder, QualifiersThatCannotBeUsedAreLeftOut) {
    EXPECT_EQ(
        Collected("<QUALIFIER.DECLARATION NAME=\"A\" TYPE=\"odd\"/>"
                  "<QUALIFIER.DECLARATION NAME=\"a b\" TYPE=\"string\"/>"
                  "<QUALIFIER.DECLARATION NAME=\"B\" TYPE=\"string\"/>"
                  "<QUALIFIER.DECLARATION NAME=\"b\" TYPE=\"string\"/>"
                  "<QUALIFIER.DECLARATION NAME=\"C\" TYPE=\"uint8\"><VALUE>256</VALUE>"
                  "</QUALIFIER.DECLARATION>")
            .text(),
        "qualifier string B scopes 127\n"
        "qualifier uint8 C scopes 127\n"
        "http://host:5988: root/test: qualifier A: warning: the type \"odd\" is unknown; the "
        "qualifier is left out\n"
        "http://host:5988: root/test: warning: \"a b\" is not a name; the qualifier is left "
        "out\n"
        "http://host:5988: root/test: qualifier b: warning: the qualifier is declared twice\n"
        "http://host:5988: root/test: qualifier C: warning: the default value of \"C\" must be "
        "in the range of a uint8, 0 to 255: 256 is not; it is left out\n");
}

TEST(CimXmlDeclarationBuilder, ReadsValuesOfEveryType) {
    EXPECT_EQ(read("uint64", "18446744073709551615"), "18446744073709551615");
    EXPECT_EQ(read("sint64", " -9223372036854775808\n"), "-9223372036854775808");
    EXPECT_EQ(read("uint8", "+7"), "7");
    EXPECT_EQ(read("uint16", "0xfF"), "255");
    EXPECT_EQ(read("uint16", "010"), "10");
    EXPECT_EQ(read("real64", "-1.25e2"), "-125r");
    EXPECT_EQ(read("real32", "3"), "3r");
    EXPECT_EQ(read("boolean", " true "), "true");
    EXPECT_EQ(read("boolean", "False"), "false");
    EXPECT_EQ(read("char16", "\xE2\x82\xAC"), "'8364'");
    EXPECT_EQ(read("string", " a\nb "), "\" a\nb \"");
    EXPECT_EQ(read("string", ""), "\"\"");
    EXPECT_EQ(read("datetime", "20260101000000.000000+000"), "\"20260101000000.000000+000\"");
}

TEST(CimXmlDeclarationBuilder, AClassWithAValueThatIsNoneIsLeftOut) {
    const struct {
        const char* type;
        const char* text;
    } kCases[] = {
        {"uint8", "x"},
        {"uint8", ""},
        {"uint8", "1 2"},
        {"uint64", "0x"},
        {"uint64", "1e3"},
        {"sint64", "-9223372036854775809"},
        {"uint64", "18446744073709551616"},
        {"real32", "1.5x"},
        {"real64", "1e999"},
        {"real64", "inf"},
        {"real64", "nan"},
        {"boolean", "yes"},
        {"char16", "ab"},
        {"char16", ""},
        {"char16", "\xF0\x9F\x98\x80"},
    };
    for (const auto& [type, text] : kCases) {
        const std::string fault = faultOf(valueOf(type, text));
        EXPECT_TRUE(fault.starts_with("A_B.P: warning: the value \"") &&
                    fault.ends_with(std::string("\" is no ") + type))
            << fault;
    }
    EXPECT_EQ(faultOf(valueOf("uint8", "256")),
              "A_B.P: warning: the default value of \"P\" must be in the range of a uint8, 0 to "
              "255: 256 is not");
    EXPECT_EQ(faultOf("<PROPERTY.ARRAY NAME=\"P\" TYPE=\"string\"><VALUE>x</VALUE>"
                      "</PROPERTY.ARRAY>"),
              "A_B.P: warning: the default value of \"P\" must be an array, in braces");
}

TEST(CimXmlDeclarationBuilder, AClassThatIsMadeOfOddElementsIsLeftOut) {
    EXPECT_EQ(faultOf("<ODD/>"), "A_B: warning: a class must not hold the element \"ODD\"");
    EXPECT_EQ(faultOf("<PROPERTY NAME=\"P\" TYPE=\"uint128\"/>"),
              "A_B.P: warning: the type \"uint128\" is unknown");
    EXPECT_EQ(faultOf("<PROPERTY NAME=\"P\" TYPE=\"ref\"/>"),
              "A_B.P: warning: the type \"ref\" is unknown");
    EXPECT_EQ(faultOf("<METHOD NAME=\"M\"/>"), "A_B.M: warning: the type \"\" is unknown");
    EXPECT_EQ(faultOf("<PROPERTY TYPE=\"string\"/>"), "A_B: warning: \"\" is not a name");
    EXPECT_EQ(faultOf(property("../x", "")), "A_B: warning: \"../x\" is not a name");
    EXPECT_EQ(faultOf("<PROPERTY.REFERENCE NAME=\"P\"/>"),
              "A_B.P: warning: the name of the referenced class is \"\"");
    EXPECT_EQ(faultOf("<PROPERTY.ARRAY NAME=\"P\" TYPE=\"string\" ARRAYSIZE=\"0\"/>"),
              "A_B.P: warning: the size of an array is \"0\"");
    EXPECT_EQ(faultOf(property("P", "<ODD/>")),
              "A_B.P: warning: a property must not hold the element \"ODD\"");
    EXPECT_EQ(faultOf("<METHOD NAME=\"M\" TYPE=\"uint8\"><ODD/></METHOD>"),
              "A_B.M: warning: a method must not hold the element \"ODD\"");
    EXPECT_EQ(
        faultOf("<METHOD NAME=\"M\" TYPE=\"uint8\"><PARAMETER NAME=\"P\" TYPE=\"string\"><ODD/>"
                "</PARAMETER></METHOD>"),
        "A_B.M.P: warning: a parameter must not hold the element \"ODD\"");
    EXPECT_EQ(faultOf("<QUALIFIER NAME=\"Q\" TYPE=\"odd\"/>"),
              "A_B: warning: the type \"odd\" of the qualifier \"Q\" is unknown");
    EXPECT_EQ(faultOf("<QUALIFIER NAME=\"Q\" TYPE=\"string\"><ODD/></QUALIFIER>"),
              "A_B: warning: a qualifier must not hold the element \"ODD\"");
    EXPECT_EQ(faultOf("<QUALIFIER NAME=\"Q\" TYPE=\"string\"><VALUE.ARRAY><SCOPE/></VALUE.ARRAY>"
                      "</QUALIFIER>"),
              "A_B: warning: the value \"\" is no string");
    EXPECT_EQ(faultOf(property("P", "") + property("p", "")),
              "A_B.p: warning: the class \"A_B\" has a property \"p\" already");
}

// It could not be imported, nor kept for a start without the server.
TEST(CimXmlDeclarationBuilder, AClassWithANameThatIsReservedInMofIsLeftOut) {
    const auto reserved = [](const std::string& place, const std::string& word) {
        return place + ": warning: the word \"" + word +
               "\" is reserved in MOF, so it cannot be a name";
    };
    EXPECT_EQ(faultOf(property("String", "")), reserved("A_B", "String"));
    EXPECT_EQ(faultOf("<METHOD NAME=\"ref\" TYPE=\"uint8\"/>"), reserved("A_B", "ref"));
    EXPECT_EQ(faultOf("<METHOD NAME=\"M\" TYPE=\"uint8\"><PARAMETER NAME=\"NULL\" "
                      "TYPE=\"string\"/></METHOD>"),
              reserved("A_B.M", "NULL"));
    EXPECT_EQ(faultOf("<PROPERTY.REFERENCE NAME=\"P\" REFERENCECLASS=\"as\"/>"),
              reserved("A_B.P", "as"));
    EXPECT_EQ(faultOf(qualifier("of", "")), reserved("A_B", "of"));
    EXPECT_EQ(membersOf(property("Property", "")), "  string Property\n");
}

TEST(CimXmlDeclarationBuilder, OnlyArraysHaveASize) {
    EXPECT_EQ(membersOf("<PROPERTY NAME=\"P\" TYPE=\"string\" ARRAYSIZE=\"x\"/>"), "  string P\n");
}

// An attribute says it where a qualifier does not.
TEST(CimXmlDeclarationBuilder, EmbeddedObjectsHaveTheirQualifier) {
    const std::string declaration =
        "<QUALIFIER.DECLARATION NAME=\"EmbeddedObject\" TYPE=\"boolean\"/>"
        "<QUALIFIER.DECLARATION NAME=\"EmbeddedInstance\" TYPE=\"string\"/>";
    EXPECT_EQ(membersOf(property("A", "", "EmbeddedObject=\"object\"") +
                            property("B", qualifier("EmbeddedInstance", "A_B"),
                                     "EmbeddedObject=\"instance\" EMBEDDEDOBJECT=\"instance\""),
                        declaration),
              "  [EmbeddedObject(true)] string A\n"
              "  [EmbeddedInstance(\"A_B\")] string B\n");
}

// A server without declarations says the type with each qualifier.
TEST(CimXmlDeclarationBuilder, UndeclaredQualifiersHaveTheirOwnType) {
    EXPECT_EQ(membersOf("<PROPERTY NAME=\"P\" TYPE=\"string\"><QUALIFIER NAME=\"MaxLen\" "
                        "TYPE=\"uint32\"><VALUE>64</VALUE></QUALIFIER></PROPERTY>"),
              "  [MaxLen(64)] string P\n"
              "http://host:5988: root/test: A_B.P: warning: the qualifier \"MaxLen\" is not "
              "declared\n");
}

}  // namespace

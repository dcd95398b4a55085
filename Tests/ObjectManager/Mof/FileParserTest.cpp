#include <gtest/gtest.h>
#include <string>
#include <utility>

#include "ObjectManager/Mof/FileParser.h"
#include "Tests/ObjectManager/Mof/DeclarationText.h"

namespace {

using Mof::Compilation;

// What a file "a.mof" of this content declares, not yet checked.
Compilation parseText(const std::string& mof) {
    Compilation compilation;
    compilation.files.emplace_back("a.mof", mof);
    Mof::Reporter reporter(compilation.files, compilation.diagnostics);
    Mof::FileParser parser(
        [&](std::size_t offset, const std::string& message) {
            reporter.error({.file = 0, .offset = offset}, message);
        },
        [&](std::size_t offset, const std::string& message) {
            reporter.warning({.file = 0, .offset = offset}, message);
        });
    try {
        Mof::FileDeclarations declarations = parser.parse(compilation.files.front(), 0);
        compilation.qualifiers = std::move(declarations.qualifiers);
        compilation.classes = std::move(declarations.classes);
    } catch (const Mof::TooManyErrors&) {
        EXPECT_TRUE(compilation.hasErrors());
    }
    return compilation;
}

// The declarations of a text without faults.
std::string declared(const std::string& mof) {
    const Compilation compilation = parseText(mof);
    EXPECT_EQ(diagnosticsOf(compilation), "");
    return textOf(compilation);
}

std::string faults(const std::string& mof) {
    return diagnosticsOf(parseText(mof));
}

TEST(FileParser, AnEmptyFileDeclaresNothing) {
    EXPECT_EQ(declared(""), "");
    EXPECT_EQ(declared("// nothing\n/* at ** all */\n"), "");
}

TEST(FileParser, ClassesHaveNamesAndSuperclasses) {
    EXPECT_EQ(declared("class A_B {}; class A_C : A_B {};"), "class A_B\nclass A_C : A_B\n");
}

TEST(FileParser, KeywordsMayBeWrittenInAnyCase) {
    EXPECT_EQ(declared("CLASS A_B { UInt8 x = NULL; BOOLEAN y = True; A_B REF z; };"),
              "class A_B\n  uint8 x = null\n  boolean y = true\n  A_B ref z\n");
}

TEST(FileParser, PropertiesHaveEveryType) {
    EXPECT_EQ(declared(R"(class A_B {
    uint8 a; sint8 b; uint16 c; sint16 d; uint32 e; sint32 f; uint64 g; sint64 h;
    real32 i; real64 j; char16 k; string l; boolean m; datetime n; A_C ref o;
};)"),
              R"(class A_B
  uint8 a
  sint8 b
  uint16 c
  sint16 d
  uint32 e
  sint32 f
  uint64 g
  sint64 h
  real32 i
  real64 j
  char16 k
  string l
  boolean m
  datetime n
  A_C ref o
)");
}

TEST(FileParser, ArraysMayHaveASize) {
    EXPECT_EQ(declared("class A_B { uint8 a[]; uint8 b[ 4 ]; };"),
              "class A_B\n  uint8 a[]\n  uint8 b[4]\n");
}

TEST(FileParser, DefaultValuesAreLiteralsOrArrays) {
    EXPECT_EQ(declared(R"(class A_B {
    uint8 a = 0x10; sint8 b = -017; uint8 c = 101b; real32 d = -1.5E1; char16 e = 'x';
    string f = "one" " two"; string g = NULL; uint8 h[] = {}; string i[] = { "a", null, "b" };
    boolean j = false; datetime k = "20261121000000.000000+000"; A_B ref l = $Alias;
};)"),
              R"(class A_B
  uint8 a = 16
  sint8 b = -15
  uint8 c = 5
  real32 d = -15r
  char16 e = '120'
  string f = "one two"
  string g = null
  uint8 h[] = {}
  string i[] = {"a", null, "b"}
  boolean j = false
  datetime k = "20261121000000.000000+000"
  A_B ref l = $Alias
)");
}

TEST(FileParser, StringsInARowAreOneValue) {
    EXPECT_EQ(declared("class A_B { string s = \"a\\n\"\r\n\t\"\"\"b\" /* c */ \"d\"; };"),
              "class A_B\n  string s = \"a\nbd\"\n");
}

TEST(FileParser, AnUnclosedStringInARowIsAnErrorWhereItBegins) {
    EXPECT_EQ(faults("class A_B { string s = \"a\"\n  \"b\n  \"c\"; };"),
              "a.mof:2:3: error: the string is not closed on its line\n"
              "  \"b\n"
              "  ^\n");
}

TEST(FileParser, FaultsInARowOfStringsThatIsSkippedAreNotReported) {
    for (const char* const faulty : {"\"\\q\"", "\"b"}) {
        EXPECT_EQ(faults(std::string("class A_B \"a\" ") + faulty + "\n{};"),
                  "a.mof:1:11: error: found a string, expected \"{\", \":\" or \"as\"\n"
                  "class A_B \"a\" " +
                      std::string(faulty) + "\n          ^\n");
    }
}

TEST(FileParser, QualifiersHaveValuesListsAndFlavors) {
    EXPECT_EQ(
        declared(R"([Version ("1.0"), Abstract, Values { "a", "b" } : DisableOverride ToSubclass]
class A_B {
    [Key : Restricted, MaxLen (64)] string a;
};)"),
        "[Version(\"1.0\"), Abstract, Values({\"a\", \"b\"}) DisableOverride ToSubclass] "
        "class A_B\n  [Key Restricted, MaxLen(64)] string a\n");
}

TEST(FileParser, MethodsHaveParameters) {
    EXPECT_EQ(declared(R"(class A_B {
    uint32 Stop();
    [Static] boolean Start([In] string a, [In (false), Out] A_C ref b[], uint8 c[3]);
};)"),
              R"(class A_B
  uint32 Stop()
  [Static] boolean Start()
    [In] string a
    [In(false), Out] A_C ref b[]
    uint8 c[3]
)");
}

TEST(FileParser, AssociationsAndIndicationsAreClassesWithAQualifier) {
    EXPECT_EQ(declared("[Association] class A_B { A_C ref a; }; [Indication] class A_D {};"),
              "[Association] class A_B\n  A_C ref a\n[Indication] class A_D\n");
}

TEST(FileParser, QualifierDeclarationsHaveScopesAndFlavors) {
    EXPECT_EQ(declared(R"(
Qualifier Key : boolean = false, Scope (property, reference), Flavor (DisableOverride, ToSubclass);
Qualifier Values : string[], Scope (any);
Qualifier MaxLen : uint32 = null, Flavor (Translatable), Scope (class, association, indication);
Qualifier Odd : sint8[2] = { 1, -1 }, Scope (method, parameter), Scope (schema, qualifier);
)"),
              R"(qualifier boolean Key = false scopes 24 DisableOverride ToSubclass
qualifier string Values[] scopes 127
qualifier uint32 MaxLen = null scopes 7 Translatable
qualifier sint8 Odd[2] = {1, -1} scopes 96
)");
}

TEST(FileParser, KeywordsMayBeNames) {
    EXPECT_EQ(
        declared(
            "class A_B { [Schema (\"x\"), Reference] string Class; uint8 Any(uint8 Scope); };"),
        "class A_B\n  [Schema(\"x\"), Reference] string Class\n  uint8 Any()\n    uint8 Scope\n");
}

TEST(FileParser, InstancesAreReadAndDropped) {
    EXPECT_EQ(declared(R"(
[Description ("d")] instance of A_B as $B { Name = "x"; [Key] Values = { 1, 2 }; Other = $C; };
class A_B {};
)"),
              "class A_B\n");
}

TEST(FileParser, ClassesMayHaveAnAlias) {
    EXPECT_EQ(declared("class A_B as $B : A_C {};"), "class A_B : A_C\n");
}

TEST(FileParser, OldTextIsReadAsLatin1) {
    EXPECT_EQ(declared("[Description (\"gr\xFC\xDF\")] class A_B {};"),
              "[Description(\"gr\xC3\xBC\xC3\x9F\")] class A_B\n");
}

TEST(FileParser, PragmasAreKnownOrWarnedOf) {
    const Compilation compilation =
        parseText("#pragma LOCALE (\"en_US\")\n#pragma namespace (\"x\")\n#pragma odd (\"y\")\n");
    EXPECT_FALSE(compilation.hasErrors());
    EXPECT_EQ(diagnosticsOf(compilation),
              "a.mof:2:1: warning: the pragma \"namespace\" is ignored: the command says which "
              "namespace the classes belong to\n"
              "#pragma namespace (\"x\")\n"
              "^\n"
              "a.mof:3:1: warning: the pragma \"odd\" is not known and is ignored\n"
              "#pragma odd (\"y\")\n"
              "^\n");
}

// Faults.

TEST(FileParser, ASyntaxErrorSaysWhatIsExpected) {
    EXPECT_EQ(faults("class A_B : {\n};"),
              "a.mof:1:13: error: found \"{\", expected a name\n"
              "class A_B : {\n"
              "            ^\n");
    EXPECT_EQ(faults("class A_B {\n    uint8 x\n};"),
              "a.mof:3:1: error: found \"}\", expected \"[\", \"(\", \";\" or \"=\"\n"
              "};\n"
              "^\n");
    EXPECT_EQ(faults("class A_B {}"),
              "a.mof:1:13: error: found the end of the file, expected \";\"\n"
              "class A_B {}\n"
              "            ^\n");
}

TEST(FileParser, GoesOnWithTheNextDeclaration) {
    const Compilation compilation = parseText(
        "class A_B { uint8 = 5; uint8 b; };\n"
        "Qualifier Key boolean;\n"
        "class A_C { uint8 c; };\n");
    EXPECT_EQ(compilation.diagnostics.size(), 2U) << diagnosticsOf(compilation);
    EXPECT_EQ(textOf(compilation), "class A_B\n  uint8 b\nclass A_C\n  uint8 c\n");
}

struct OneFault {
    const char* mof;
    const char* place;
    const char* declared;
};

// Each text has one fault: nothing else is reported, and what follows is read.
TEST(FileParser, OneFaultIsOneMessageAndTheNextDeclarationIsRead) {
    for (const auto& [mof, place, declared] : {
             // In the header of a class.
             OneFault{"class A_B : 5 { uint8 b; string c = \"}\"; };\nclass A_C {};", "1:13",
                      "class A_C\n"},
             {"class A_B A_D { [Values {\"a\"}] uint8 b[] = {1, 2}; };\nclass A_C {};", "1:11",
              "class A_C\n"},
             {"class ;\nclass A_C {};", "1:7", "class A_C\n"},
             {"class A_B };\nclass A_C {};", "1:11", "class A_C\n"},
             // In its qualifiers.
             {"[Description(\"a \"quoted\" word\"), Values {\"a\", \"b\"}]\n"
              "class A_B {\n uint8 b;\n uint8 c[] = {1};\n};\nclass A_C {};",
              "1:18", "class A_B\n  uint8 b\n  uint8 c[] = {1}\nclass A_C\n"},
             {"[Description(\"a \"class\" word\")] class A_B { uint8 b; };\nclass A_C {};", "1:18",
              "class A_C\n"},
             {"[Values {\"a\" 5, \"b\"}] class A_B { uint8 b; };\nclass A_C {};", "1:14",
              "class A_C\n"},
             {"[Values {\"a\", \"b\"]\nclass A_B { uint8 b; };\nclass A_C {};", "1:18",
              "class A_B\n  uint8 b\nclass A_C\n"},
             {"[Description(\"a\"]\nclass A_B {};\nclass A_C {};", "1:17",
              "class A_B\nclass A_C\n"},
             // In a declaration of a qualifier.
             {"Qualifier Key boolean;\nclass A_C {};", "1:15", "class A_C\n"},
             {"Qualifier Key : boolean = false, Scope (nothing,\nqualifier, any);\nclass A_C {};",
              "1:41", "class A_C\n"},
             // Without its end.
             {"Qualifier Key : boolean = false, Scope (any)\nclass A_C {};", "2:1", "class A_C\n"},
             {"Qualifier Key : boolean = false\n[Key] class A_C {};", "2:1", "[Key] class A_C\n"},
             {"Qualifier Key : boolean = false Qualifier Max : uint8;", "1:33",
              "qualifier uint8 Max scopes 0\n"},
             {"class A_B {}\n#pragma locale (\"en\")\nclass A_C {};", "2:1", "class A_C\n"},
             {"class A_B {} class A_C {};", "1:14", "class A_C\n"},
             {"class A_B {\n uint8 b;\n[Key]\nclass A_C {\n uint8 c;\n};\nclass A_D {};", "4:7",
              "class A_B\n  uint8 b\nclass A_D\n"},
             // In a member.
             {"class A_B {\n [Description(\"a \"b\" c\"), Values {\"a\"}] uint8 b;\n uint8 c;\n};",
              "2:19", "class A_B\n  uint8 c\n"},
             {"class A_B {\n [Values {\"a\" \"b\", 5, }] uint8 b;\n uint8 c;\n};", "2:23",
              "class A_B\n  uint8 c\n"},
             {"class A_B {\n uint8 b = {1;\n uint8 c;\n}; class A_C {};", "2:14",
              "class A_B\n  uint8 c\nclass A_C\n"},
             {"class A_B {\n uint8 b = 5\n uint8 c;\n uint8 d;\n};", "3:2",
              "class A_B\n  uint8 c\n  uint8 d\n"},
             {"class A_B {\n uint8 b\n};\nclass A_C {};", "3:1", "class A_B\nclass A_C\n"},
             {"class A_B {\n uint8 b(uint8);\n uint8 c;\n};", "2:15", "class A_B\n  uint8 c\n"},
             // In an instance.
             {"instance of A_B { a = 1 };\nclass A_C {};", "1:25", "class A_C\n"},
             {"instance of A_B {\n a = 1\n b = {2};\n};\nclass A_C {};", "3:2", "class A_C\n"},
             {"instance of A_B { a = {1, }; b = 2; };\nclass A_C {};", "1:27", "class A_C\n"},
             {"instance A_B {\n a = 1;\n b = {2};\n};\nclass A_C {};", "1:10", "class A_C\n"},
             // Left over.
             {"class A_B {}; };\nclass A_C {};", "1:15", "class A_B\nclass A_C\n"},
             {"x y z;\nclass A_C {};", "1:1", "class A_C\n"},
             // Up to the end.
             {"class A_C {};\n[Description(\"a\" b)]", "2:18", "class A_C\n"},
             {"class A_B {\n uint8 b uint8 c", "2:10", ""},
         }) {
        const Compilation compilation = parseText(mof);
        ASSERT_EQ(compilation.diagnostics.size(), 1U) << mof << "\n" << diagnosticsOf(compilation);
        const Mof::LineAndColumn at = compilation.diagnostics[0].place;
        EXPECT_EQ(std::to_string(at.line) + ":" + std::to_string(at.column), place) << mof;
        EXPECT_EQ(textOf(compilation), declared) << mof;
    }
}

TEST(FileParser, EveryFaultOfSeveralDeclarationsIsReported) {
    const Compilation compilation = parseText(
        "[Description(\"a \"b\" c\")]\n"
        "class A_B { uint8 = 5; uint8 b; };\n"
        "Qualifier Key boolean;\n"
        "instance of A_B { a 1; b = 2; c 3; };\n"
        "class A_C { uint8 c };\n"
        "class A_D {\n");
    std::string places;
    for (const Mof::Diagnostic& diagnostic : compilation.diagnostics)
        places += std::to_string(diagnostic.place.line) + ":" +
                  std::to_string(diagnostic.place.column) + " ";
    EXPECT_EQ(places, "1:18 2:19 3:15 4:21 4:33 5:21 7:1 ");
    EXPECT_EQ(textOf(compilation), "class A_B\n  uint8 b\nclass A_C\n");
}

// The scanner reports it, so the parser does not.
TEST(FileParser, AMalformedTokenIsOneFault) {
    for (const auto& [mof, place, declared] : {
             OneFault{"class 1A {};\nclass A_C {};", "1:7", "class A_C\n"},
             {"class A_B { uint8 a[99999999999999999999]; };", "1:21",
              "class A_B\n  uint8 a[18446744073709551615]\n"},
             {"class A_B { string s = \"\\xZZ\"; };", "1:25", "class A_B\n  string s = \"ZZ\"\n"},
             {"class A_B { char16 c = '\\x0'; };", "1:25", "class A_B\n  char16 c = '0'\n"},
             {"class \"abc\nclass A_C {};", "1:7", "class A_C\n"},
         }) {
        const Compilation compilation = parseText(mof);
        ASSERT_EQ(compilation.diagnostics.size(), 1U) << mof << "\n" << diagnosticsOf(compilation);
        const Mof::LineAndColumn at = compilation.diagnostics[0].place;
        EXPECT_EQ(std::to_string(at.line) + ":" + std::to_string(at.column), place) << mof;
        EXPECT_EQ(textOf(compilation), declared) << mof;
    }
}

TEST(FileParser, LinesEndWithCarriageReturnsInOldFiles) {
    EXPECT_EQ(declared("// foo\rclass A_B {};\r/* b */\rclass A_C {};\r"),
              "class A_B\nclass A_C\n");
    EXPECT_EQ(faults("class A_B {\r  string s = \"abc;\r};\r"),
              "a.mof:2:14: error: the string is not closed on its line\n"
              "  string s = \"abc;\n"
              "             ^\n"
              "a.mof:3:1: error: found \"}\", expected \";\" or a string\n"
              "};\n"
              "^\n");
}

TEST(FileParser, APragmaMayHoldComments) {
    EXPECT_EQ(declared("#pragma /* a */ locale // b\n  ( /* ( */ \"en\" // )\r ) class A_B {};"),
              "class A_B\n");
}

TEST(FileParser, ACommentInAPragmaHasALimit) {
    const auto pragma = [](std::size_t length) {
        return "#pragma /*" + std::string(length - 4, '*') + "*/ locale (\"en\")\n";
    };
    EXPECT_EQ(declared(pragma(1000) + "class A_B {};"), "class A_B\n");
    EXPECT_TRUE(parseText(pragma(1001) + "class A_B {};").hasErrors());
}

TEST(FileParser, APragmaThatIsNotCompleteIsOneErrorWhereItBegins) {
    for (const char* const pragma :
         {"#pragma", "#pragma include", "#pragma include (", "#pragma include (\"b.mof\"",
          "#pragma include (\"b.mof)", "#pragma include (b.mof)", "#pragma locale \"en\"",
          "#pragma Namespace // (", "#pragma include /* (\"b.mof\")", "#pragma (\"b\")"}) {
        EXPECT_EQ(faults(" " + std::string(pragma) + "\nclass A_B {};"),
                  "a.mof:1:2: error: the pragma is not complete; a pragma is: #pragma NAME "
                  "(\"VALUE\")\n " +
                      std::string(pragma) + "\n ^\n");
    }
}

// Other compilers may have pragmas of another form.
TEST(FileParser, AnUnknownPragmaOfAnotherFormIsAWarningAndItsLineIsSkipped) {
    for (const char* const pragma : {"#pragma odd", "#pragma odd (1, 2)", "#pragma odd \"x\"; {"}) {
        const Compilation compilation = parseText(std::string(pragma) + "\nclass A_B {};");
        EXPECT_EQ(diagnosticsOf(compilation),
                  "a.mof:1:1: warning: the pragma \"odd\" is not known and is ignored\n" +
                      std::string(pragma) + "\n^\n");
        EXPECT_FALSE(compilation.hasErrors());
        EXPECT_EQ(textOf(compilation), "class A_B\n");
    }
}

TEST(FileParser, APragmaInAClassIsAnError) {
    EXPECT_EQ(faults("class A_B {\n#pragma locale (\"en\")\n};"),
              "a.mof:2:1: error: found \"#pragma\", expected \"}\", \"[\", a name or a data type\n"
              "#pragma locale (\"en\")\n"
              "^\n");
}

TEST(FileParser, AFileInUtf16IsAnErrorThatSaysWhatToDo) {
    using namespace std::string_literals;
    const std::string message =
        "the file looks like UTF-16: convert it to UTF-8, for example with \"iconv -f UTF-16 -t "
        "UTF-8\"";
    for (const std::string& mof : {"\xFF\xFE/\0/\0"s, "\xFE\xFF\0/\0/"s, "/\0/\0"s}) {
        const Compilation compilation = parseText(mof);
        ASSERT_EQ(compilation.diagnostics.size(), 1U);
        EXPECT_EQ(compilation.diagnostics[0].message, message);
        EXPECT_EQ(compilation.diagnostics[0].place.line, 1U);
        EXPECT_EQ(compilation.diagnostics[0].place.column, 1U);
    }
}

TEST(FileParser, AnUnclosedStringIsAnErrorWhereItBegins) {
    EXPECT_EQ(faults("class A_B {\n    string s = \"abc;\n    uint8 x;\n};"),
              "a.mof:2:16: error: the string is not closed on its line\n"
              "    string s = \"abc;\n"
              "               ^\n"
              "a.mof:3:5: error: found a data type, expected \";\" or a string\n"
              "    uint8 x;\n"
              "    ^\n");
}

TEST(FileParser, AStringThatEndsWithAnEscapedQuotationMarkIsNotClosed) {
    EXPECT_EQ(faults("class A_B { string s = \"abc\\\"\n; };"),
              "a.mof:1:24: error: the string is not closed on its line\n"
              "class A_B { string s = \"abc\\\"\n"
              "                       ^\n");
}

TEST(FileParser, AnUnclosedCommentIsAnErrorWhereItBegins) {
    EXPECT_EQ(faults("class A_B {};\n /* never\nclosed *"),
              "a.mof:2:2: error: the comment is not closed\n"
              " /* never\n"
              " ^\n");
}

TEST(FileParser, ANumberOutOfRangeIsAnErrorAtItsPlace) {
    EXPECT_EQ(faults("class A_B { uint64 x = 18446744073709551616; };"),
              "a.mof:1:24: error: this number does not fit into 64 bits\n"
              "class A_B { uint64 x = 18446744073709551616; };\n"
              "                       ^\n");
}

TEST(FileParser, WhatIsNoNumberIsAnError) {
    EXPECT_EQ(faults("class A_B { uint8 x = 12ab; };"),
              "a.mof:1:23: error: this is neither a number nor a name\n"
              "class A_B { uint8 x = 12ab; };\n"
              "                      ^\n");
    EXPECT_EQ(faults("class A_B { uint8 x = 089; };"),
              "a.mof:1:23: error: this is not a number\n"
              "class A_B { uint8 x = 089; };\n"
              "                      ^\n");
}

TEST(FileParser, AnArrayWithoutElementsIsAnError) {
    EXPECT_EQ(faults("class A_B { uint8 x[0]; };"),
              "a.mof:1:21: error: the size of an array must be 1 or more\n"
              "class A_B { uint8 x[0]; };\n"
              "                    ^\n");
}

TEST(FileParser, FlavorsThatContradictEachOtherAreAnError) {
    EXPECT_EQ(faults("class A_B { [Key : ToSubclass Restricted] uint8 x; };"),
              "a.mof:1:31: error: this flavor contradicts one before it\n"
              "class A_B { [Key : ToSubclass Restricted] uint8 x; };\n"
              "                              ^\n");
}

TEST(FileParser, AZeroByteIsAnErrorWhereverItIs) {
    using namespace std::string_literals;
    EXPECT_EQ(faults("class A_B {};\n// a\0b\n?"s),
              "a.mof:2:5: error: here is a zero byte: the file must be text, in UTF-8\n"
              "// a?b\n"
              "    ^\n");
    EXPECT_EQ(faults("class A_B { string s = \"\0\"; };"s),
              "a.mof:1:25: error: here is a zero byte: the file must be text, in UTF-8\n"
              "class A_B { string s = \"?\"; };\n"
              "                        ^\n");
}

TEST(FileParser, CharactersWithoutMeaningAreErrors) {
    EXPECT_EQ(faults("class A_B {}; ?"),
              "a.mof:1:15: error: this character has no meaning here\n"
              "class A_B {}; ?\n"
              "              ^\n");
}

TEST(FileParser, ATruncatedFileNeverCrashes) {
    const std::string mof =
        "#pragma include (\"b.mof\")\n"
        "Qualifier Key : boolean = false, Scope (property), Flavor (ToSubclass);\n"
        "[Description (\"a\\x41\" \"b\") : Translatable, Values { \"a\", 'c', 0x1, 1.5 }]\n"
        "class A_B as $B : A_C { [Key] string s[4] = { \"x\" }; uint8 M ([In] A_B ref r[]); };\n"
        "instance of A_B { s = { 1 }; }; /* end */ // end";
    for (std::size_t length = 0; length <= mof.size(); ++length)
        (void)parseText(mof.substr(0, length));
}

TEST(FileParser, BytesOfAnyKindNeverCrash) {
    std::string everyByte;
    for (int byte = 1; byte < 256; ++byte)
        everyByte += static_cast<char>(byte);
    (void)parseText(everyByte + '\0');
    (void)parseText(everyByte);
    (void)parseText("class A_B { string s = \"" + everyByte + "\"; };");
}

}  // namespace

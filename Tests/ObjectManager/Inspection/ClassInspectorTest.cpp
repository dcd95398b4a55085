#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Inspection/ClassInspector.h"
#include "Tests/Support/MofModel.h"

namespace {

// What is found of the last class of some MOF by name, a line each: "KIND MEMBER: MESSAGE".
std::string findingsOf(const std::string& mof) {
    const MofModel model(mof);
    std::string lines;
    for (const Inspection::Finding& finding :
         Inspection::inspectClass(*model.nameSpace().classes().back())) {
        EXPECT_EQ(finding.nameSpace, "");
        EXPECT_EQ(finding.className, "");
        lines += std::string(nameOf(finding.kind)) + " " + finding.member + ": " + finding.message +
                 "\n";
    }
    return lines;
}

std::string twoTypes(const std::string& member) {
    return "length-and-value-map " + member +
           ": the parameter has both MaxLen and ValueMap, of which its schema has two types\n";
}

std::string noXmlName(const std::string& member) {
    return "no-xml-name " + member + ": the name is none that XML allows\n";
}

TEST(ClassInspector, FindsNothingInAnOrdinaryClass) {
    EXPECT_EQ(
        findingsOf("class TST_Sub {\n"
                   "  [Key, MaxLen(3), ValueMap{\"a\"}] string Name_1;\n"
                   "  uint32 Stop([In, MaxLen(3)] string A, [In, ValueMap{\"a\"}] string B);\n"
                   "};\n"),
        "");
}

// A letter, and characters that may not begin a name or stand in it.
TEST(ClassInspector, FindsNamesThatXmlDoesNotAllow) {
    EXPECT_EQ(findingsOf("class TST_\xC3\xA9 {\n"
                         "  string \xC3\xA9;\n"
                         "};\n"),
              "");
    EXPECT_EQ(findingsOf("class TST_A\xC3\x97 {\n"
                         "  string P\xC3\x97;\n"
                         "  string \xC2\xB7P;\n"
                         "  uint32 M\xC3\x97([In] string Q, [In] string R\xC3\x97);\n"
                         "};\n"),
              noXmlName("") + noXmlName("P\xC3\x97") + noXmlName("\xC2\xB7P") +
                  noXmlName("M\xC3\x97") + noXmlName("M\xC3\x97.R\xC3\x97"));
}

TEST(ClassInspector, FindsParametersOfTwoTypes) {
    EXPECT_EQ(findingsOf("class TST_Sub {\n"
                         "  uint32 Stop([In, MaxLen(3), ValueMap{\"a\"}] string A,\n"
                         "              [Out, MaxLen(3), ValueMap{\"a\"}] string B[]);\n"
                         "  uint32 Go([In, Out, MaxLen(3), ValueMap{\"a\"}] string A);\n"
                         "};\n"),
              twoTypes("Stop.A") + twoTypes("Stop.B") + twoTypes("Go.A"));
}

// It stands in no schema.
TEST(ClassInspector, FindsNothingInAParameterThatGoesNeitherInNorOut) {
    EXPECT_EQ(
        findingsOf("class TST_Sub {\n"
                   "  uint32 Stop([MaxLen(3), ValueMap{\"a\"}] string A,\n"
                   "              [In(false), Out(null), MaxLen(3), ValueMap{\"a\"}] string B,\n"
                   "              [ValueMap{\"2000000\", \"..\"}] uint32 C);\n"
                   "};\n"),
        "");
}

std::string tooManyGaps(const std::string& member, unsigned long count) {
    return "too-many-gaps " + member + ": the \"..\" of its ValueMap stands for " +
           std::to_string(count) +
           " values; with more than 1000000 the documents of a class are not made\n";
}

TEST(ClassInspector, AMillionGapsMayBeWrittenAndNoMore) {
    EXPECT_EQ(findingsOf("class TST_A { [ValueMap{\"1000000\", \"..\"}] uint32 P; };"), "");
    EXPECT_EQ(findingsOf("class TST_A { [ValueMap{\"1000001\", \"..\"}] uint32 P; };"),
              tooManyGaps("P", 1'000'001));
    EXPECT_EQ(findingsOf("class TST_A { [ValueMap{\"0xFFFFFFFF\", \"..\"}] uint32 P; };"),
              tooManyGaps("P", 4'294'967'295));
}

// A parameter that goes in and out stands in the schema twice.
TEST(ClassInspector, TheGapsOfAClassAddUp) {
    EXPECT_EQ(findingsOf("class TST_A {\n"
                         "  [ValueMap{\"500000\", \"..\"}] uint32 P;\n"
                         "  uint32 Go([In, ValueMap{\"500000\", \"..\"}] uint32 A);\n"
                         "};"),
              "");
    EXPECT_EQ(
        findingsOf("class TST_A {\n"
                   "  [ValueMap{\"400000\", \"..\"}] uint32 P;\n"
                   "  [ValueMap{\"1\", \"..\"}] uint32 Few;\n"
                   "  uint32 Go([In, Out, ValueMap{\"300000\", \"..\"}] uint32 A);\n"
                   "};"),
        tooManyGaps("P", 400'000) + tooManyGaps("Go.A", 300'000) + tooManyGaps("Go.A", 300'000));
}

// So many of them that they are too many, none of which is worth a word by itself.
TEST(ClassInspector, NamesTheMembersThatHaveMostOfManySmallGaps) {
    std::string mof = "class TST_A {\n";
    for (int number = 0; number < 99; ++number)
        mof += "[ValueMap{\"9999\", \"..\"}] uint32 P" + std::to_string(number) + ";\n";
    EXPECT_EQ(findingsOf(mof + "};"), "");
    EXPECT_EQ(findingsOf(mof + "[ValueMap{\"10000\", \"..\"}] uint32 Q;\n};"), "");
    EXPECT_EQ(findingsOf(mof + "[ValueMap{\"10000\", \"..\"}] uint32 Q;\n"
                               "[ValueMap{\"200\", \"..\"}] uint32 R;\n};"),
              tooManyGaps("Q", 10'000));
}

// As the documents see them: a propagated MaxLen, but no propagated ValueMap.
TEST(ClassInspector, LooksAtQualifiersAsTheDocumentsDo) {
    EXPECT_EQ(findingsOf("class TST_Base {\n"
                         "  uint32 Stop([In, MaxLen(3)] string A, [In, ValueMap{\"a\"}] string B,\n"
                         "              [In, MaxLen(3), ValueMap{\"a\"}] string C);\n"
                         "};\n"
                         "class TST_Sub : TST_Base {\n"
                         "  [Override(\"Stop\")]\n"
                         "  uint32 Stop([In, ValueMap{\"a\"}] string A, [In, MaxLen(3)] string B,\n"
                         "              [In] string C);\n"
                         "};\n"),
              twoTypes("Stop.A"));
}

TEST(ClassInspector, LooksAtWhatIsInherited) {
    EXPECT_EQ(findingsOf("class TST_Base {\n"
                         "  string P\xC3\x97;\n"
                         "  uint32 Stop([In, MaxLen(3), ValueMap{\"a\"}] string A);\n"
                         "};\n"
                         "class TST_Sub : TST_Base {\n"
                         "};\n"),
              noXmlName("P\xC3\x97") + twoTypes("Stop.A"));
}

unsigned long gapsOf(const std::string& entries) {
    const MofModel model("class TST_A { [ValueMap{" + entries + "}] uint64 P; };");
    const urma::IQualifier* const valueMap =
        model.cimClass("TST_A").properties().front()->getQualifier("ValueMap", false);
    return Inspection::countGaps(*valueMap->getValue());
}

TEST(ValueMapGaps, AreTheUnlistedValuesBelowTheNumberBeforeADotDot) {
    EXPECT_EQ(gapsOf(R"("5", "..")"), 5U);
    EXPECT_EQ(gapsOf(R"("1", "3", "5", "..")"), 3U);
    EXPECT_EQ(gapsOf(R"("5", "..", "3")"), 5U);  // what follows is not known yet there
    EXPECT_EQ(gapsOf(R"("-2", "5", "..")"), 5U);
    EXPECT_EQ(gapsOf(R"("3", "3", "3", "..")"), 3U);
}

TEST(ValueMapGaps, AreNoneWithoutADotDotOrWithoutANumberBeforeIt) {
    EXPECT_EQ(gapsOf(""), 0U);
    EXPECT_EQ(gapsOf("null"), 0U);
    EXPECT_EQ(gapsOf(R"("5")"), 0U);
    EXPECT_EQ(gapsOf(R"("5..", "..9", "3..4")"), 0U);
    EXPECT_EQ(gapsOf(R"("..", "5")"), 0U);
    EXPECT_EQ(gapsOf(R"("-5", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("0", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("a", "..")"), 0U);
}

TEST(ValueMapGaps, AreNoneWhereAsManyValuesAreListed) {
    EXPECT_EQ(gapsOf(R"("0", "1", "2", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("-1", "1", "2", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("1", "2", "..")"), 1U);
}

// A range lists nothing.
TEST(ValueMapGaps, OfARangeTheFirstNumberCounts) {
    EXPECT_EQ(gapsOf(R"("1", "5..7", "..")"), 4U);
    EXPECT_EQ(gapsOf(R"("5..", "..")"), 5U);
    EXPECT_EQ(gapsOf(R"("..5", "..")"), 0U);
}

TEST(ValueMapGaps, OfSeveralDotDotsAddUp) {
    EXPECT_EQ(gapsOf(R"("2", "..", "5", "..")"), 2U + 4U);
}

TEST(ValueMapGaps, NumbersAreHexadecimalTooAndOfSixtyFourBits) {
    EXPECT_EQ(gapsOf(R"("0x10", "..")"), 16U);
    EXPECT_EQ(gapsOf(R"("0XfF", "..")"), 255U);
    EXPECT_EQ(gapsOf(R"("4294967295", "..")"), 4'294'967'295U);
    EXPECT_EQ(gapsOf(R"("0xFFFFFFFF", "..")"), 4'294'967'295U);
    EXPECT_EQ(gapsOf(R"("9223372036854775806", "..")"), 9'223'372'036'854'775'806U);
    EXPECT_EQ(gapsOf(R"("9223372036854775806", "..", "9223372036854775806", "..", "7", "..",
                        "9223372036854775806", "..")"),
              18'446'744'073'709'551'615U);  // and no more are counted
}

// Documents write it as a range without gaps.
TEST(ValueMapGaps, AreNoneBehindTheLargestNumber) {
    EXPECT_EQ(gapsOf(R"("9223372036854775807", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("18446744073709551615", "..")"), 0U);
    EXPECT_EQ(gapsOf(R"("0xFFFFFFFFFFFFFFFF", "..")"), 0U);
}

}  // namespace

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
                   "              [In(false), Out(null), MaxLen(3), ValueMap{\"a\"}] string B);\n"
                   "};\n"),
        "");
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

}  // namespace

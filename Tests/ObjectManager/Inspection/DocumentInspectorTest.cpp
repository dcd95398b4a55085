#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "ObjectManager/Inspection/DocumentInspector.h"
#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Support/ClassModel.h"

namespace {

using Inspection::Finding;

TSKSmrPtr<WsdlUtil::ClassList> listOf(const ModelClass& cimClass) {
    const auto classes = TSKSmrPtr<WsdlUtil::ClassList>::make();
    classes->append(cimClass.share());
    return classes;
}

// The documents as the plug-in makes them.

std::string schemaOf(const ModelClass& cimClass) {
    std::stringstream stream;
    WsdlUtil::streamXsdDefinitions(stream, "http://localhost/interop/", listOf(cimClass));
    return stream.str();
}

std::string wsdlOf(const ModelClass& cimClass) {
    std::stringstream stream;
    WsdlUtil::streamDefinitions(stream, "http://localhost/", "interop", listOf(cimClass));
    return stream.str();
}

// A line each: "KIND MEMBER: MESSAGE".
std::string linesOf(const std::vector<Finding>& findings) {
    std::string lines;
    for (const Finding& finding : findings) {
        EXPECT_EQ(finding.nameSpace, "");
        EXPECT_EQ(finding.className, "");
        lines += std::string(nameOf(finding.kind)) + " " + finding.member + ": " + finding.message +
                 "\n";
    }
    return lines;
}

std::string schemaFindings(const ModelClass& cimClass) {
    return linesOf(Inspection::inspectSchema("TST_Any.xsd", schemaOf(cimClass)));
}

std::string wsdlFindings(const ModelClass& cimClass) {
    return linesOf(Inspection::inspectWsdl("TST_Any.wsdl", wsdlOf(cimClass)));
}

std::string unmapped(const std::string& member) {
    return "unmapped-type " + member +
           ": its type has no place in XML Schema and is \"NA\" there\n";
}

std::string manyGaps(const std::string& member, const std::string& count) {
    return "many-gaps " + member + ": the \"..\" of its ValueMap is written as " + count +
           " values\n";
}

std::string twoMessages(const std::string& name) {
    return "duplicate-message : the WSDL has two messages \"" + name +
           "\", since a method is named like another operation\n";
}

ModelClass ordinaryClass() {
    return ModelClass("TST_Any")
        .qualifier("Description", "What it is for.")
        .property(ModelProperty("Name", "string").qualifier("Key").qualifier("MaxLen", "64"))
        .property(ModelProperty("Status", "uint16[]").qualifier("ValueMap", {"0", "1", ".."}))
        .method(ModelMethod("Stop", "uint32")
                    .parameter(ModelParameter("Force", "boolean").qualifier("In"))
                    .parameter(ModelParameter("Job", "CIM_Job ref").qualifier("Out")));
}

TEST(DocumentInspector, FindsNothingInTheDocumentsOfAnOrdinaryClass) {
    EXPECT_EQ(schemaFindings(ordinaryClass()), "");
    EXPECT_EQ(wsdlFindings(ordinaryClass()), "");
}

TEST(DocumentInspector, SaysWhichDocumentIsNotWellFormed) {
    EXPECT_EQ(linesOf(Inspection::inspectSchema("TST_Any.xsd", "<a>\n</b>")),
              "not-well-formed : TST_Any.xsd is not well-formed: line 2, column 5: Opening and "
              "ending tag mismatch: a line 1 and b\n");
    EXPECT_EQ(linesOf(Inspection::inspectWsdl("TST_Any.wsdl", "")),
              "not-well-formed : TST_Any.wsdl is not well-formed: line 1, column 1: Document is "
              "empty\n");
}

TEST(DocumentInspector, FindsDescriptionsThatAreNoMarkup) {
    const ModelClass cimClass = ModelClass("TST_Any").qualifier("Description", "a & b");
    EXPECT_EQ(schemaFindings(cimClass), "");
    const std::string found = wsdlFindings(cimClass);
    EXPECT_TRUE(found.starts_with("not-well-formed : TST_Any.wsdl is not well-formed: line "))
        << found;
    EXPECT_TRUE(found.ends_with(": xmlParseEntityRef: no name\n")) << found;
}

// Wherever a type stands: as it is, or as the base of a restriction.
TEST(DocumentInspector, FindsTypesWithoutAPlaceInXmlSchema) {
    EXPECT_EQ(schemaFindings(
                  ModelClass("TST_Any")
                      .property(ModelProperty("Plain", "decimal"))
                      .property(ModelProperty("Several", "decimal[]"))
                      .property(ModelProperty("Short", "decimal").qualifier("MaxLen", "3"))
                      .property(ModelProperty("One", "decimal").qualifier("ValueMap", {"1"}))
                      .property(ModelProperty("Link", "decimal ref"))
                      .property(ModelProperty("Named_INPUT", "decimal"))
                      .method(ModelMethod("Stop", "decimal")
                                  .parameter(ModelParameter("In", "decimal").qualifier("In"))
                                  .parameter(ModelParameter("Neither", "decimal"))
                                  .parameter(ModelParameter("Out", "decimal").qualifier("Out")))),
              unmapped("Plain") + unmapped("Several") + unmapped("Short") + unmapped("One") +
                  unmapped("Named_INPUT") + unmapped("Stop.In") + unmapped("Stop.Out") +
                  unmapped("Stop.ReturnValue"));
}

// What is around a finding ends at the class: a method may be named like its own elements.
TEST(DocumentInspector, NamesMethodsAsTheyAreDeclared) {
    EXPECT_EQ(schemaFindings(ModelClass("TST_Any").method(
                  ModelMethod("Get_OUTPUT", "uint32")
                      .parameter(ModelParameter("A_INPUT", "decimal").qualifier("In")))),
              unmapped("Get_OUTPUT.A_INPUT"));
}

// The values from 1 to before the last listed one are gaps.
TEST(DocumentInspector, FindsMoreThanTenThousandGaps) {
    const auto property = [](const char* last) {
        return ModelProperty("Code", "uint32").qualifier("ValueMap", {"0", last, ".."});
    };
    EXPECT_EQ(schemaFindings(ModelClass("TST_Any").property(property("10001"))), "");
    EXPECT_EQ(schemaFindings(ModelClass("TST_Any").property(property("10002"))),
              manyGaps("Code", "10001"));
}

TEST(DocumentInspector, FindsTheGapsOfParameters) {
    const auto parameter = [](const char* name) {
        return ModelParameter(name, "uint32").qualifier("ValueMap", {"0", "20000", ".."});
    };
    EXPECT_EQ(
        schemaFindings(ModelClass("TST_Any").method(
            ModelMethod("Stop", "uint32")
                .parameter(parameter("A").qualifier("In"))
                .parameter(parameter("B").qualifier("In").qualifier("Out")))),
        manyGaps("Stop.A", "19999") + manyGaps("Stop.B", "19999") + manyGaps("Stop.B", "19999"));
}

// These are what somebody wrote, and no gaps.
TEST(DocumentInspector, LetsListedValuesBeMany) {
    std::vector<ModelElement> values;
    for (int number = 0; number < 10'002; ++number)
        values.emplace_back(std::to_string(number));
    ModelProperty listed("Listed", "uint32");
    listed.qualifier("ValueMap", ModelValue(values));
    values.emplace_back("..");
    ModelProperty open("Open", "uint32");
    open.qualifier("ValueMap", ModelValue(values));
    EXPECT_EQ(schemaFindings(ModelClass("TST_Any").property(listed).property(open)), "");
}

TEST(DocumentInspector, FindsMessagesOfOneName) {
    for (const char* const name : {"Get", "Delete", "Create", "Enumerate", "Pull", "Put"}) {
        EXPECT_EQ(wsdlFindings(ModelClass("TST_Any").method(ModelMethod(name, "uint32"))),
                  twoMessages(name + std::string("_InputMessage")) +
                      twoMessages(name + std::string("_OutputMessage")));
    }
}

TEST(DocumentInspector, LetsMethodsBeNamedLikeHeadersOrInOtherCase) {
    EXPECT_EQ(wsdlFindings(ModelClass("TST_Any")
                               .method(ModelMethod("Action", "uint32"))
                               .method(ModelMethod("To", "uint32"))
                               .method(ModelMethod("get", "uint32"))),
              "");
}

TEST(DocumentInspector, LooksAtNothingElse) {
    EXPECT_EQ(linesOf(Inspection::inspectSchema("TST_Any.xsd", "<a/>")), "");
    EXPECT_EQ(linesOf(Inspection::inspectSchema("TST_Any.xsd", "<a><!-- c --><b>t</b>t</a>")), "");
    EXPECT_EQ(linesOf(Inspection::inspectSchema("TST_Any.xsd", "<restriction base='NA'/>")),
              unmapped(""));
    EXPECT_EQ(linesOf(Inspection::inspectWsdl("TST_Any.wsdl", "<message name='a'/>")), "");
    EXPECT_EQ(linesOf(Inspection::inspectWsdl("TST_Any.wsdl",
                                              "<a><b><message name='a'/></b>"
                                              "<message name='a'/>t</a>")),
              "");
}

// No recursion: as deep as no stack could follow.
TEST(DocumentInspector, FollowsElementsToAnyDepth) {
    constexpr int kDepth = 200'000;
    std::string schema;
    for (int level = 0; level < kDepth; ++level)
        schema += "<a>";
    schema += "<element name='Deep' type='NA'/>";
    for (int level = 0; level < kDepth; ++level)
        schema += "</a>";
    EXPECT_EQ(linesOf(Inspection::inspectSchema("TST_Any.xsd", schema)), unmapped("Deep"));
}

}  // namespace

// Whole documents, compared with files that were worked out by hand (Expected/).

#include <gtest/gtest.h>
#include <sstream>
#include <string>
#include <vector>

#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Providers/WsdlWebProvider/ExpectedDocuments.h"
#include "Tests/Support/ClassModel.h"

namespace {

ModelClass nothing() {
    return ModelClass("TST_Nothing");
}

ModelClass everyType() {
    return ModelClass("TST_EveryType")
        .qualifier("Description", "Holds every type once as a scalar and once as an array.")
        .property(ModelProperty("Text", "string").qualifier("Key"))
        .property(ModelProperty("Character", "char16").qualifier("Required"))
        .property(ModelProperty("Moment", "datetime").qualifier("Key", false))
        .property(ModelProperty("Double", "real64").qualifier("Required", false))
        .property(ModelProperty("Float", "real32"))
        .property(ModelProperty("Truth", "boolean").propagatedQualifier("Key"))
        .property(ModelProperty("Signed64", "sint64").propagatedQualifier("Required"))
        .property(ModelProperty("Unsigned64", "uint64").qualifier("key"))
        .inheritedProperty(ModelProperty("Signed32", "sint32"))
        .property(ModelProperty("Unsigned32", "uint32"))
        .property(ModelProperty("Signed16", "sint16"))
        .property(ModelProperty("Unsigned16", "UINT16"))
        .property(ModelProperty("Signed8", "sint8"))
        .property(ModelProperty("Unsigned8", "uint8"))
        .property(ModelProperty("Reference", "TST_Nothing ref").qualifier("Key"))
        .property(ModelProperty("Unmapped", "object"))
        .property(ModelProperty("Texts", "string[]").qualifier("Key"))
        .property(ModelProperty("Characters", "char16[]").qualifier("Required"))
        .property(ModelProperty("Moments", "datetime[]"))
        .property(ModelProperty("Doubles", "real64[]"))
        .property(ModelProperty("Floats", "real32[]"))
        .property(ModelProperty("Truths", "boolean[]"))
        .property(ModelProperty("Signed64s", "sint64[]"))
        .property(ModelProperty("Unsigned64s", "uint64[]"))
        .property(ModelProperty("Signed32s", "sint32[]"))
        .property(ModelProperty("Unsigned32s", "uint32[]"))
        .property(ModelProperty("Signed16s", "sint16[]"))
        .property(ModelProperty("Unsigned16s", "uint16[]"))
        .property(ModelProperty("Signed8s", "sint8[]"))
        .property(ModelProperty("Unsigned8s", "uint8[]"))
        .property(ModelProperty("References", "TST_Nothing ref[]"))
        .property(ModelProperty("Unmappeds", "object[]"));
}

ModelProperty mapped(const char* name, const char* type, const ModelValue& valueMap) {
    return ModelProperty(name, type).qualifier("ValueMap", valueMap);
}

ModelClass everyValueMap() {
    return ModelClass("TST_EveryValueMap")
        .propagatedQualifier("Description", "Not written on this class.")
        .property(mapped("Singles", "uint16", {"0", "1", "0x10", "1", "1x", "x"}))
        .property(mapped("Words", "string", {"a", "b&c", "0x10", "\"<>\""}))
        .property(mapped("Empty", "uint8", {}))
        .property(mapped("Scalar", "uint8", "3"))
        .property(mapped("Untyped", "uint8", ModelValue{"1", "2"}.withoutType()))
        .property(mapped("Nulls", "uint16[]", {"1", nullptr, "2"}))
        .property(mapped("Gaps", "uint8", {"2", "3", "5..7", "10", ".."}))
        .property(mapped("NoGaps", "uint16", {"0", "1", "..", "16.."}))
        .property(mapped("Hexadecimal", "uint16", {"0x01", "0x02", ".."}))
        .property(mapped("Ranges", "sint32", {"-5", "..5", "7..", "12", "0x20..0x2F", "0X30"}))
        .property(mapped("WordRanges", "string", {"a", "Max", "3..5", nullptr, ".."}))
        .property(mapped("LoneFirst", "uint8", {"..", "4"}))
        .property(mapped("OpenFirst", "char16", {"..3", "9", "9"}))
        .property(
            ModelProperty("LongWord", "string").qualifier("MaxLen", "64").qualifier("Required"))
        .property(ModelProperty("LongWords", "string[]").propagatedQualifier("MaxLen", "8"))
        .property(mapped("Both", "string", {"on", "off"}).qualifier("MaxLen", "4"))
        .property(ModelProperty("OnlyPropagated", "uint16").propagatedQualifier("ValueMap", {"1"}));
}

ModelParameter input(const char* name, const char* type) {
    return ModelParameter(name, type).qualifier("In");
}

ModelClass methods() {
    return ModelClass("TST_Methods")
        .qualifier("Title", "No description")
        .qualifier("description", "Overridden by the next one.")
        .qualifier("DESCRIPTION", "Does 100% of A & B, when A < B; %s stays.")
        .qualifierWithoutValue("Description")
        .property(ModelProperty("Name", "string").qualifier("Key"))
        .method(ModelMethod("Reset", "uint32"))
        .inheritedMethod(
            ModelMethod("Configure", "uint16[]")
                .qualifier("Description", "50% & less <than> %d.")
                .parameter(input("Input", "string"))
                .parameter(input("Both", "uint16[]").qualifier("Out"))
                .parameter(ModelParameter("Output", "datetime").qualifier("Out"))
                .parameter(ModelParameter("Neither", "boolean"))
                .parameter(ModelParameter("NotIn", "boolean")
                               .qualifier("In", false)
                               .propagatedQualifier("Out"))
                .parameter(input("Limited", "string")
                               .qualifier("MaxLen", "8")
                               .qualifier("ValueMap", {"a", "b"}))
                .parameter(input("KeyAndRequired", "uint8")
                               .qualifier("Key", false)
                               .qualifier("Required", false))
                .parameter(
                    input("KeyAndRequiredArray", "uint8[]").qualifier("Key").qualifier("Required"))
                .parameter(
                    input("KeyAlone", "uint8").qualifier("Key").propagatedQualifier("Required"))
                .parameter(input("Where", "TST_Nothing ref").qualifier("Required")))
        .method(
            ModelMethod("Find", "TST_Nothing ref")
                .qualifier("description", " ")
                .parameter(
                    input("Kind", "uint8").qualifier("Out").qualifier("ValueMap", {"1", ".."})));
}

ModelClass two() {
    return ModelClass("TST_Two");
}

ModelClass three() {
    return ModelClass("TST_Three")
        .qualifier("Description", "The third.")
        .property(ModelProperty("Label", "string"));
}

// A list of classes and the stem of the files that hold its documents.
struct Documents {
    const char* name;
    std::vector<ModelClass> classes;
};

void PrintTo(const Documents& documents, std::ostream* stream) {
    *stream << documents.name;
}

class DocumentTest : public testing::TestWithParam<Documents> {
  protected:
    static std::string expected(const char* extension) {
        return expectedDocument(std::string(GetParam().name) + extension);
    }

    static TSKSmrPtr<WsdlUtil::ClassList> classes() {
        auto list = TSKSmrPtr<WsdlUtil::ClassList>::make();
        for (const ModelClass& cimClass : GetParam().classes)
            list->append(cimClass.share());
        return list;
    }
};

TEST_P(DocumentTest, SchemaIsTheExpectedOne) {
    std::stringstream stream;
    EXPECT_EQ(WsdlUtil::streamXsdDefinitions(stream, "http://192.0.2.1:5985/root/test/", classes()),
              1);
    EXPECT_EQ(stream.str(), expected(".xsd"));
}

TEST_P(DocumentTest, WsdlIsTheExpectedOne) {
    std::stringstream stream;
    EXPECT_EQ(WsdlUtil::streamDefinitions(stream, "http://192.0.2.1:5985/", "root/test", classes()),
              1);
    EXPECT_EQ(stream.str(), expected(".wsdl"));
}

INSTANTIATE_TEST_SUITE_P(, DocumentTest,
                         testing::Values(Documents{"TST_Nothing", {nothing()}},
                                         Documents{"TST_EveryType", {everyType()}},
                                         Documents{"TST_EveryValueMap", {everyValueMap()}},
                                         Documents{"TST_Methods", {methods()}},
                                         Documents{"NoClasses", {}},
                                         Documents{"OneClass", {classOne()}},
                                         Documents{"ThreeClasses", {classOne(), two(), three()}}),
                         [](const auto& instance) { return std::string(instance.param.name); });

}  // namespace

#include <gtest/gtest.h>
#include <limits>
#include <string>
#include <vector>

#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Providers/WsdlWebProvider/SchemaPrinting.h"
#include "Tests/Support/ClassModel.h"
#include "Tests/Support/HostCalls.h"

namespace {

using Element = TSKSmrPtr<SOAPElement>;
using namespace SchemaPrinting;

std::string maxLenOf(const ModelType& type, const ModelValue& maxLen, const char* prefix = "xs") {
    return contentOf(
        [&](Element& parent) { WsdlUtil::addRestrictionMaxLenChildElement(parent, type, maxLen); },
        prefix);
}

struct Flags {
    bool addAnyAttribute = false;
    bool addMaxLength = false;
    long maxLength = 0;
};

std::string enumerationOf(const ModelType& type, const ModelValue& values, const Flags& flags = {},
                          const char* prefix = "xs") {
    return contentOf(
        [&](Element& parent) {
            WsdlUtil::addRestrictionEnumerationChildElement(
                parent, type, values, flags.addAnyAttribute, flags.addMaxLength, flags.maxLength);
        },
        prefix);
}

std::string intervalOf(const ModelType& type, const char* minValue, const char* maxValue,
                       const char* prefix = "xs") {
    return contentOf(
        [&](Element& parent) {
            WsdlUtil::addSimpleTypeRestrictionChildElement(parent, type, minValue, maxValue);
        },
        prefix);
}

// What is expected below the parent.
std::string restriction(const std::string& base, const std::string& content) {
    return parentOf(element("restriction base=\"" + base + "\"", content));
}

std::string intervalFrom5To9(const std::string& base) {
    return parentOf(element(
        "simpleType", element("restriction base=\"" + base + "\"",
                              facets("minInclusive", {"5"}) + facets("maxInclusive", {"9"}))));
}

TEST(QualifierRestriction, MaxLenRestrictsTheWrapperTypeAndEndsWithAnyAttribute) {
    EXPECT_EQ(maxLenOf("string", "64"), R"(
<xs:parent>
  <xs:restriction base="cim:cimString">
    <xs:maxLength value="64"/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:restriction>
</xs:parent>
)");
}

TEST(QualifierRestriction, MaxLenTakesTheParentsPrefixOrNone) {
    EXPECT_EQ(maxLenOf("string", "64", nullptr), R"(
<parent>
  <restriction base="cim:cimString">
    <maxLength value="64"/>
    <anyAttribute namespace="##any" processContents="lax"/>
  </restriction>
</parent>
)");
    EXPECT_EQ(maxLenOf("string", "64", "xsd"), R"(
<xsd:parent>
  <xsd:restriction base="cim:cimString">
    <xsd:maxLength value="64"/>
    <xsd:anyAttribute namespace="##any" processContents="lax"/>
  </xsd:restriction>
</xsd:parent>
)");
}

TEST(QualifierRestriction, MaxLenRestrictsTypesOfEveryKind) {
    const std::string content = facets("maxLength", {"8"}) + kAnyAttribute;
    EXPECT_EQ(maxLenOf("string[]", "8"), restriction("cim:cimString", content));
    EXPECT_EQ(maxLenOf("char16", "8"), restriction("cim:cimChar16", content));
    EXPECT_EQ(maxLenOf("uint16", "8"), restriction("cim:cimUnsignedShort", content));
    EXPECT_EQ(maxLenOf("CIM_Foo ref", "8"), restriction("cim:cimReference", content));
    EXPECT_EQ(maxLenOf("object", "8"), restriction("NA", content));
}

TEST(QualifierRestriction, MaxLenIsWrittenAsItIs) {
    for (const char* const text : {"many", "0x10", "-1", " 7 ", "007", ""}) {
        EXPECT_EQ(maxLenOf("string", text),
                  restriction("cim:cimString", facets("maxLength", {text}) + kAnyAttribute));
    }
}

TEST(QualifierRestriction, MarkupInMaxLenIsEscaped) {
    EXPECT_EQ(maxLenOf("string", "<&>"),
              restriction("cim:cimString", facets("maxLength", {"&lt;&amp;&gt;"}) + kAnyAttribute));
}

TEST(QualifierRestriction, HexadecimalNumbersOfNumericTypesAreWrittenInDecimal) {
    EXPECT_EQ(enumerationOf("uint16", {"0x10", "2"}), R"(
<xs:parent>
  <xs:restriction base="cim:cimUnsignedShort">
    <xs:enumeration value="16"/>
    <xs:enumeration value="2"/>
  </xs:restriction>
</xs:parent>
)");
}

TEST(QualifierRestriction, HexadecimalTextsOfStringTypesStay) {
    EXPECT_EQ(enumerationOf("string", {"0x10", "2"}), R"(
<xs:parent>
  <xs:restriction base="cim:cimString">
    <xs:enumeration value="0x10"/>
    <xs:enumeration value="2"/>
  </xs:restriction>
</xs:parent>
)");
}

TEST(QualifierRestriction, EnumerationsTakeTheParentsPrefixOrNone) {
    const Flags everything = {.addAnyAttribute = true, .addMaxLength = true, .maxLength = 8};
    EXPECT_EQ(enumerationOf("uint8", {"1"}, everything, nullptr), R"(
<parent>
  <restriction base="cim:cimUnsignedByte">
    <maxLength value="8"/>
    <enumeration value="1"/>
    <anyAttribute namespace="##any" processContents="lax"/>
  </restriction>
</parent>
)");
    EXPECT_EQ(enumerationOf("uint8", {"1"}, everything, "xsd"), R"(
<xsd:parent>
  <xsd:restriction base="cim:cimUnsignedByte">
    <xsd:maxLength value="8"/>
    <xsd:enumeration value="1"/>
    <xsd:anyAttribute namespace="##any" processContents="lax"/>
  </xsd:restriction>
</xsd:parent>
)");
}

// Everything with an x is read in base 16, up to the first byte that is no digit of it.
TEST(QualifierRestriction, AnXAnywhereMakesANumericTextHexadecimal) {
    struct Reading {
        const char* text;
        const char* number;
    };
    for (const Reading& reading :
         {Reading{"1x", "1"}, Reading{"x", "0"}, Reading{"X", "0"}, Reading{"0x", "0"},
          Reading{"0XfF", "255"}, Reading{"10x", "16"}, Reading{"ax", "10"}, Reading{"Max", "0"},
          Reading{"0x1G", "1"}, Reading{"-0x10", "-16"}, Reading{" 0x10", "16"},
          Reading{"0x10 0x20", "16"}, Reading{"x10", "0"}}) {
        EXPECT_EQ(enumerationOf("uint16", {reading.text}),
                  restriction("cim:cimUnsignedShort", facets("enumeration", {reading.number})))
            << "from " << reading.text;
    }
}

TEST(QualifierRestriction, TextsWithoutAnXAreWrittenAsTheyAre) {
    EXPECT_EQ(
        enumerationOf("uint16", {"1A", "010", "many", " 7", "+7", "", "99999999999999999999"}),
        restriction("cim:cimUnsignedShort", facets("enumeration", {"1A", "010", "many", " 7", "+7",
                                                                   "", "99999999999999999999"})));
}

TEST(QualifierRestriction, HexadecimalNumbersSaturateAt64Bits) {
    EXPECT_EQ(enumerationOf("uint64", {"0x7FFFFFFFFFFFFFFF", "0x8000000000000000",
                                       "0xFFFFFFFFFFFFFFFF", "0xFFFFFFFFFFFFFFFFFFFF",
                                       "-0x8000000000000000", "-0xFFFFFFFFFFFFFFFFFFFF"}),
              restriction("cim:cimUnsignedLong",
                          facets("enumeration", {"9223372036854775807", "9223372036854775807",
                                                 "9223372036854775807", "9223372036854775807",
                                                 "-9223372036854775808", "-9223372036854775808"})));
}

TEST(QualifierRestriction, MarkupInEnumerationsIsEscaped) {
    EXPECT_EQ(
        enumerationOf("string", {"b&c", "\"<>\""}),
        restriction("cim:cimString", facets("enumeration", {"b&amp;c", "&quot;&lt;&gt;&quot;"})));
}

TEST(QualifierRestriction, DuplicatesAreWrittenInTheirOrder) {
    EXPECT_EQ(enumerationOf("uint8", {"3", "1", "3", "0x03", "2"}),
              restriction("cim:cimUnsignedByte", facets("enumeration", {"3", "1", "3", "3", "2"})));
}

TEST(QualifierRestriction, NullElementsAreSkipped) {
    EXPECT_EQ(enumerationOf("uint8", {nullptr, "1", nullptr, nullptr, "2", nullptr}),
              restriction("cim:cimUnsignedByte", facets("enumeration", {"1", "2"})));
}

TEST(QualifierRestriction, AListOfNullsHasNoEnumerationsButTheRest) {
    EXPECT_EQ(enumerationOf("uint8", {nullptr, nullptr}), restriction("cim:cimUnsignedByte", ""));
    EXPECT_EQ(enumerationOf("uint8", {nullptr, nullptr},
                            {.addAnyAttribute = true, .addMaxLength = true, .maxLength = 8}),
              restriction("cim:cimUnsignedByte", facets("maxLength", {"8"}) + kAnyAttribute));
}

TEST(QualifierRestriction, AnEmptyListLeavesTheBaseAloneWhateverTheFlags) {
    for (const bool flag : {false, true}) {
        const Flags flags = {.addAnyAttribute = flag, .addMaxLength = flag, .maxLength = 8};
        EXPECT_EQ(enumerationOf("uint16", {}, flags), restriction("cim:cimUnsignedShort", ""));
    }
}

TEST(QualifierRestriction, ANullListLeavesTheBaseAloneWhateverTheFlags) {
    for (const bool flag : {false, true}) {
        const Flags flags = {.addAnyAttribute = flag, .addMaxLength = flag, .maxLength = 8};
        EXPECT_EQ(enumerationOf("uint16", ModelValue{"1", "2"}.withoutElements(), flags),
                  restriction("cim:cimUnsignedShort", ""));
    }
}

TEST(QualifierRestriction, AScalarListsNothing) {
    EXPECT_EQ(enumerationOf("uint16", ModelValue("3"), {.addAnyAttribute = true}),
              restriction("cim:cimUnsignedShort", ""));
}

TEST(QualifierRestriction, AListWithoutATypeIsListedAllTheSame) {
    EXPECT_EQ(enumerationOf("uint16", ModelValue{"1", "2"}.withoutType()),
              restriction("cim:cimUnsignedShort", facets("enumeration", {"1", "2"})));
}

TEST(QualifierRestriction, AnyAttributeFollowsTheEnumerations) {
    EXPECT_EQ(
        enumerationOf("uint8", {"1", "2"}, {.addAnyAttribute = true}),
        restriction("cim:cimUnsignedByte", facets("enumeration", {"1", "2"}) + kAnyAttribute));
}

TEST(QualifierRestriction, MaxLengthStandsBeforeTheEnumerations) {
    EXPECT_EQ(enumerationOf("string", {"a", "b"}, {.addMaxLength = true, .maxLength = 32}),
              restriction("cim:cimString",
                          facets("maxLength", {"32"}) + facets("enumeration", {"a", "b"})));
}

TEST(QualifierRestriction, MaxLengthIsIgnoredWithoutItsFlag) {
    EXPECT_EQ(enumerationOf("string", {"a"}, {.maxLength = 32}),
              restriction("cim:cimString", facets("enumeration", {"a"})));
}

TEST(QualifierRestriction, MaxLengthMayBeAnyNumber) {
    const auto written = [](long maxLength) {
        return enumerationOf("string", {"a"}, {.addMaxLength = true, .maxLength = maxLength});
    };
    const auto expected = [](const char* maxLength) {
        return restriction("cim:cimString",
                           facets("maxLength", {maxLength}) + facets("enumeration", {"a"}));
    };
    EXPECT_EQ(written(0), expected("0"));
    EXPECT_EQ(written(-1), expected("-1"));
    EXPECT_EQ(written(std::numeric_limits<long>::max()), expected("9223372036854775807"));
    EXPECT_EQ(written(std::numeric_limits<long>::min()), expected("-9223372036854775808"));
}

// The case of a type's name matters here, unlike in the mapping of types.
TEST(QualifierRestriction, EnumerationsOfTypesNamedLikeStringsKeepTheirTexts) {
    const std::string kept = facets("enumeration", {"0x10"});
    EXPECT_EQ(enumerationOf("string", {"0x10"}), restriction("cim:cimString", kept));
    EXPECT_EQ(enumerationOf("String", {"0x10"}), restriction("cim:cimString", kept));
    EXPECT_EQ(enumerationOf("string[]", {"0x10"}), restriction("cim:cimString", kept));
    EXPECT_EQ(enumerationOf("mystringtype", {"0x10"}), restriction("NA", kept));
    EXPECT_EQ(enumerationOf("MyStringType", {"0x10"}), restriction("NA", kept));
}

TEST(QualifierRestriction, EnumerationsOfOtherTypesAreConverted) {
    const std::string converted = facets("enumeration", {"16"});
    EXPECT_EQ(enumerationOf("STRING", {"0x10"}), restriction("cim:cimString", converted));
    EXPECT_EQ(enumerationOf("sTring", {"0x10"}), restriction("cim:cimString", converted));
    EXPECT_EQ(enumerationOf("strinG", {"0x10"}), restriction("cim:cimString", converted));
    EXPECT_EQ(enumerationOf("char16", {"0x10"}), restriction("cim:cimChar16", converted));
    EXPECT_EQ(enumerationOf("real32", {"0x10"}), restriction("cim:cimFloat", converted));
    EXPECT_EQ(enumerationOf("object", {"0x10"}), restriction("NA", converted));
}

TEST(QualifierRestriction, AnIntervalHasBothBounds) {
    EXPECT_EQ(intervalOf("uint16", "5", "9"), R"(
<xs:parent>
  <xs:simpleType>
    <xs:restriction base="xs:unsignedShort">
      <xs:minInclusive value="5"/>
      <xs:maxInclusive value="9"/>
    </xs:restriction>
  </xs:simpleType>
</xs:parent>
)");
}

TEST(QualifierRestriction, AnIntervalTakesTheParentsPrefixOrNone) {
    EXPECT_EQ(intervalOf("uint16", "5", "9", nullptr), R"(
<parent>
  <simpleType>
    <restriction base="xs:unsignedShort">
      <minInclusive value="5"/>
      <maxInclusive value="9"/>
    </restriction>
  </simpleType>
</parent>
)");
    EXPECT_EQ(intervalOf("uint16", "5", "9", "xsd"), R"(
<xsd:parent>
  <xsd:simpleType>
    <xsd:restriction base="xs:unsignedShort">
      <xsd:minInclusive value="5"/>
      <xsd:maxInclusive value="9"/>
    </xsd:restriction>
  </xsd:simpleType>
</xsd:parent>
)");
}

TEST(QualifierRestriction, AnIntervalOpenAboveHasOnlyTheLowerBound) {
    EXPECT_EQ(intervalOf("uint16", "5", ""), R"(
<xs:parent>
  <xs:simpleType>
    <xs:restriction base="xs:unsignedShort">
      <xs:minInclusive value="5"/>
    </xs:restriction>
  </xs:simpleType>
</xs:parent>
)");
}

TEST(QualifierRestriction, AnIntervalOpenBelowHasOnlyTheUpperBound) {
    EXPECT_EQ(intervalOf("uint16", "", "9"), R"(
<xs:parent>
  <xs:simpleType>
    <xs:restriction base="xs:unsignedShort">
      <xs:maxInclusive value="9"/>
    </xs:restriction>
  </xs:simpleType>
</xs:parent>
)");
}

TEST(QualifierRestriction, AnIntervalWithoutBoundsHasOnlyItsBase) {
    EXPECT_EQ(intervalOf("uint16", "", ""), R"(
<xs:parent>
  <xs:simpleType>
    <xs:restriction base="xs:unsignedShort"/>
  </xs:simpleType>
</xs:parent>
)");
}

TEST(QualifierRestriction, TheBoundsOfAnIntervalAreWrittenAsTheyAre) {
    EXPECT_EQ(intervalOf("uint16", "0x10", "<many>"), R"(
<xs:parent>
  <xs:simpleType>
    <xs:restriction base="xs:unsignedShort">
      <xs:minInclusive value="0x10"/>
      <xs:maxInclusive value="&lt;many&gt;"/>
    </xs:restriction>
  </xs:simpleType>
</xs:parent>
)");
}

TEST(QualifierRestriction, IntervalsOfTypesNamedLikeStringsHaveTheWrapperTypeAsBase) {
    EXPECT_EQ(intervalOf("string", "5", "9"), intervalFrom5To9("cim:cimString"));
    EXPECT_EQ(intervalOf("String", "5", "9"), intervalFrom5To9("cim:cimString"));
    EXPECT_EQ(intervalOf("string[]", "5", "9"), intervalFrom5To9("cim:cimString"));
    EXPECT_EQ(intervalOf("mystringtype", "5", "9"), intervalFrom5To9("NA"));
}

TEST(QualifierRestriction, IntervalsOfOtherTypesHaveTheSchemaTypeAsBase) {
    EXPECT_EQ(intervalOf("STRING", "5", "9"), intervalFrom5To9("xs:string"));
    EXPECT_EQ(intervalOf("sTring", "5", "9"), intervalFrom5To9("xs:string"));
    EXPECT_EQ(intervalOf("char16", "5", "9"), intervalFrom5To9("xs:string"));
    EXPECT_EQ(intervalOf("sint64", "5", "9"), intervalFrom5To9("xs:long"));
    EXPECT_EQ(intervalOf("datetime", "5", "9"), intervalFrom5To9("xs:dateTime"));
    EXPECT_EQ(intervalOf("CIM_Foo ref", "5", "9"), intervalFrom5To9("cim:cimReference"));
    EXPECT_EQ(intervalOf("object", "5", "9"), intervalFrom5To9("NA"));
}

TEST(QualifierRestriction, RestrictionsFollowWhatTheParentHolds) {
    const ModelType type("uint8");
    const std::string text = contentOf([&](Element& parent) {
        WsdlUtil::addElement(parent, "Name", "xs:int");
        WsdlUtil::addRestrictionMaxLenChildElement(parent, type, ModelValue("8"));
        WsdlUtil::addRestrictionEnumerationChildElement(parent, type, ModelValue{"1"}, false, false,
                                                        0);
        WsdlUtil::addSimpleTypeRestrictionChildElement(parent, type, "5", "");
    });
    EXPECT_EQ(text, R"(
<xs:parent>
  <xs:element name="Name" type="xs:int"/>
  <xs:restriction base="cim:cimUnsignedByte">
    <xs:maxLength value="8"/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:restriction>
  <xs:restriction base="cim:cimUnsignedByte">
    <xs:enumeration value="1"/>
  </xs:restriction>
  <xs:simpleType>
    <xs:restriction base="xs:unsignedByte">
      <xs:minInclusive value="5"/>
    </xs:restriction>
  </xs:simpleType>
</xs:parent>
)");
}

// What is built stays when the host fails, elements before their attributes.

using Left = std::vector<std::string>;

const std::string kBareRestriction = parentOf(element("restriction"));

TEST(QualifierRestriction, AFailedMaxLenLeavesWhatWasBuiltBefore) {
    EXPECT_EQ(leftByFailures([](Element& parent) {
                  WsdlUtil::addRestrictionMaxLenChildElement(parent, ModelType("string"),
                                                             ModelValue("8"));
              }),
              Left({kBareRestriction, restriction("cim:cimString", element("maxLength"))}));
}

TEST(QualifierRestriction, AFailedEnumerationLeavesWhatWasBuiltBefore) {
    const auto withContent = [](const std::string& content) {
        return restriction("cim:cimUnsignedByte", content);
    };
    const std::string maxLength = facets("maxLength", {"3"});
    const std::string first = facets("enumeration", {"1"});
    EXPECT_EQ(leftByFailures([](Element& parent) {
                  WsdlUtil::addRestrictionEnumerationChildElement(
                      parent, ModelType("uint8"), ModelValue{"1", "0x2"}, true, true, 3);
              }),
              Left({kBareRestriction, withContent(""), withContent(maxLength),
                    withContent(maxLength + first),
                    withContent(maxLength + first + element("enumeration"))}));
}

TEST(QualifierRestriction, AFailedIntervalLeavesWhatWasBuiltBefore) {
    EXPECT_EQ(leftByFailures([](Element& parent) {
                  WsdlUtil::addSimpleTypeRestrictionChildElement(parent, ModelType("uint8"), "1",
                                                                 "2");
              }),
              Left({parentOf(element("simpleType", element("restriction")))}));
}

}  // namespace

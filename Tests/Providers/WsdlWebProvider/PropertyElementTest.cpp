#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "Platform/Util/TSKNullPointerException.h"
#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Providers/WsdlWebProvider/SchemaPrinting.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/ClassModel.h"
#include "Tests/Support/HostCalls.h"

namespace {

using Element = TSKSmrPtr<SOAPElement>;
using namespace SchemaPrinting;

std::string globalElementOf(const urma::IPropertyDef& property, const char* prefix = "xs") {
    return contentOf([&](Element& parent) { WsdlUtil::addPropertyElement(parent, property); },
                     prefix);
}

std::string occurrenceOf(const urma::IPropertyDef& property) {
    return contentOf(
        [&](Element& parent) { WsdlUtil::addElementAttributeMinMaxOccurs(parent, property); });
}

// A property P of the type string.
ModelProperty text() {
    return ModelProperty("P", "string");
}

ModelProperty texts() {
    return ModelProperty("P", "string[]");
}

// What is expected of P.

constexpr const char* kOnce = "\n<xs:parent/>\n";
constexpr const char* kAtMostOnce = "\n<xs:parent minOccurs=\"0\"/>\n";
constexpr const char* kAnyNumber = "\n<xs:parent minOccurs=\"0\" maxOccurs=\"unbounded\"/>\n";

// --- Key and Required

TEST(PropertyElement, ATrueKeyOrRequiredMakesAScalarMandatory) {
    struct Case {
        const char* what;
        ModelProperty property;
        const char* global;
        const char* occurrence;
    };
    const Case cases[] = {
        {"nothing", text(), kNillableText, kAtMostOnce},
        {"Key", text().qualifier("Key"), kText, kOnce},
        {"Required", text().qualifier("Required"), kText, kOnce},
        {"both", text().qualifier("Key").qualifier("Required"), kText, kOnce},
        {"Key beside a false Required", text().qualifier("Key").qualifier("Required", false), kText,
         kOnce},
        {"Required beside a false Key", text().qualifier("Key", false).qualifier("Required"), kText,
         kOnce},
        {"a false Key", text().qualifier("Key", false), kNillableText, kAtMostOnce},
        {"a false Required", text().qualifier("Required", false), kNillableText, kAtMostOnce},
        {"both false", text().qualifier("Key", false).qualifier("Required", false), kNillableText,
         kAtMostOnce},
        {"Key without a value", text().qualifierWithoutValue("Key"), kNillableText, kAtMostOnce},
        {"Required without a value", text().qualifierWithoutValue("Required"), kNillableText,
         kAtMostOnce},
        {"a propagated Key", text().propagatedQualifier("Key"), kText, kOnce},
        {"a propagated Required", text().propagatedQualifier("Required"), kText, kOnce},
        {"a propagated false Required", text().propagatedQualifier("Required", false),
         kNillableText, kAtMostOnce},
    };
    for (const Case& one : cases) {
        EXPECT_EQ(globalElementOf(one.property), one.global) << one.what;
        EXPECT_EQ(occurrenceOf(one.property), one.occurrence) << one.what;
    }
}

TEST(PropertyElement, AnArrayIsNillableAndOccursAnyNumberOfTimesWhateverItsQualifiers) {
    for (const ModelProperty& property :
         {texts(), texts().qualifier("Key"), texts().qualifier("Required"),
          texts().qualifier("Key").qualifier("Required")}) {
        EXPECT_EQ(globalElementOf(property), kNillableText);
        EXPECT_EQ(occurrenceOf(property), kAnyNumber);
    }
    EXPECT_EQ(occurrenceOf(texts().qualifier("MaxLen", "8")), kAnyNumber);
}

// --- Global elements

TEST(PropertyElement, TheTypeIsTheWrapperTypeOfThePropertysType) {
    const auto withType = [](const char* type) {
        return parentOf(
            element("element name=\"P\" type=\"" + std::string(type) + "\" nillable=\"true\""));
    };
    EXPECT_EQ(globalElementOf(ModelProperty("P", "uint16")), withType("cim:cimUnsignedShort"));
    EXPECT_EQ(globalElementOf(ModelProperty("P", "char16")), withType("cim:cimChar16"));
    EXPECT_EQ(globalElementOf(ModelProperty("P", "datetime[]")), withType("cim:cimDateTime"));
    EXPECT_EQ(globalElementOf(ModelProperty("P", "CIM_Foo ref")), withType("cim:cimReference"));
    EXPECT_EQ(globalElementOf(ModelProperty("P", "CIM_Foo ref[]")), withType("cim:cimReference"));
    EXPECT_EQ(globalElementOf(ModelProperty("P", "object")), withType("NA"));
}

TEST(PropertyElement, OtherQualifiersChangeNothing) {
    EXPECT_EQ(globalElementOf(text()
                                  .qualifier("Description", "What it is for.")
                                  .qualifier("Write")
                                  .qualifier("Values", {"On", "Off"})
                                  .qualifier("MinLen", "1")
                                  .qualifier("MaxValue", "9")
                                  .qualifier("In")
                                  .qualifier("EmbeddedObject")),
              kNillableText);
}

TEST(PropertyElement, ElementsFollowEachOtherInTheOrderInWhichTheyAreAdded) {
    const std::string both = contentOf([](Element& parent) {
        WsdlUtil::addPropertyElement(parent, ModelProperty("Second", "uint8"));
        WsdlUtil::addPropertyElement(parent, ModelProperty("First", "uint8").qualifier("Key"));
        WsdlUtil::addPropertyElement(parent, ModelProperty("Second", "uint8"));
    });
    EXPECT_EQ(both, R"(
<xs:parent>
  <xs:element name="Second" type="cim:cimUnsignedByte" nillable="true"/>
  <xs:element name="First" type="cim:cimUnsignedByte"/>
  <xs:element name="Second" type="cim:cimUnsignedByte" nillable="true"/>
</xs:parent>
)");
}

// --- Restricted types

TEST(PropertyElement, MaxLenNestsARestrictedType) {
    EXPECT_EQ(globalElementOf(text().qualifier("MaxLen", "64")), R"(
<xs:parent>
  <xs:element name="P" nillable="true">
    <xs:complexType>
      <xs:simpleContent>
        <xs:restriction base="cim:cimString">
          <xs:maxLength value="64"/>
          <xs:anyAttribute namespace="##any" processContents="lax"/>
        </xs:restriction>
      </xs:simpleContent>
    </xs:complexType>
  </xs:element>
</xs:parent>
)");
}

TEST(PropertyElement, ValueMapNestsARestrictedType) {
    EXPECT_EQ(globalElementOf(ModelProperty("P", "uint16").qualifier("ValueMap", {"0", "0x10"})),
              R"(
<xs:parent>
  <xs:element name="P" nillable="true">
    <xs:complexType>
      <xs:simpleContent>
        <xs:restriction base="cim:cimUnsignedShort">
          <xs:enumeration value="0"/>
          <xs:enumeration value="16"/>
          <xs:anyAttribute namespace="##any" processContents="lax"/>
        </xs:restriction>
      </xs:simpleContent>
    </xs:complexType>
  </xs:element>
</xs:parent>
)");
}

TEST(PropertyElement, AValueMapWithRangesNestsAUnion) {
    EXPECT_EQ(
        globalElementOf(
            ModelProperty("P", "uint16").qualifier("ValueMap", {"0", "3.."}).qualifier("Key")),
        R"(
<xs:parent>
  <xs:element name="P">
    <xs:complexType>
      <xs:simpleContent>
        <xs:restriction base="cim:cimAnySimpleType">
          <xs:simpleType>
            <xs:union>
              <xs:simpleType>
                <xs:restriction base="xs:unsignedShort">
                  <xs:enumeration value="0"/>
                </xs:restriction>
              </xs:simpleType>
              <xs:simpleType>
                <xs:restriction base="xs:unsignedShort">
                  <xs:minInclusive value="3"/>
                </xs:restriction>
              </xs:simpleType>
            </xs:union>
          </xs:simpleType>
          <xs:anyAttribute namespace="##any" processContents="lax"/>
        </xs:restriction>
      </xs:simpleContent>
    </xs:complexType>
  </xs:element>
</xs:parent>
)");
}

TEST(PropertyElement, ARestrictedKeyOrRequiredPropertyIsNotNillable) {
    EXPECT_EQ(globalElementOf(text().qualifier("MaxLen", "8").qualifier("Key")),
              restricted(kNotNillable, kMaxLen8));
    EXPECT_EQ(globalElementOf(text().qualifier("MaxLen", "8").qualifier("Required")),
              restricted(kNotNillable, kMaxLen8));
    EXPECT_EQ(globalElementOf(text().qualifier("ValueMap", {"on", "off"}).qualifier("Key")),
              restricted(kNotNillable, kOnOff));
}

TEST(PropertyElement, ARestrictedArrayIsNillableWhateverItsQualifiers) {
    EXPECT_EQ(globalElementOf(texts().qualifier("MaxLen", "8").qualifier("Key")),
              restricted(kNillable, kMaxLen8));
    EXPECT_EQ(globalElementOf(texts().qualifier("ValueMap", {"on", "off"}).qualifier("Required")),
              restricted(kNillable, kOnOff));
}

TEST(PropertyElement, ValueMapReplacesMaxLen) {
    EXPECT_EQ(globalElementOf(text().qualifier("MaxLen", "8").qualifier("ValueMap", {"on", "off"})),
              restricted(kNillable, kOnOff));
}

TEST(PropertyElement, AValueMapThatAddsNothingReplacesMaxLenToo) {
    EXPECT_EQ(globalElementOf(text().qualifier("MaxLen", "8").qualifier("ValueMap", "on")),
              restricted(kNillable, ""));
}

TEST(PropertyElement, APropagatedMaxLenCounts) {
    EXPECT_EQ(globalElementOf(text().propagatedQualifier("MaxLen", "8")),
              restricted(kNillable, kMaxLen8));
}

TEST(PropertyElement, APropagatedValueMapDoesNotCount) {
    EXPECT_EQ(globalElementOf(text().propagatedQualifier("ValueMap", {"on", "off"})),
              kNillableText);
    EXPECT_EQ(globalElementOf(
                  text().qualifier("MaxLen", "8").propagatedQualifier("ValueMap", {"on", "off"})),
              restricted(kNillable, kMaxLen8));
}

TEST(PropertyElement, AnEmptyMapRestrictsToTheBase) {
    EXPECT_EQ(globalElementOf(text().qualifier("ValueMap", {})),
              restricted(kNillable, element(R"(restriction base="cim:cimString")")));
}

TEST(PropertyElement, AScalarMapLeavesTheContentEmpty) {
    EXPECT_EQ(globalElementOf(text().qualifier("ValueMap", "on")), restricted(kNillable, ""));
}

TEST(PropertyElement, AFalseMaxLenIsAMaxLen) {
    EXPECT_EQ(globalElementOf(text().qualifier("MaxLen", false)),
              restricted(kNillable, element(R"(restriction base="cim:cimString")",
                                            facets("maxLength", {"false"}) + kAnyAttribute)));
}

TEST(PropertyElement, MaxLenWithoutAValueThrows) {
    Element parent = SchemaPrinting::makeElement("parent", "xs");
    EXPECT_THROW(WsdlUtil::addPropertyElement(parent, text().qualifierWithoutValue("MaxLen")),
                 TSKNullPointerException);
    EXPECT_EQ(SchemaPrinting::printed(parent), restricted(kNotNillable, ""));
}

TEST(PropertyElement, ValueMapWithoutAValueThrows) {
    Element parent = SchemaPrinting::makeElement("parent", "xs");
    EXPECT_THROW(WsdlUtil::addPropertyElement(parent, text().qualifierWithoutValue("ValueMap")),
                 TSKNullPointerException);
    EXPECT_EQ(SchemaPrinting::printed(parent), restricted(kNotNillable, ""));
}

TEST(PropertyElement, MaxLenMayLackAValueBesideAValueMap) {
    EXPECT_EQ(globalElementOf(
                  text().qualifierWithoutValue("MaxLen").qualifier("ValueMap", {"on", "off"})),
              restricted(kNillable, kOnOff));
}

// --- Prefixes

TEST(PropertyElement, ElementsTakeTheParentsPrefix) {
    EXPECT_EQ(globalElementOf(text().qualifier("MaxLen", "8"), "xsd"), R"(
<xsd:parent>
  <xsd:element name="P" nillable="true">
    <xsd:complexType>
      <xsd:simpleContent>
        <xsd:restriction base="cim:cimString">
          <xsd:maxLength value="8"/>
          <xsd:anyAttribute namespace="##any" processContents="lax"/>
        </xsd:restriction>
      </xsd:simpleContent>
    </xsd:complexType>
  </xsd:element>
</xsd:parent>
)");
}

TEST(PropertyElement, ElementsBelowAParentWithoutPrefixHaveNone) {
    EXPECT_EQ(globalElementOf(text(), nullptr), R"(
<parent>
  <element name="P" type="cim:cimString" nillable="true"/>
</parent>
)");
    EXPECT_EQ(globalElementOf(text().qualifier("ValueMap", {"on"}), nullptr), R"(
<parent>
  <element name="P" nillable="true">
    <complexType>
      <simpleContent>
        <restriction base="cim:cimString">
          <enumeration value="on"/>
          <anyAttribute namespace="##any" processContents="lax"/>
        </restriction>
      </simpleContent>
    </complexType>
  </element>
</parent>
)");
}

// --- The type alone

TEST(PropertyElement, TheTypeIsAnAttributeBeforeNillable) {
    const auto typeOf = [](const urma::IPropertyDef& property) {
        return contentOf(
            [&](Element& parent) { WsdlUtil::addPropertyTypeElement(parent, property); });
    };
    EXPECT_EQ(typeOf(text()), "\n<xs:parent type=\"cim:cimString\" nillable=\"true\"/>\n");
    EXPECT_EQ(typeOf(text().qualifier("Key")), "\n<xs:parent type=\"cim:cimString\"/>\n");
}

TEST(PropertyElement, ARestrictedTypeIsNestedInTheGivenElement) {
    const ModelProperty property = text().qualifier("MaxLen", "8");
    const std::string typed =
        contentOf([&](Element& parent) { WsdlUtil::addPropertyTypeElement(parent, property); });
    EXPECT_EQ(typed, R"(
<xs:parent nillable="true">
  <xs:complexType>
    <xs:simpleContent>
      <xs:restriction base="cim:cimString">
        <xs:maxLength value="8"/>
        <xs:anyAttribute namespace="##any" processContents="lax"/>
      </xs:restriction>
    </xs:simpleContent>
  </xs:complexType>
</xs:parent>
)");
}

// --- Occurrence bounds

TEST(PropertyElement, RestrictionsDoNotChangeTheOccurrence) {
    EXPECT_EQ(occurrenceOf(text().qualifier("MaxLen", "8")), kAtMostOnce);
    EXPECT_EQ(occurrenceOf(text().qualifier("ValueMap", {"on", "off"})), kAtMostOnce);
    EXPECT_EQ(occurrenceOf(text().qualifier("ValueMap", {"on", "off"}).qualifier("Key")), kOnce);
}

// --- Failures

TEST(PropertyElement, AFailedPropertyLeavesItsElementWithoutAName) {
    const ModelProperty property = text();
    const std::vector<std::string> left =
        leftByFailures([&](Element& parent) { WsdlUtil::addPropertyElement(parent, property); });
    EXPECT_EQ(left.at(0), parentOf(element("element")));
    EXPECT_EQ(left.at(1), parentOf(element(R"(element name="P")")));
}

TEST(PropertyElement, EveryFailureOfTheHostPasses) {
    const ModelProperty property =
        text().qualifier("Key").qualifier("MaxLen", "8").qualifier("ValueMap", {"1", ".."});
    const auto build = [&] {
        (void)globalElementOf(property);
        (void)occurrenceOf(property);
    };
    const std::size_t calls = HostCalls::count(build);
    EXPECT_EQ(HostCalls::failEach(build, [](const std::string&) {}), calls);
}

TEST(PropertyElement, LeaksNothingWhenAnAllocationFails) {
    const ModelProperty property = text().qualifier("Required").qualifier("MaxLen", "8");
    const auto build = [&] {
        Element parent = SchemaPrinting::makeElement("parent", "xs");
        WsdlUtil::addPropertyElement(parent, property);
        WsdlUtil::addElementAttributeMinMaxOccurs(parent, property);
    };
    EXPECT_GE(AllocationProbe::failEachAllocation(build, [] {}), 2U);
}

}  // namespace

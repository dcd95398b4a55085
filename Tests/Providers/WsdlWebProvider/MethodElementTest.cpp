#include <algorithm>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "Platform/Util/TSKNullPointerException.h"
#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Providers/WsdlWebProvider/SchemaPrinting.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/ClassModel.h"
#include "Tests/Support/HostCalls.h"
#include "Tests/Support/Threads.h"

namespace {

using Element = TSKSmrPtr<SOAPElement>;
using namespace SchemaPrinting;

std::string bodiesOf(const urma::IMethodDef& method, const char* prefix = "xs") {
    return contentOf([&](Element& parent) { WsdlUtil::addMethodElement(parent, method); }, prefix);
}

std::string methodsOf(const TSKSmrPtr<ITeskClass>& cimClass) {
    return contentOf([&](Element& parent) { WsdlUtil::addMethodsElement(parent, cimClass); });
}

std::string elementOf(const urma::IParameterDef& parameter, const char* prefix = "xs") {
    return contentOf(
        [&](Element& sequence) { WsdlUtil::addMethodParamterElement(sequence, parameter); },
        prefix);
}

// A parameter P of the type string.
ModelParameter text() {
    return ModelParameter("P", "string");
}

ModelParameter texts() {
    return ModelParameter("P", "string[]");
}

// What is expected.

std::string plain(const std::string& name, const std::string& type) {
    return element("element name=\"" + name + "\" type=\"" + type + "\" nillable=\"true\"");
}

// The two elements of a method, without the parent.
std::string bodies(const std::string& name, const std::string& inputs, const std::string& outputs) {
    const auto body = [&](const std::string& suffix, const std::string& content) {
        return element("element name=\"" + name + suffix + "\"",
                       element("complexType", element("sequence", content)));
    };
    return body("_INPUT", inputs) + body("_OUTPUT", outputs);
}

const std::string kReturnValue = plain("ReturnValue", "cim:cimUnsignedInt");

// --- Methods

TEST(MethodElement, AMethodHasAnInputAndAnOutputElement) {
    const ModelMethod method =
        ModelMethod("M", "uint32")
            .parameter(ModelParameter("A", "string").qualifier("In"))
            .parameter(ModelParameter("B", "uint16").qualifier("In").qualifier("Out"))
            .parameter(ModelParameter("D", "datetime").qualifier("Out"));
    EXPECT_EQ(bodiesOf(method), R"(
<xs:parent>
  <xs:element name="M_INPUT">
    <xs:complexType>
      <xs:sequence>
        <xs:element name="A" type="cim:cimString" nillable="true"/>
        <xs:element name="B" type="cim:cimUnsignedShort" nillable="true"/>
      </xs:sequence>
    </xs:complexType>
  </xs:element>
  <xs:element name="M_OUTPUT">
    <xs:complexType>
      <xs:sequence>
        <xs:element name="B" type="cim:cimUnsignedShort" nillable="true"/>
        <xs:element name="D" type="cim:cimDateTime" nillable="true"/>
        <xs:element name="ReturnValue" type="cim:cimUnsignedInt" nillable="true"/>
      </xs:sequence>
    </xs:complexType>
  </xs:element>
</xs:parent>
)");
}

TEST(MethodElement, AMethodWithoutParametersHasAnEmptyInputAndReturnsItsValue) {
    EXPECT_EQ(bodiesOf(ModelMethod("Stop", "uint32")), R"(
<xs:parent>
  <xs:element name="Stop_INPUT">
    <xs:complexType>
      <xs:sequence/>
    </xs:complexType>
  </xs:element>
  <xs:element name="Stop_OUTPUT">
    <xs:complexType>
      <xs:sequence>
        <xs:element name="ReturnValue" type="cim:cimUnsignedInt" nillable="true"/>
      </xs:sequence>
    </xs:complexType>
  </xs:element>
</xs:parent>
)");
}

TEST(MethodElement, ElementsTakeTheParentsPrefix) {
    const ModelMethod method =
        ModelMethod("M", "uint32").parameter(text().qualifier("In").qualifier("MaxLen", "8"));
    EXPECT_EQ(bodiesOf(method, "xsd"), R"(
<xsd:parent>
  <xsd:element name="M_INPUT">
    <xsd:complexType>
      <xsd:sequence>
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
      </xsd:sequence>
    </xsd:complexType>
  </xsd:element>
  <xsd:element name="M_OUTPUT">
    <xsd:complexType>
      <xsd:sequence>
        <xsd:element name="ReturnValue" type="cim:cimUnsignedInt" nillable="true"/>
      </xsd:sequence>
    </xsd:complexType>
  </xsd:element>
</xsd:parent>
)");
}

TEST(MethodElement, ElementsBelowAParentWithoutPrefixHaveNone) {
    const ModelMethod method = ModelMethod("M", "uint32").parameter(text().qualifier("In"));
    EXPECT_EQ(bodiesOf(method, nullptr), R"(
<parent>
  <element name="M_INPUT">
    <complexType>
      <sequence>
        <element name="P" type="cim:cimString" nillable="true"/>
      </sequence>
    </complexType>
  </element>
  <element name="M_OUTPUT">
    <complexType>
      <sequence>
        <element name="ReturnValue" type="cim:cimUnsignedInt" nillable="true"/>
      </sequence>
    </complexType>
  </element>
</parent>
)");
}

TEST(MethodElement, TheReturnValueHasTheWrapperTypeOfTheReturnType) {
    const auto returning = [](const char* type) {
        return parentOf(bodies("M", "", plain("ReturnValue", type)));
    };
    EXPECT_EQ(bodiesOf(ModelMethod("M", "string")), returning("cim:cimString"));
    EXPECT_EQ(bodiesOf(ModelMethod("M", "boolean")), returning("cim:cimBoolean"));
    EXPECT_EQ(bodiesOf(ModelMethod("M", "uint16[]")), returning("cim:cimUnsignedShort"));
    EXPECT_EQ(bodiesOf(ModelMethod("M", "CIM_Foo ref")), returning("cim:cimReference"));
    EXPECT_EQ(bodiesOf(ModelMethod("M", "object")), returning("NA"));
    EXPECT_EQ(bodiesOf(ModelMethod("M", "void")), returning("NA"));
}

TEST(MethodElement, QualifiersOfTheMethodDoNotRestrictTheReturnValue) {
    EXPECT_EQ(bodiesOf(ModelMethod("M", "uint32")
                           .qualifier("Required")
                           .qualifier("Key")
                           .qualifier("MaxLen", "8")
                           .qualifier("ValueMap", {"0", "1"})),
              parentOf(bodies("M", "", kReturnValue)));
}

// --- Directions

TEST(MethodElement, AParameterWithoutDirectionIsLeftOut) {
    EXPECT_EQ(bodiesOf(ModelMethod("M", "uint32").parameter(text())),
              parentOf(bodies("M", "", kReturnValue)));
}

TEST(MethodElement, AFalseDirectionCountsAsAbsent) {
    const std::string p = plain("P", "cim:cimString");
    EXPECT_EQ(bodiesOf(ModelMethod("M", "uint32").parameter(text().qualifier("In", false))),
              parentOf(bodies("M", "", kReturnValue)));
    EXPECT_EQ(bodiesOf(ModelMethod("M", "uint32").parameter(text().qualifier("Out", false))),
              parentOf(bodies("M", "", kReturnValue)));
    EXPECT_EQ(
        bodiesOf(
            ModelMethod("M", "uint32").parameter(text().qualifier("In", false).qualifier("Out"))),
        parentOf(bodies("M", "", p + kReturnValue)));
    EXPECT_EQ(
        bodiesOf(
            ModelMethod("M", "uint32").parameter(text().qualifier("In").qualifier("Out", false))),
        parentOf(bodies("M", p, kReturnValue)));
}

TEST(MethodElement, ADirectionWithoutAValueCountsAsFalse) {
    EXPECT_EQ(
        bodiesOf(ModelMethod("M", "uint32")
                     .parameter(text().qualifierWithoutValue("In").qualifierWithoutValue("Out"))),
        parentOf(bodies("M", "", kReturnValue)));
}

TEST(MethodElement, APropagatedDirectionCounts) {
    const std::string p = plain("P", "cim:cimString");
    EXPECT_EQ(bodiesOf(ModelMethod("M", "uint32").parameter(text().propagatedQualifier("In"))),
              parentOf(bodies("M", p, kReturnValue)));
    EXPECT_EQ(bodiesOf(ModelMethod("M", "uint32").parameter(text().propagatedQualifier("Out"))),
              parentOf(bodies("M", "", p + kReturnValue)));
}

TEST(MethodElement, ParametersKeepTheirOrderInBothElements) {
    const ModelMethod method =
        ModelMethod("M", "uint32")
            .parameter(ModelParameter("Z", "uint8").qualifier("In").qualifier("Out"))
            .parameter(ModelParameter("Nowhere", "uint8"))
            .parameter(ModelParameter("Y", "uint8").qualifier("Out"))
            .parameter(ModelParameter("X", "uint8").qualifier("In"))
            .parameter(ModelParameter("A", "uint8").qualifier("Out").qualifier("In"));
    const char* const type = "cim:cimUnsignedByte";
    EXPECT_EQ(
        bodiesOf(method),
        parentOf(bodies("M", plain("Z", type) + plain("X", type) + plain("A", type),
                        plain("Z", type) + plain("Y", type) + plain("A", type) + kReturnValue)));
}

TEST(MethodElement, AParameterNamedReturnValueStandsBeforeTheReturnValue) {
    EXPECT_EQ(bodiesOf(ModelMethod("M", "uint32")
                           .parameter(ModelParameter("ReturnValue", "string").qualifier("Out"))),
              parentOf(bodies("M", "", plain("ReturnValue", "cim:cimString") + kReturnValue)));
}

TEST(MethodElement, ARestrictedParameterIsRestrictedInBothElements) {
    const std::string p = element("element name=\"P\" nillable=\"true\"",
                                  element("complexType", element("simpleContent", kMaxLen8)));
    EXPECT_EQ(
        bodiesOf(ModelMethod("M", "uint32")
                     .parameter(text().qualifier("In").qualifier("Out").qualifier("MaxLen", "8"))),
        parentOf(bodies("M", p, p + kReturnValue)));
}

// --- Parameters

TEST(MethodElement, AParameterIsNillable) {
    EXPECT_EQ(elementOf(text()), kNillableText);
}

TEST(MethodElement, TheTypeIsTheWrapperTypeOfTheParametersType) {
    EXPECT_EQ(elementOf(ModelParameter("P", "real64")), parentOf(plain("P", "cim:cimDouble")));
    EXPECT_EQ(elementOf(ModelParameter("P", "CIM_Foo ref")),
              parentOf(plain("P", "cim:cimReference")));
    EXPECT_EQ(elementOf(ModelParameter("P", "object")), parentOf(plain("P", "NA")));
}

TEST(MethodElement, AnArrayParameterHasNoOccurrenceBounds) {
    EXPECT_EQ(elementOf(texts()), kNillableText);
    EXPECT_EQ(elementOf(ModelParameter("P", "CIM_Foo ref[]")),
              parentOf(plain("P", "cim:cimReference")));
}

TEST(MethodElement, KeyAndRequiredTogetherMakeAScalarNotNillableByTheirPresence) {
    struct Case {
        const char* what;
        ModelParameter parameter;
        const char* expected;
    };
    const Case cases[] = {
        {"Key", text().qualifier("Key"), kNillableText},
        {"Required", text().qualifier("Required"), kNillableText},
        {"both", text().qualifier("Key").qualifier("Required"), kText},
        {"both false", text().qualifier("Key", false).qualifier("Required", false), kText},
        {"Key and a false Required", text().qualifier("Key").qualifier("Required", false), kText},
        {"both without a value",
         text().qualifierWithoutValue("Key").qualifierWithoutValue("Required"), kText},
        {"a propagated Key", text().propagatedQualifier("Key").qualifier("Required"),
         kNillableText},
        {"a propagated Required", text().qualifier("Key").propagatedQualifier("Required"),
         kNillableText},
        {"both propagated", text().propagatedQualifier("Key").propagatedQualifier("Required"),
         kNillableText},
        {"both, of an array", texts().qualifier("Key").qualifier("Required"), kNillableText},
    };
    for (const Case& one : cases)
        EXPECT_EQ(elementOf(one.parameter), one.expected) << one.what;
}

TEST(MethodElement, OtherQualifiersChangeNothing) {
    EXPECT_EQ(elementOf(text()
                            .qualifier("In")
                            .qualifier("Out")
                            .qualifier("Description", "What it is for.")
                            .qualifier("Values", {"On", "Off"})
                            .qualifier("MinLen", "1")),
              kNillableText);
}

// --- Restricted parameters

TEST(MethodElement, MaxLenAndValueMapMakeTwoRestrictionsInOneContent) {
    EXPECT_EQ(elementOf(text().qualifier("ValueMap", {"on", "off"}).qualifier("MaxLen", "8")), R"(
<xs:parent>
  <xs:element name="P" nillable="true">
    <xs:complexType>
      <xs:simpleContent>
        <xs:restriction base="cim:cimString">
          <xs:maxLength value="8"/>
          <xs:anyAttribute namespace="##any" processContents="lax"/>
        </xs:restriction>
        <xs:restriction base="cim:cimString">
          <xs:enumeration value="on"/>
          <xs:enumeration value="off"/>
          <xs:anyAttribute namespace="##any" processContents="lax"/>
        </xs:restriction>
      </xs:simpleContent>
    </xs:complexType>
  </xs:element>
</xs:parent>
)");
}

TEST(MethodElement, MaxLenNestsARestrictedType) {
    EXPECT_EQ(elementOf(text().qualifier("MaxLen", "8")), restricted(kNillable, kMaxLen8));
    EXPECT_EQ(elementOf(texts().qualifier("MaxLen", "8")), restricted(kNillable, kMaxLen8));
}

TEST(MethodElement, ValueMapNestsARestrictedType) {
    EXPECT_EQ(elementOf(text().qualifier("ValueMap", {"on", "off"})),
              restricted(kNillable, kOnOff));
}

TEST(MethodElement, AValueMapWithRangesNestsAUnion) {
    const auto member = [](const std::string& content) {
        return element("simpleType", element(R"(restriction base="xs:unsignedByte")", content));
    };
    const std::string members =
        member(facets("enumeration", {"0"})) + member(facets("minInclusive", {"1"}));
    EXPECT_EQ(elementOf(ModelParameter("P", "uint8").qualifier("ValueMap", {"0", ".."})),
              restricted(kNillable, element(R"(restriction base="cim:cimAnySimpleType")",
                                            element("simpleType", element("union", members)) +
                                                kAnyAttribute)));
}

TEST(MethodElement, KeyAndRequiredTogetherMakeARestrictedScalarNotNillable) {
    EXPECT_EQ(elementOf(text().qualifier("MaxLen", "8").qualifier("Key").qualifier("Required")),
              restricted(kNotNillable, kMaxLen8));
    EXPECT_EQ(elementOf(texts().qualifier("MaxLen", "8").qualifier("Key").qualifier("Required")),
              restricted(kNillable, kMaxLen8));
    EXPECT_EQ(elementOf(text().qualifier("MaxLen", "8").qualifier("Key")),
              restricted(kNillable, kMaxLen8));
}

TEST(MethodElement, APropagatedMaxLenCounts) {
    EXPECT_EQ(elementOf(text().propagatedQualifier("MaxLen", "8")),
              restricted(kNillable, kMaxLen8));
    EXPECT_EQ(
        elementOf(text().propagatedQualifier("MaxLen", "8").qualifier("ValueMap", {"on", "off"})),
        restricted(kNillable, kMaxLen8 + kOnOff));
}

TEST(MethodElement, APropagatedValueMapDoesNotCount) {
    EXPECT_EQ(elementOf(text().propagatedQualifier("ValueMap", {"on", "off"})), kNillableText);
    EXPECT_EQ(
        elementOf(text().qualifier("MaxLen", "8").propagatedQualifier("ValueMap", {"on", "off"})),
        restricted(kNillable, kMaxLen8));
}

TEST(MethodElement, AScalarMapAddsNoRestriction) {
    EXPECT_EQ(elementOf(text().qualifier("ValueMap", "on")), restricted(kNillable, ""));
    EXPECT_EQ(elementOf(text().qualifier("MaxLen", "8").qualifier("ValueMap", "on")),
              restricted(kNillable, kMaxLen8));
}

TEST(MethodElement, MaxLenOrValueMapWithoutAValueThrows) {
    EXPECT_THROW((void)elementOf(text().qualifierWithoutValue("MaxLen")), TSKNullPointerException);
    EXPECT_THROW((void)elementOf(text().qualifierWithoutValue("ValueMap")),
                 TSKNullPointerException);
    EXPECT_THROW((void)elementOf(
                     text().qualifierWithoutValue("MaxLen").qualifier("ValueMap", {"on", "off"})),
                 TSKNullPointerException);
}

TEST(MethodElement, AMapWithoutAValueLeavesTheRestrictionOfMaxLen) {
    Element sequence = SchemaPrinting::makeElement("parent", "xs");
    EXPECT_THROW(WsdlUtil::addMethodParamterElement(
                     sequence, text().qualifier("MaxLen", "8").qualifierWithoutValue("ValueMap")),
                 TSKNullPointerException);
    EXPECT_EQ(SchemaPrinting::printed(sequence), restricted(kNotNillable, kMaxLen8));
}

TEST(MethodElement, ElementsOfParametersTakeTheSequencesPrefixOrNone) {
    EXPECT_EQ(elementOf(text(), nullptr), R"(
<parent>
  <element name="P" type="cim:cimString" nillable="true"/>
</parent>
)");
    EXPECT_EQ(elementOf(text(), "xsd"), R"(
<xsd:parent>
  <xsd:element name="P" type="cim:cimString" nillable="true"/>
</xsd:parent>
)");
}

TEST(MethodElement, TheTypeOfAParameterGoesIntoTheGivenElement) {
    const auto typeOf = [](const urma::IParameterDef& parameter) {
        return contentOf(
            [&](Element& parent) { WsdlUtil::addMethodParamterTypeElement(parent, parameter); });
    };
    EXPECT_EQ(typeOf(text()), "\n<xs:parent type=\"cim:cimString\" nillable=\"true\"/>\n");
    EXPECT_EQ(typeOf(text().qualifier("Key").qualifier("Required")),
              "\n<xs:parent type=\"cim:cimString\"/>\n");
    EXPECT_EQ(typeOf(text().qualifier("MaxLen", "8")), R"(
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

// --- The methods of a class

TEST(MethodElement, MethodsFollowEachOtherInTheClasssOrder) {
    const auto cimClass = ModelClass("CIM_Foo")
                              .method(ModelMethod("Stop", "uint32"))
                              .method(ModelMethod("Go", "uint32").parameter(text().qualifier("In")))
                              .method(ModelMethod("Abort", "uint32"))
                              .share();
    EXPECT_EQ(methodsOf(cimClass),
              parentOf(bodies("Stop", "", kReturnValue) +
                       bodies("Go", plain("P", "cim:cimString"), kReturnValue) +
                       bodies("Abort", "", kReturnValue)));
}

TEST(MethodElement, InheritedMethodsAppearInTheirPlace) {
    const auto cimClass = ModelClass("CIM_Foo")
                              .method(ModelMethod("Stop", "uint32"))
                              .inheritedMethod(ModelMethod("Go", "uint32"))
                              .method(ModelMethod("Abort", "uint32"))
                              .share();
    EXPECT_EQ(methodsOf(cimClass),
              parentOf(bodies("Stop", "", kReturnValue) + bodies("Go", "", kReturnValue) +
                       bodies("Abort", "", kReturnValue)));
}

TEST(MethodElement, MethodsOfTheSameNameAreNotMerged) {
    const auto cimClass = ModelClass("CIM_Foo")
                              .method(ModelMethod("Stop", "uint32"))
                              .method(ModelMethod("Stop", "uint32"))
                              .share();
    const std::string stop = bodies("Stop", "", kReturnValue);
    EXPECT_EQ(methodsOf(cimClass), parentOf(stop + stop));
}

TEST(MethodElement, AClassWithoutMethodsAddsNothing) {
    const auto cimClass =
        ModelClass("CIM_Foo").property(ModelProperty("Name", "string").qualifier("Key")).share();
    EXPECT_EQ(methodsOf(cimClass), "\n<xs:parent/>\n");
}

TEST(MethodElement, ANullClassAddsNothing) {
    EXPECT_EQ(methodsOf(nullptr), "\n<xs:parent/>\n");
}

TEST(MethodElement, MethodsFollowWhatTheParentHolds) {
    const auto cimClass = ModelClass("CIM_Foo").method(ModelMethod("Stop", "uint32")).share();
    const std::string content = contentOf([&](Element& parent) {
        WsdlUtil::addElement(parent, "CIM_Foo", "class:CIM_Foo_Type");
        WsdlUtil::addMethodsElement(parent, cimClass);
    });
    EXPECT_EQ(content, parentOf(element(R"(element name="CIM_Foo" type="class:CIM_Foo_Type")") +
                                bodies("Stop", "", kReturnValue)));
}

// --- Failures and threads

TSKSmrPtr<ITeskClass> classWithRestrictedParameters() {
    return ModelClass("CIM_Foo")
        .method(ModelMethod("Stop", "uint32"))
        .method(ModelMethod("Go", "uint32")
                    .parameter(text()
                                   .qualifier("In")
                                   .qualifier("MaxLen", "8")
                                   .qualifier("ValueMap", {"on", "off"}))
                    .parameter(ModelParameter("Speed", "uint8")
                                   .qualifier("In")
                                   .qualifier("Out")
                                   .qualifier("ValueMap", {"1", "5..7", ".."})))
        .share();
}

TEST(MethodElement, AFailedMethodLeavesElementsBeforeTheirAttributes) {
    const ModelMethod method =
        ModelMethod("M", "uint32").parameter(ModelParameter("P", "string").qualifier("In"));
    const std::vector<std::string> left =
        leftByFailures([&](Element& parent) { WsdlUtil::addMethodElement(parent, method); });
    const auto has = [&](const std::string& inputs, const std::string& outputs) {
        const std::string expected = parentOf(bodies("M", inputs, outputs));
        return std::find(left.begin(), left.end(), expected) != left.end();
    };
    EXPECT_EQ(left.at(0), "\n<xs:parent/>\n");
    EXPECT_TRUE(has("", ""));
    EXPECT_TRUE(has(element("element"), ""));
    EXPECT_TRUE(has(plain("P", "cim:cimString"), element(R"(element name="ReturnValue")")));
}

TEST(MethodElement, EveryFailureOfTheHostPasses) {
    const auto cimClass = classWithRestrictedParameters();
    const auto build = [&] { (void)methodsOf(cimClass); };
    const std::size_t calls = HostCalls::count(build);
    EXPECT_EQ(HostCalls::failEach(build, [](const std::string&) {}), calls);
}

TEST(MethodElement, LeaksNothingWhenAnAllocationFails) {
    const auto cimClass = classWithRestrictedParameters();
    const auto build = [&] {
        Element parent = SchemaPrinting::makeElement("parent", "xs");
        WsdlUtil::addMethodsElement(parent, cimClass);
    };
    EXPECT_GE(AllocationProbe::failEachAllocation(build, [] {}), 10U);
}

TEST(MethodElement, AClassMayBeDescribedByManyThreadsAtOnce) {
    const auto cimClass = classWithRestrictedParameters();
    const std::string expected = methodsOf(cimClass);
    runOnThreads(8, [&](int) { EXPECT_EQ(methodsOf(cimClass), expected); });
}

}  // namespace

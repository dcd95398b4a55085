#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "ObjectManager/Comparison/Contract.h"
#include "Platform/Util/TeskBaseException.h"

namespace {

using Comparison::Contract;
using Comparison::Element;
using Comparison::readContract;

// A document of a class CIM_Foo with what stands in its schema and what stands behind its types.
std::string wsdlWith(const std::string& schema, const std::string& rest = "") {
    return R"(<wsdl:definitions targetNamespace="urn:foo"
  xmlns:wsdl="http://schemas.xmlsoap.org/wsdl/" xmlns:soap="http://schemas.xmlsoap.org/wsdl/soap12/"
  xmlns:class="urn:foo" xmlns:xs="http://www.w3.org/2001/XMLSchema" xmlns:cim="urn:cim">
  <wsdl:types><xs:schema>)" +
           schema + "</xs:schema></wsdl:types>" + rest + R"(
  <wsdl:service name="CIM_Foo_Service">
    <wsdl:port name="P"><soap:address location="http://host:5985/wsman"/></wsdl:port>
  </wsdl:service></wsdl:definitions>)";
}

// The schema of a class with one property "P", whose element is given.
std::string schemaOf(const std::string& element, const std::string& use = "") {
    return element +
           R"(<xs:complexType name="CIM_Foo_Type"><xs:sequence><xs:element ref="class:P" )" + use +
           R"(/><xs:any/></xs:sequence></xs:complexType>)";
}

Element propertyOf(const std::string& element, const std::string& use = "") {
    const Contract contract = readContract(wsdlWith(schemaOf(element, use)));
    EXPECT_EQ(contract.properties.size(), 1U);
    return contract.properties.at(0);
}

std::string restricted(const std::string& base, const std::string& facets) {
    return R"(<xs:element name="P"><xs:complexType><xs:simpleContent><xs:restriction base=")" +
           base + R"(">)" + facets +
           "<xs:anyAttribute/></xs:restriction></xs:simpleContent></xs:complexType></xs:element>";
}

std::string faultOf(const std::string& text) {
    try {
        (void)readContract(text);
    } catch (const TeskBaseException& error) {
        return error.getMessage().data();
    }
    return "none";
}

constexpr const char* kString = R"(<xs:element name="P" type="cim:cimString" nillable="true"/>)";

TEST(Contract, NamesNamespaceAndAddress) {
    const Contract contract = readContract(wsdlWith(schemaOf(kString)));
    EXPECT_EQ(contract.targetNamespace, "urn:foo");
    EXPECT_EQ(contract.address, "http://host:5985/wsman");
}

TEST(Contract, TypesOfBothNamespacesHaveOneName) {
    EXPECT_EQ(propertyOf(kString).type, "string");
    EXPECT_EQ(propertyOf(R"(<xs:element name="P" type="cim:cimUnsignedShort"/>)").type,
              "unsignedShort");
    EXPECT_EQ(propertyOf(restricted("cim:cimUnsignedShort", "")).type, "unsignedShort");
    EXPECT_EQ(propertyOf(R"(<xs:element name="P" type="NA"/>)").type, "NA");
}

TEST(Contract, ATypeWithoutANameIsItsDefinition) {
    EXPECT_EQ(propertyOf(R"(<xs:element name="P"><xs:complexType><xs:sequence><xs:any/>)"
                         "</xs:sequence></xs:complexType></xs:element>")
                  .type,
              "<xs:complexType><xs:sequence><xs:any/></xs:sequence></xs:complexType>");
}

TEST(Contract, TellsWhatMayBeAbsentNilOrManyTimes) {
    const Element optional = propertyOf(kString, R"(minOccurs="0" maxOccurs="unbounded")");
    EXPECT_TRUE(optional.mayBeNil);
    EXPECT_TRUE(optional.mayBeAbsent);
    EXPECT_TRUE(optional.isArray);
    const Element key = propertyOf(R"(<xs:element name="P" type="cim:cimString"/>)");
    EXPECT_FALSE(key.mayBeNil);
    EXPECT_FALSE(key.mayBeAbsent);
    EXPECT_FALSE(key.isArray);
}

TEST(Contract, ReadsTheMaximumLength) {
    const Element element =
        propertyOf(restricted("cim:cimString", R"(<xs:maxLength value="64"/>)"));
    EXPECT_EQ(element.maxLength, 64U);
    EXPECT_TRUE(element.values.holdsAll());
    EXPECT_EQ(propertyOf(kString).maxLength, std::nullopt);
}

TEST(Contract, ReadsListedValues) {
    const Element element = propertyOf(restricted(
        "cim:cimUnsignedByte", R"(<xs:enumeration value="1"/><xs:enumeration value="3"/>)"));
    Comparison::ValueSet expected("unsignedByte");
    expected.addValue("1");
    expected.addValue("3");
    EXPECT_TRUE(element.values.includes(expected));
    EXPECT_TRUE(expected.includes(element.values));
}

TEST(Contract, ReadsRangesInUnions) {
    const auto member = [](const std::string& facets) {
        return R"(<xs:simpleType><xs:restriction base="xs:unsignedShort">)" + facets +
               "</xs:restriction></xs:simpleType>";
    };
    const Element element = propertyOf(
        restricted("cim:cimAnySimpleType",
                   "<xs:simpleType><xs:union>" + member(R"(<xs:enumeration value="2"/>)") +
                       "<xs:simpleType><xs:union>" + member(R"(<xs:enumeration value="0"/>)") +
                       member(R"(<xs:minInclusive value="12"/>)") +
                       "</xs:union></xs:simpleType></xs:union></xs:simpleType>"));
    EXPECT_EQ(element.type, "unsignedShort");
    Comparison::ValueSet expected("unsignedShort");
    expected.addValue("0");
    expected.addValue("2");
    expected.addRange("12", "65535");
    EXPECT_TRUE(element.values.includes(expected));
    EXPECT_TRUE(expected.includes(element.values));
}

TEST(Contract, AnUnrestrictedMemberOfAUnionAllowsAll) {
    const Element element = propertyOf(restricted(
        "cim:cimAnySimpleType",
        R"(<xs:simpleType><xs:union><xs:simpleType><xs:restriction base="xs:string">)"
        R"(<xs:enumeration value="a"/></xs:restriction></xs:simpleType><xs:simpleType>)"
        R"(<xs:restriction base="xs:string"/></xs:simpleType></xs:union></xs:simpleType>)"));
    EXPECT_EQ(element.type, "string");
    EXPECT_TRUE(element.values.holdsAll());
}

TEST(Contract, ReadsTheParametersOfMethods) {
    const std::string schema =
        schemaOf(kString) +
        R"(<xs:element name="Start_INPUT"><xs:complexType><xs:sequence>)"
        R"(<xs:element name="Mode" type="cim:cimUnsignedByte" nillable="true"/>)"
        "</xs:sequence></xs:complexType></xs:element>"
        R"(<xs:element name="Start_OUTPUT"><xs:complexType><xs:sequence>)"
        R"(<xs:element name="ReturnValue" type="cim:cimUnsignedInt"/>)"
        "</xs:sequence></xs:complexType></xs:element>"
        R"(<xs:element name="Get_OUTPUT" type="class:CIM_Foo_Type"/>)";
    const Contract contract = readContract(wsdlWith(schema, R"(
  <wsdl:message name="StartIn"><wsdl:part name="body" element="class:Start_INPUT"/></wsdl:message>
  <wsdl:message name="StartOut"><wsdl:part name="body" element="class:Start_OUTPUT"/></wsdl:message>
  <wsdl:message name="GetIn"/>
  <wsdl:message name="GetOut"><wsdl:part name="body" element="class:Get_OUTPUT"/></wsdl:message>
  <wsdl:portType name="T">
    <wsdl:operation name="Start">
      <wsdl:input message="class:StartIn"/><wsdl:output message="class:StartOut"/>
    </wsdl:operation>
    <wsdl:operation name="Get">
      <wsdl:input message="class:GetIn"/><wsdl:output message="class:GetOut"/>
    </wsdl:operation>
  </wsdl:portType>)"));
    ASSERT_EQ(contract.operations.size(), 2U);
    const Comparison::Operation& start = contract.operations[0];
    EXPECT_EQ(start.name, "Start");
    ASSERT_EQ(start.input.elements.size(), 1U);
    EXPECT_EQ(start.input.elements[0].name, "Mode");
    EXPECT_EQ(start.input.elements[0].type, "unsignedByte");
    ASSERT_EQ(start.output.elements.size(), 1U);
    EXPECT_EQ(start.output.elements[0].name, "ReturnValue");
    const Comparison::Operation& get = contract.operations[1];
    EXPECT_EQ(get.input.body, "");
    EXPECT_EQ(get.output.body, "class:Get_OUTPUT");
    EXPECT_EQ(get.output.elements.size(), 0U);
}

TEST(Contract, RefusesWhatIsNoDocumentOfAClass) {
    const std::string begin = "it is no WSDL document of a class: ";
    EXPECT_EQ(faultOf("<a>"), begin + "line 1, column 4: Premature end of data in tag a line 1");
    EXPECT_EQ(faultOf("<a/>"), begin + R"(its outermost element is not "definitions")");
    EXPECT_EQ(faultOf("<definitions/>"), begin + "it holds no schema");
    EXPECT_EQ(faultOf("<definitions><types><schema/></types></definitions>"),
              begin + "it has no service");
    EXPECT_EQ(faultOf("<definitions><types><schema/></types><service/></definitions>"),
              begin + "its service does not name the class");
    EXPECT_EQ(faultOf(wsdlWith("")), begin + "its schema does not define the type of the class");
    EXPECT_EQ(faultOf(wsdlWith(schemaOf(""))), begin + "its schema does not define class:P");
}

TEST(Contract, NeverFailsOtherwiseWhereADocumentIsCutShort) {
    const std::string whole = wsdlWith(schemaOf(restricted("cim:cimString", "<xs:maxLength/>")));
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_NE(faultOf(whole.substr(0, size)), "none") << size;
    EXPECT_EQ(faultOf(whole), "none");
}

}  // namespace

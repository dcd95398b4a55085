#include <algorithm>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Providers/WsdlWebProvider/SchemaPrinting.h"
#include "Tests/Support/ClassModel.h"
#include "Tests/Support/HostCalls.h"

namespace {

using SchemaPrinting::makeElement;
using SchemaPrinting::printed;

using Element = TSKSmrPtr<SOAPElement>;

const TSKSmrPtr<ITeskClass> kNoClass;

Element schemaRoot() {
    return makeElement("schema", "xs");
}

std::string structureOf(const ModelClass& cimClass) {
    Element root = schemaRoot();
    WsdlUtil::addClassStructureElement(root, cimClass.share());
    return printed(root);
}

std::string definitionOf(const ModelClass& cimClass, bool declareNamespaces = false) {
    Element root = schemaRoot();
    WsdlUtil::addClassDefElement(root, cimClass.share(), declareNamespaces);
    return printed(root);
}

TEST(ClassStructure, ANullClassAddsNothing) {
    Element root = schemaRoot();
    WsdlUtil::addClassStructureElement(root, kNoClass);
    EXPECT_EQ(printed(root), "\n<xs:schema/>\n");
    Element before = makeElement("before", nullptr);
    root->addChildElement(before);
    WsdlUtil::addClassStructureElement(root, kNoClass);
    EXPECT_EQ(printed(root), "\n<xs:schema>\n  <before/>\n</xs:schema>\n");
}

TEST(ClassStructure, AClassWithoutPropertiesHasAnEmptySequenceAndStillAnyAttribute) {
    EXPECT_EQ(structureOf(ModelClass("TST_Empty")), R"(
<xs:schema>
  <xs:complexType name="TST_Empty_Type">
    <xs:sequence/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="TST_Empty" type="class:TST_Empty_Type"/>
</xs:schema>
)");
}

TEST(ClassStructure, TheWildcardFollowsTheLastReference) {
    EXPECT_EQ(structureOf(ModelClass("TST_Class").property(ModelProperty("Name", "string"))),
              R"(
<xs:schema>
  <xs:complexType name="TST_Class_Type">
    <xs:sequence>
      <xs:element ref="class:Name" minOccurs="0"/>
      <xs:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
    </xs:sequence>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="TST_Class" type="class:TST_Class_Type"/>
</xs:schema>
)");
}

TEST(ClassStructure, RefersToEveryPropertyInItsOrderWithItsBounds) {
    EXPECT_EQ(structureOf(
                  ModelClass("TST_Class")
                      .property(ModelProperty("Zone", "uint8").qualifier("Key"))
                      .property(ModelProperty("Name", "string").qualifier("Required"))
                      .property(ModelProperty("Age", "uint8").qualifier("Key", false))
                      .property(ModelProperty("Tags", "string[]").qualifier("Required"))
                      .property(ModelProperty("State", "uint16").qualifier("ValueMap", {"0", "1"}))
                      .property(ModelProperty("Owner", "TST_Person ref"))),
              R"(
<xs:schema>
  <xs:complexType name="TST_Class_Type">
    <xs:sequence>
      <xs:element ref="class:Zone"/>
      <xs:element ref="class:Name"/>
      <xs:element ref="class:Age" minOccurs="0"/>
      <xs:element ref="class:Tags" minOccurs="0" maxOccurs="unbounded"/>
      <xs:element ref="class:State" minOccurs="0"/>
      <xs:element ref="class:Owner" minOccurs="0"/>
      <xs:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
    </xs:sequence>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="TST_Class" type="class:TST_Class_Type"/>
</xs:schema>
)");
}

TEST(ClassStructure, IncludesInheritedProperties) {
    EXPECT_EQ(structureOf(ModelClass("TST_Class")
                              .inheritedProperty(ModelProperty("Name", "string").qualifier("Key"))),
              R"(
<xs:schema>
  <xs:complexType name="TST_Class_Type">
    <xs:sequence>
      <xs:element ref="class:Name"/>
      <xs:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
    </xs:sequence>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="TST_Class" type="class:TST_Class_Type"/>
</xs:schema>
)");
}

TEST(ClassStructure, MethodsAndQualifiersOfTheClassMakeNoDifference) {
    EXPECT_EQ(structureOf(ModelClass("TST_Empty")
                              .qualifier("Description", "What it is for.")
                              .qualifier("Abstract")
                              .method(ModelMethod("Stop", "uint32"))),
              structureOf(ModelClass("TST_Empty")));
}

TEST(ClassStructure, TakesThePrefixOfTheRootAndNotThatOfItsReferences) {
    Element root = makeElement("schema", "s");
    WsdlUtil::addClassStructureElement(
        root, ModelClass("TST_Class").property(ModelProperty("Name", "string")).share());
    EXPECT_EQ(printed(root), R"(
<s:schema>
  <s:complexType name="TST_Class_Type">
    <s:sequence>
      <s:element ref="class:Name" minOccurs="0"/>
      <s:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
    </s:sequence>
    <s:anyAttribute namespace="##any" processContents="lax"/>
  </s:complexType>
  <s:element name="TST_Class" type="class:TST_Class_Type"/>
</s:schema>
)");
}

TEST(ClassStructure, ARootWithoutPrefixHasChildrenWithoutPrefix) {
    Element root = makeElement("schema", nullptr);
    WsdlUtil::addClassStructureElement(root, ModelClass("TST_Empty").share());
    EXPECT_EQ(printed(root), R"(
<schema>
  <complexType name="TST_Empty_Type">
    <sequence/>
    <anyAttribute namespace="##any" processContents="lax"/>
  </complexType>
  <element name="TST_Empty" type="class:TST_Empty_Type"/>
</schema>
)");
}

TEST(ClassStructure, IsAppendedBehindWhatTheRootHolds) {
    Element root = schemaRoot();
    Element before = makeElement("before", nullptr);
    root->addChildElement(before);
    WsdlUtil::addClassStructureElement(root, ModelClass("TST_A").share());
    WsdlUtil::addClassStructureElement(root, ModelClass("TST_B").share());
    EXPECT_EQ(printed(root), R"(
<xs:schema>
  <before/>
  <xs:complexType name="TST_A_Type">
    <xs:sequence/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="TST_A" type="class:TST_A_Type"/>
  <xs:complexType name="TST_B_Type">
    <xs:sequence/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="TST_B" type="class:TST_B_Type"/>
</xs:schema>
)");
}

// A value in an attribute is the printer's to escape, once.
TEST(ClassStructure, NamesAreEscapedOnce) {
    EXPECT_EQ(structureOf(ModelClass("A&B").property(ModelProperty("<%s>", "string"))), R"(
<xs:schema>
  <xs:complexType name="A&amp;B_Type">
    <xs:sequence>
      <xs:element ref="class:&lt;%s&gt;" minOccurs="0"/>
      <xs:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
    </xs:sequence>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="A&amp;B" type="class:A&amp;B_Type"/>
</xs:schema>
)");
}

TEST(ClassStructure, AnEmptyNameLeavesTheEndingAlone) {
    EXPECT_EQ(structureOf(ModelClass("")), R"(
<xs:schema>
  <xs:complexType name="_Type">
    <xs:sequence/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="" type="class:_Type"/>
</xs:schema>
)");
}

TEST(ClassDefinition, ANullClassAddsNothing) {
    for (const bool declareNamespaces : {false, true}) {
        Element root = schemaRoot();
        WsdlUtil::addClassDefElement(root, kNoClass, declareNamespaces);
        EXPECT_EQ(printed(root), "\n<xs:schema/>\n");
    }
}

TEST(ClassDefinition, DeclaresNoNamespacesUnlessItIsToldTo) {
    EXPECT_EQ(definitionOf(ModelClass("TST_Empty"), false), R"(
<xs:schema targetNamespace="http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/TST_Empty">
  <xs:complexType name="TST_Empty_Type">
    <xs:sequence/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="TST_Empty" type="class:TST_Empty_Type"/>
</xs:schema>
)");
}

TEST(ClassDefinition, DeclaresThreeNamespacesBehindTheTargetNamespace) {
    EXPECT_EQ(definitionOf(ModelClass("TST_Empty"), true),
              "\n<xs:schema"
              " targetNamespace=\"http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/TST_Empty\""
              " xmlns:xs=\"http://www.w3.org/2001/XMLSchema\""
              " xmlns:class=\"http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/TST_Empty\""
              " xmlns:cim=\"http://schemas.dmtf.org/wbem/wscim/1/common\">" +
                  std::string(R"(
  <xs:complexType name="TST_Empty_Type">
    <xs:sequence/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="TST_Empty" type="class:TST_Empty_Type"/>
</xs:schema>
)"));
}

TEST(ClassDefinition, TheNamesOfTheNamespacesDoNotFollowThePrefixOfTheRoot) {
    Element root = makeElement("schema", nullptr);
    WsdlUtil::addClassDefElement(root, ModelClass("A").share(), true);
    EXPECT_EQ(printed(root),
              "\n<schema"
              " targetNamespace=\"http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/A\""
              " xmlns:xs=\"http://www.w3.org/2001/XMLSchema\""
              " xmlns:class=\"http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/A\""
              " xmlns:cim=\"http://schemas.dmtf.org/wbem/wscim/1/common\">" +
                  std::string(R"(
  <complexType name="A_Type">
    <sequence/>
    <anyAttribute namespace="##any" processContents="lax"/>
  </complexType>
  <element name="A" type="class:A_Type"/>
</schema>
)"));
}

const ModelClass& fullClass() {
    static const ModelClass cimClass =
        ModelClass("TST_Class")
            .qualifier("Description", "What it is for.")
            .inheritedProperty(ModelProperty("Name", "string").qualifier("Key"))
            .property(ModelProperty("Label", "string").qualifier("MaxLen", "64"))
            .property(ModelProperty("Sizes", "uint64[]"))
            .inheritedMethod(ModelMethod("Stop", "uint32")
                                 .parameter(ModelParameter("Force", "boolean").qualifier("In")))
            .method(ModelMethod("Boot", "sint8"));
    return cimClass;
}

TEST(ClassDefinition, HoldsPropertiesTypeElementAndMethodsInThisOrder) {
    EXPECT_EQ(definitionOf(fullClass()), R"(
<xs:schema targetNamespace="http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/TST_Class">
  <xs:element name="Name" type="cim:cimString"/>
  <xs:element name="Label" nillable="true">
    <xs:complexType>
      <xs:simpleContent>
        <xs:restriction base="cim:cimString">
          <xs:maxLength value="64"/>
          <xs:anyAttribute namespace="##any" processContents="lax"/>
        </xs:restriction>
      </xs:simpleContent>
    </xs:complexType>
  </xs:element>
  <xs:element name="Sizes" type="cim:cimUnsignedLong" nillable="true"/>
  <xs:complexType name="TST_Class_Type">
    <xs:sequence>
      <xs:element ref="class:Name"/>
      <xs:element ref="class:Label" minOccurs="0"/>
      <xs:element ref="class:Sizes" minOccurs="0" maxOccurs="unbounded"/>
      <xs:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
    </xs:sequence>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="TST_Class" type="class:TST_Class_Type"/>
  <xs:element name="Stop_INPUT">
    <xs:complexType>
      <xs:sequence>
        <xs:element name="Force" type="cim:cimBoolean" nillable="true"/>
      </xs:sequence>
    </xs:complexType>
  </xs:element>
  <xs:element name="Stop_OUTPUT">
    <xs:complexType>
      <xs:sequence>
        <xs:element name="ReturnValue" type="cim:cimUnsignedInt" nillable="true"/>
      </xs:sequence>
    </xs:complexType>
  </xs:element>
  <xs:element name="Boot_INPUT">
    <xs:complexType>
      <xs:sequence/>
    </xs:complexType>
  </xs:element>
  <xs:element name="Boot_OUTPUT">
    <xs:complexType>
      <xs:sequence>
        <xs:element name="ReturnValue" type="cim:cimByte" nillable="true"/>
      </xs:sequence>
    </xs:complexType>
  </xs:element>
</xs:schema>
)");
}

TEST(ClassDefinition, DeclaringNamespacesChangesTheStartTagAlone) {
    const std::string without = definitionOf(fullClass(), false);
    const std::string declaring = definitionOf(fullClass(), true);
    EXPECT_NE(declaring, without);
    EXPECT_EQ(declaring.substr(declaring.find(">\n")), without.substr(without.find(">\n")));
}

TEST(ClassDefinition, IsAppendedBehindWhatTheRootHolds) {
    Element root = schemaRoot();
    root->addAttribute(TSKSmrPtr<SOAPQName>::make("id"), "first");
    Element before = makeElement("before", nullptr);
    root->addChildElement(before);
    WsdlUtil::addClassDefElement(root, ModelClass("A").share(), false);
    EXPECT_EQ(printed(root), R"(
<xs:schema id="first" targetNamespace="http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/A">
  <before/>
  <xs:complexType name="A_Type">
    <xs:sequence/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="A" type="class:A_Type"/>
</xs:schema>
)");
}

TEST(ClassDefinition, MakesTheSameTreeEveryTime) {
    EXPECT_EQ(definitionOf(fullClass(), true), definitionOf(fullClass(), true));
}

TEST(ClassDefinition, KeepsNothingOfTheClass) {
    const TSKSmrPtr<ITeskClass> cimClass = fullClass().share();
    Element root = schemaRoot();
    WsdlUtil::addClassDefElement(root, cimClass, false);
    EXPECT_EQ(cimClass.owners(), 1);
}

TEST(ClassStructure, AFailedPropertyLeavesItsReferenceWithoutAName) {
    const auto cimClass = ModelClass("A").property(ModelProperty("P", "string")).share();
    const std::vector<std::string> left = SchemaPrinting::leftByFailures(
        [&](Element& parent) { WsdlUtil::addClassStructureElement(parent, cimClass); });
    EXPECT_EQ(left.at(0), "\n<xs:parent/>\n");
    EXPECT_NE(std::find(left.begin(), left.end(), R"(
<xs:parent>
  <xs:complexType name="A_Type">
    <xs:sequence>
      <xs:element/>
    </xs:sequence>
  </xs:complexType>
</xs:parent>
)"),
              left.end());
}

TEST(ClassDefinition, EveryFailureOfTheHostPasses) {
    const TSKSmrPtr<ITeskClass> cimClass = fullClass().share();
    Element root = schemaRoot();
    const std::size_t calls =
        HostCalls::count([&] { WsdlUtil::addClassDefElement(root, cimClass, true); });
    const std::size_t failures = HostCalls::failEach(
        [&] {
            root = schemaRoot();
            WsdlUtil::addClassDefElement(root, cimClass, true);
        },
        [&](const std::string& operation) {
            EXPECT_EQ(cimClass.owners(), 1) << operation;
            EXPECT_TRUE(printed(root).starts_with("\n<xs:schema")) << operation;
        });
    EXPECT_GT(calls, 0U);
    EXPECT_EQ(failures, calls);
    EXPECT_EQ(printed(root), definitionOf(fullClass(), true));
}

}  // namespace

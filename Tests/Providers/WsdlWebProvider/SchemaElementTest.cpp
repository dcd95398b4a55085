#include <gtest/gtest.h>

#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Providers/WsdlWebProvider/SchemaPrinting.h"
#include "Tests/Support/AllocationProbe.h"

namespace {

using Element = TSKSmrPtr<SOAPElement>;
using SchemaPrinting::contentOf;

// One child of each kind.
const auto addEveryChild = [](Element& parent) {
    WsdlUtil::addElement(parent, "Name", "cim:cimString");
    WsdlUtil::addAnyAttributeChildElement(parent);
    WsdlUtil::addOpenContentChildElement(parent);
    WsdlUtil::addImportEelement(parent, "urn:names", "names.xsd");
};

TEST(SchemaElement, ChildrenTakeTheirParentsPrefix) {
    EXPECT_EQ(contentOf(addEveryChild), R"(
<xs:parent>
  <xs:element name="Name" type="cim:cimString"/>
  <xs:anyAttribute namespace="##any" processContents="lax"/>
  <xs:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
  <xs:import namespace="urn:names" schemaLocation="names.xsd"/>
</xs:parent>
)");
}

TEST(SchemaElement, ChildrenOfAParentWithoutPrefixHaveNone) {
    EXPECT_EQ(contentOf(addEveryChild, nullptr), R"(
<parent>
  <element name="Name" type="cim:cimString"/>
  <anyAttribute namespace="##any" processContents="lax"/>
  <any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
  <import namespace="urn:names" schemaLocation="names.xsd"/>
</parent>
)");
}

TEST(SchemaElement, ChildrenTakeAnyOtherPrefixToo) {
    EXPECT_EQ(contentOf(addEveryChild, "xsd"), R"(
<xsd:parent>
  <xsd:element name="Name" type="cim:cimString"/>
  <xsd:anyAttribute namespace="##any" processContents="lax"/>
  <xsd:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
  <xsd:import namespace="urn:names" schemaLocation="names.xsd"/>
</xsd:parent>
)");
}

TEST(SchemaElement, ASequenceGetsElementsAndOpenContent) {
    Element sequence = SchemaPrinting::makeElement("sequence", "xs");
    WsdlUtil::addElement(sequence, "Name", "xs:string");
    WsdlUtil::addOpenContentChildElement(sequence);
    EXPECT_EQ(SchemaPrinting::printed(sequence), R"(
<xs:sequence>
  <xs:element name="Name" type="xs:string"/>
  <xs:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
</xs:sequence>
)");
}

TEST(SchemaElement, AnAttributeHasNoPrefix) {
    const auto add = [](Element& parent) { WsdlUtil::addElementAttribute(parent, "name", "Foo"); };
    EXPECT_EQ(contentOf(add), "\n<xs:parent name=\"Foo\"/>\n");
    EXPECT_EQ(contentOf(add, nullptr), "\n<parent name=\"Foo\"/>\n");
    EXPECT_EQ(contentOf(add, "xsd"), "\n<xsd:parent name=\"Foo\"/>\n");
}

TEST(SchemaElement, AttributesKeepTheOrderInWhichTheyAreAdded) {
    const auto add = [](Element& parent) {
        for (const char* const name : {"type", "name", "base"})
            WsdlUtil::addElementAttribute(parent, name, "x");
    };
    EXPECT_EQ(contentOf(add), "\n<xs:parent type=\"x\" name=\"x\" base=\"x\"/>\n");
}

TEST(SchemaElement, AttributesOfTheSameNameAreNotMerged) {
    const auto add = [](Element& parent) {
        WsdlUtil::addElementAttribute(parent, "name", "first");
        WsdlUtil::addElementAttribute(parent, "name", "second");
    };
    EXPECT_EQ(contentOf(add), "\n<xs:parent name=\"first\" name=\"second\"/>\n");
}

TEST(SchemaElement, AnEmptyAttributeIsWritten) {
    const auto add = [](Element& parent) { WsdlUtil::addElementAttribute(parent, "name", ""); };
    EXPECT_EQ(contentOf(add), "\n<xs:parent name=\"\"/>\n");
}

TEST(SchemaElement, ChildrenOfTheSameNameAreNotMerged) {
    const auto add = [](Element& parent) {
        WsdlUtil::addElement(parent, "Name", "xs:string");
        WsdlUtil::addElement(parent, "Name", "xs:int");
        WsdlUtil::addElement(parent, "Name", "xs:string");
    };
    EXPECT_EQ(contentOf(add), R"(
<xs:parent>
  <xs:element name="Name" type="xs:string"/>
  <xs:element name="Name" type="xs:int"/>
  <xs:element name="Name" type="xs:string"/>
</xs:parent>
)");
}

TEST(SchemaElement, WildcardsAreRepeatedAsOftenAsTheyAreAdded) {
    const auto add = [](Element& parent) {
        WsdlUtil::addAnyAttributeChildElement(parent);
        WsdlUtil::addAnyAttributeChildElement(parent);
        WsdlUtil::addOpenContentChildElement(parent);
        WsdlUtil::addOpenContentChildElement(parent);
    };
    EXPECT_EQ(contentOf(add), R"(
<xs:parent>
  <xs:anyAttribute namespace="##any" processContents="lax"/>
  <xs:anyAttribute namespace="##any" processContents="lax"/>
  <xs:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
  <xs:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
</xs:parent>
)");
}

TEST(SchemaElement, AnElementWithEmptyNameAndTypeKeepsItsAttributes) {
    const auto add = [](Element& parent) { WsdlUtil::addElement(parent, "", ""); };
    EXPECT_EQ(contentOf(add), R"(
<xs:parent>
  <xs:element name="" type=""/>
</xs:parent>
)");
}

TEST(SchemaElement, AnImportWithoutLocationKeepsAnEmptyOne) {
    const auto add = [](Element& parent) { WsdlUtil::addImportEelement(parent, "urn:names", ""); };
    EXPECT_EQ(contentOf(add), R"(
<xs:parent>
  <xs:import namespace="urn:names" schemaLocation=""/>
</xs:parent>
)");
}

TEST(SchemaElement, AnImportWithoutNamespaceKeepsAnEmptyOne) {
    const auto add = [](Element& parent) { WsdlUtil::addImportEelement(parent, "", "names.xsd"); };
    EXPECT_EQ(contentOf(add), R"(
<xs:parent>
  <xs:import namespace="" schemaLocation="names.xsd"/>
</xs:parent>
)");
}

TEST(SchemaElement, MarkupInValuesIsEscapedOnce) {
    const auto add = [](Element& parent) {
        WsdlUtil::addElementAttribute(parent, "value", "<a b=\"c\">&amp;");
        WsdlUtil::addElement(parent, "<", ">");
        WsdlUtil::addImportEelement(parent, "urn:a&b", "\"a\".xsd");
    };
    EXPECT_EQ(contentOf(add), R"(
<xs:parent value="&lt;a b=&quot;c&quot;&gt;&amp;amp;">
  <xs:element name="&lt;" type="&gt;"/>
  <xs:import namespace="urn:a&amp;b" schemaLocation="&quot;a&quot;.xsd"/>
</xs:parent>
)");
}

TEST(SchemaElement, ChildrenOutliveTheTextsTheyWereMadeFrom) {
    const auto add = [](Element& parent) {
        TSKString name("a name that is too long to be kept without a buffer");
        TSKString type("xs:string");
        WsdlUtil::addElement(parent, name, type);
        name += " and changes";
        type = "changed";
    };
    EXPECT_EQ(contentOf(add), R"(
<xs:parent>
  <xs:element name="a name that is too long to be kept without a buffer" type="xs:string"/>
</xs:parent>
)");
}

TEST(SchemaElement, LeaksNothingWhenAnAllocationFails) {
    const auto build = [] {
        Element parent = SchemaPrinting::makeElement("parent", "xs");
        addEveryChild(parent);
    };
    EXPECT_GE(AllocationProbe::failEachAllocation(build, [] {}), 4U);
}

}  // namespace

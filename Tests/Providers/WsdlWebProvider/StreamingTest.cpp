#include <cstddef>
#include <gtest/gtest.h>
#include <initializer_list>
#include <iterator>
#include <sstream>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Util/TSKNullPointerException.h"
#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Providers/WsdlWebProvider/ExpectedText.h"
#include "Tests/Support/ClassModel.h"
#include "Tests/Support/HostCalls.h"

namespace {

using ExpectedText::block;
using ExpectedText::count;

using Class = TSKSmrPtr<ITeskClass>;
using List = TSKSmrPtr<WsdlUtil::ClassList>;

const Class kNoClass;
const List kNoList;

const char* const kUrl = "http://host:5985/";
const char* const kNamespace = "root/tst";

Class oneClass() {
    return ModelClass("TST_One")
        .qualifier("Description", "The first.")
        .property(ModelProperty("Id", "uint32").qualifier("Key"))
        .method(ModelMethod("Stop", "uint32").qualifier("Description", "Stops it."))
        .share();
}

Class twoClass() {
    return ModelClass("TST_Two").share();
}

Class threeClass() {
    return ModelClass("TST_Three")
        .qualifier("Description", "The third.")
        .inheritedProperty(ModelProperty("Label", "string"))
        .inheritedMethod(ModelMethod("Print", "boolean"))
        .share();
}

List listOf(std::initializer_list<Class> classes) {
    return List::make(classes);
}

// `lines` with the name wherever {class} stands.
std::string withClass(std::string_view className, std::string lines) {
    return ExpectedText::with("{class}", className, std::move(lines));
}

std::string importOf(const std::string& nameSpace, const std::string& location) {
    return "  <xs:import namespace=\"" + nameSpace + "\" schemaLocation=\"" + location + "\"/>\n";
}

const std::string kCommonImport = importOf("http://schemas.dmtf.org/wbem/wscim/1/common",
                                           "http://schemas.dmtf.org/wbem/wscim/1/common.xsd");

const std::string kFiveImports =
    kCommonImport +
    importOf("http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd",
             "http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd") +
    importOf("http://schemas.xmlsoap.org/ws/2004/09/transfer",
             "http://schemas.xmlsoap.org/ws/2004/09/transfer/transfer.xsd") +
    importOf("http://schemas.xmlsoap.org/ws/2004/09/enumeration",
             "http://schemas.xmlsoap.org/ws/2004/09/enumeration/enumeration.xsd") +
    importOf("http://schemas.dmtf.org/wbem/wsman/1/cimbinding.xsd",
             "http://schemas.dmtf.org/wbem/wsman/1/cimbinding.xsd");

// What the schema of a class without properties and methods declares.
std::string emptyBody(std::string_view className) {
    return withClass(className, block(R"(
  <xs:complexType name="{class}_Type">
    <xs:sequence/>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="{class}" type="class:{class}_Type"/>
)"));
}

const std::string kOneBody = block(R"(
  <xs:element name="Id" type="cim:cimUnsignedInt"/>
  <xs:complexType name="TST_One_Type">
    <xs:sequence>
      <xs:element ref="class:Id"/>
      <xs:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
    </xs:sequence>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="TST_One" type="class:TST_One_Type"/>
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
)");

const std::string kThreeBody = block(R"(
  <xs:element name="Label" type="cim:cimString" nillable="true"/>
  <xs:complexType name="TST_Three_Type">
    <xs:sequence>
      <xs:element ref="class:Label" minOccurs="0"/>
      <xs:any namespace="##other" processContents="lax" minOccurs="0" maxOccurs="unbounded"/>
    </xs:sequence>
    <xs:anyAttribute namespace="##any" processContents="lax"/>
  </xs:complexType>
  <xs:element name="TST_Three" type="class:TST_Three_Type"/>
  <xs:element name="Print_INPUT">
    <xs:complexType>
      <xs:sequence/>
    </xs:complexType>
  </xs:element>
  <xs:element name="Print_OUTPUT">
    <xs:complexType>
      <xs:sequence>
        <xs:element name="ReturnValue" type="cim:cimBoolean" nillable="true"/>
      </xs:sequence>
    </xs:complexType>
  </xs:element>
)");

// The elements that carry a whole instance, in the order of the intrinsic operations.
std::string intrinsicElements(std::string_view className) {
    return withClass(className, block(R"(
  <xs:element name="Get_OUTPUT" type="class:{class}_Type"/>
  <xs:element name="Create_INPUT" type="class:{class}_Type"/>
  <xs:element name="Put_INPUT" type="class:{class}_Type"/>
)"));
}

std::string targetNamespaceOf(const std::string& className) {
    return "targetNamespace=\"http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/" + className +
           "\"";
}

// The schema that a WSDL document embeds.
std::string embeddedSchema(const std::string& className, const std::string& body) {
    return "<xs:schema " + targetNamespaceOf(className) + ">\n" + kFiveImports + body +
           intrinsicElements(className) + "</xs:schema>\n";
}

// The schema that is a document of its own.
std::string inlineSchema(const std::string& className, const std::string& body) {
    return "<xs:schema " + targetNamespaceOf(className) +
           " xmlns:xs=\"http://www.w3.org/2001/XMLSchema\""
           " xmlns:class=\"http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/" +
           className +
           "\""
           " xmlns:cim=\"http://schemas.dmtf.org/wbem/wscim/1/common\">\n" +
           kCommonImport + body + "</xs:schema>\n";
}

// The schema of nothing but imports.
std::string importingSchema(const std::string& imports) {
    return "<xs:schema>\n" + kCommonImport + imports + "</xs:schema>\n";
}

std::string schemaOf(const Class& cimClass) {
    std::stringstream stream;
    EXPECT_EQ(WsdlUtil::streamXsdDefinition(stream, cimClass), 1);
    return stream.str();
}

std::string schemasOf(const List& classes, const TSKString& baseAddress = kUrl) {
    std::stringstream stream;
    EXPECT_EQ(WsdlUtil::streamXsdDefinitions(stream, baseAddress, classes), 1);
    return stream.str();
}

std::string documentsOf(const List& classes) {
    std::stringstream stream;
    EXPECT_EQ(WsdlUtil::streamDefinitions(stream, kUrl, kNamespace, classes), 1);
    return stream.str();
}

std::string documentOf(const ModelClass& cimClass) {
    return documentsOf(listOf({cimClass.share()}));
}

// The document of a class around given schemas.
std::string documentAround(const Class& cimClass, const std::string& schemas,
                           const char* documentation) {
    WSDLFile wsdl(cimClass->getName(), kUrl, kNamespace, schemas.c_str());
    wsdl.setDocumentation(documentation);
    WsdlUtil::enumerateExtrinsicsMethods(cimClass->getMethods(true), wsdl);
    return std::string(std::string_view(wsdl.toString(false)));
}

// What the types of each document hold.
std::vector<std::string> typesSectionsOf(const std::string& documents) {
    const std::string start = "  <wsdl:types>\n";
    const std::string end = "\n  </wsdl:types>\n\n";
    std::vector<std::string> sections;
    for (std::size_t begin = documents.find(start); begin != std::string::npos;
         begin = documents.find(start, begin)) {
        begin += start.size();
        sections.push_back(documents.substr(begin, documents.find(end, begin) - begin));
    }
    return sections;
}

std::string documentationOf(const ModelClass& cimClass) {
    const std::string document = documentOf(cimClass);
    const std::string start = "<wsdl:documentation>";
    const std::size_t begin = document.rfind(start) + start.size();
    return document.substr(begin, document.find("</wsdl:documentation>", begin) - begin);
}

// Runs `write` with every call into the host failing in turn; nothing may reach its stream then.
template <typename Write>
void expectNothingWrittenOnFailure(const Write& write) {
    std::stringstream undisturbed;
    const std::size_t calls = HostCalls::count([&] { write(undisturbed); });
    std::stringstream stream;
    stream << "before";
    const std::size_t failures = HostCalls::failEach([&] { write(stream); },
                                                     [&](const std::string& operation) {
                                                         EXPECT_EQ(stream.str(), "before")
                                                             << operation;
                                                         EXPECT_TRUE(stream.good()) << operation;
                                                     });
    EXPECT_GT(calls, 0U);
    EXPECT_EQ(failures, calls);
    EXPECT_EQ(stream.str(), "before" + undisturbed.str());
}

// The schema of one class.

TEST(StreamXsdDefinition, WritesImportsDeclarationsAndIntrinsicElements) {
    std::stringstream stream;
    EXPECT_EQ(WsdlUtil::streamXsdDefinition(stream, oneClass()), 1);
    EXPECT_EQ(stream.str(), embeddedSchema("TST_One", kOneBody));
}

TEST(StreamXsdDefinition, IncludesWhatIsInherited) {
    EXPECT_EQ(schemaOf(threeClass()), embeddedSchema("TST_Three", kThreeBody));
}

TEST(StreamXsdDefinition, ANullClassWritesNothingAndReturnsZero) {
    std::stringstream stream;
    EXPECT_EQ(WsdlUtil::streamXsdDefinition(stream, kNoClass), 0);
    EXPECT_EQ(stream.str(), "");
    stream << "before";
    EXPECT_EQ(WsdlUtil::streamXsdDefinition(stream, kNoClass), 0);
    EXPECT_EQ(stream.str(), "before");
}

TEST(StreamXsdDefinition, AppendsToWhatTheStreamHolds) {
    std::stringstream stream;
    stream << "before";
    EXPECT_EQ(WsdlUtil::streamXsdDefinition(stream, oneClass()), 1);
    EXPECT_EQ(WsdlUtil::streamXsdDefinition(stream, twoClass()), 1);
    EXPECT_EQ(stream.str(), "before" + embeddedSchema("TST_One", kOneBody) +
                                embeddedSchema("TST_Two", emptyBody("TST_Two")));
}

TEST(StreamXsdDefinition, InsertsAVeryLongNameWhole) {
    const std::string name(100'000, 'x');
    EXPECT_EQ(schemaOf(ModelClass(name.c_str()).share()), embeddedSchema(name, emptyBody(name)));
}

TEST(StreamXsdDefinition, InsertsPercentSignsAsTheyAre) {
    const std::string name = "100%s%n%d";
    EXPECT_EQ(schemaOf(ModelClass(name.c_str()).share()), embeddedSchema(name, emptyBody(name)));
}

TEST(StreamXsdDefinition, WritesNothingWhenTheHostFails) {
    const Class cimClass = oneClass();
    expectNothingWrittenOnFailure(
        [&](std::stringstream& stream) { WsdlUtil::streamXsdDefinition(stream, cimClass); });
}

// The schema document of a list.

TEST(StreamXsdDefinitions, OneClassStandsInlineWithItsNamespaces) {
    EXPECT_EQ(schemasOf(listOf({oneClass()})), inlineSchema("TST_One", kOneBody));
}

TEST(StreamXsdDefinitions, OneClassIncludesWhatIsInherited) {
    EXPECT_EQ(schemasOf(listOf({threeClass()})), inlineSchema("TST_Three", kThreeBody));
}

TEST(StreamXsdDefinitions, TheBaseAddressMakesNoDifferenceToOneClass) {
    for (const char* const baseAddress : {"", "/", "http://other/"})
        EXPECT_EQ(schemasOf(listOf({twoClass()}), baseAddress),
                  inlineSchema("TST_Two", emptyBody("TST_Two")));
}

TEST(StreamXsdDefinitions, ANullListAndAnEmptyOneGiveTheCommonImportAlone) {
    const std::string expected =
        "<xs:schema>\n"
        "  <xs:import namespace=\"http://schemas.dmtf.org/wbem/wscim/1/common\""
        " schemaLocation=\"http://schemas.dmtf.org/wbem/wscim/1/common.xsd\"/>\n"
        "</xs:schema>\n";
    EXPECT_EQ(schemasOf(kNoList), expected);
    EXPECT_EQ(schemasOf(listOf({})), expected);
}

TEST(StreamXsdDefinitions, TwoClassesAreImported) {
    EXPECT_EQ(schemasOf(listOf({oneClass(), twoClass()}), "http://host:5985/"),
              importingSchema(importOf("http://host:5985", "http://host:5985/TST_One.xsd") +
                              importOf("http://host:5985", "http://host:5985/TST_Two.xsd")));
}

TEST(StreamXsdDefinitions, ThreeClassesAreImportedInTheOrderOfTheList) {
    EXPECT_EQ(schemasOf(listOf({twoClass(), threeClass(), oneClass()}), "http://host/"),
              importingSchema(importOf("http://host", "http://host/TST_Two.xsd") +
                              importOf("http://host", "http://host/TST_Three.xsd") +
                              importOf("http://host", "http://host/TST_One.xsd")));
}

TEST(StreamXsdDefinitions, AClassListedTwiceIsImportedTwice) {
    const Class cimClass = twoClass();
    const std::string import = importOf("http://host", "http://host/TST_Two.xsd");
    EXPECT_EQ(schemasOf(listOf({cimClass, cimClass}), "http://host/"),
              importingSchema(import + import));
}

TEST(StreamXsdDefinitions, NullClassesAmongSeveralAreSkipped) {
    EXPECT_EQ(
        schemasOf(listOf({kNoClass, oneClass(), kNoClass, twoClass(), kNoClass}), "http://host/"),
        importingSchema(importOf("http://host", "http://host/TST_One.xsd") +
                        importOf("http://host", "http://host/TST_Two.xsd")));
}

// It is the length of the list that decides, not the number of classes in it.
TEST(StreamXsdDefinitions, OneClassBesideANullOneIsImported) {
    EXPECT_EQ(schemasOf(listOf({kNoClass, oneClass()}), "http://host/"),
              importingSchema(importOf("http://host", "http://host/TST_One.xsd")));
    EXPECT_EQ(schemasOf(listOf({oneClass(), kNoClass}), "http://host/"),
              importingSchema(importOf("http://host", "http://host/TST_One.xsd")));
}

TEST(StreamXsdDefinitions, NullClassesAloneGiveTheCommonImportAlone) {
    EXPECT_EQ(schemasOf(listOf({kNoClass})), importingSchema(""));
    EXPECT_EQ(schemasOf(listOf({kNoClass, kNoClass})), importingSchema(""));
}

TEST(StreamXsdDefinitions, TheNamespaceIsTheBaseAddressWithoutItsLastCharacter) {
    struct Case {
        const char* baseAddress;
        const char* nameSpace;
    };
    for (const Case& one :
         {Case{"http://host", "http://hos"}, Case{"http://host//", "http://host/"}, Case{"/", ""},
          Case{"x", ""}, Case{"", ""}}) {
        const std::string nameSpace = one.nameSpace;
        EXPECT_EQ(schemasOf(listOf({oneClass(), twoClass()}), one.baseAddress),
                  importingSchema(importOf(nameSpace, nameSpace + "/TST_One.xsd") +
                                  importOf(nameSpace, nameSpace + "/TST_Two.xsd")))
            << one.baseAddress;
    }
}

TEST(StreamXsdDefinitions, TheBaseAddressIsEscapedOnce) {
    EXPECT_EQ(
        schemasOf(listOf({ModelClass("A&B").share(), twoClass()}), "http://\"%s\"/"),
        importingSchema(importOf("http://&quot;%s&quot;", "http://&quot;%s&quot;/A&amp;B.xsd") +
                        importOf("http://&quot;%s&quot;", "http://&quot;%s&quot;/TST_Two.xsd")));
}

TEST(StreamXsdDefinitions, VeryLongNamesAreImportedWhole) {
    const std::string name(100'000, 'x');
    EXPECT_EQ(schemasOf(listOf({ModelClass(name.c_str()).share(), twoClass()}), "http://host/"),
              importingSchema(importOf("http://host", "http://host/" + name + ".xsd") +
                              importOf("http://host", "http://host/TST_Two.xsd")));
}

TEST(StreamXsdDefinitions, AppendsToWhatTheStreamHolds) {
    std::stringstream stream;
    stream << "before";
    EXPECT_EQ(WsdlUtil::streamXsdDefinitions(stream, kUrl, listOf({oneClass()})), 1);
    EXPECT_EQ(WsdlUtil::streamXsdDefinitions(stream, kUrl, kNoList), 1);
    EXPECT_EQ(stream.str(), "before" + inlineSchema("TST_One", kOneBody) + importingSchema(""));
}

TEST(StreamXsdDefinitions, LeavesTheListAsItIs) {
    const Class cimClass = oneClass();
    const List classes = listOf({cimClass, twoClass()});
    const std::string schema = schemasOf(classes);
    EXPECT_EQ(classes->entries(), 2U);
    EXPECT_EQ(classes.owners(), 1);
    EXPECT_EQ(cimClass.owners(), 2);
    EXPECT_EQ(schemasOf(classes), schema);
}

TEST(StreamXsdDefinitions, WritesNothingWhenTheHostFails) {
    for (const List& classes : {listOf({oneClass()}), listOf({oneClass(), threeClass()})})
        expectNothingWrittenOnFailure([&](std::stringstream& stream) {
            WsdlUtil::streamXsdDefinitions(stream, kUrl, classes);
        });
}

// The WSDL documents of a list.

TEST(StreamDefinitions, NoClassWritesNothing) {
    EXPECT_EQ(documentsOf(listOf({})), "");
}

TEST(StreamDefinitions, OneClassIsOneDocumentWithoutWrapper) {
    const std::string documents = documentsOf(listOf({oneClass()}));
    EXPECT_EQ(documents,
              documentAround(oneClass(), embeddedSchema("TST_One", kOneBody), "The first."));
    EXPECT_TRUE(documents.starts_with("<wsdl:definitions\n  name=\"TST_One_WSDL\"\n")) << documents;
    EXPECT_TRUE(documents.ends_with("\n</wsdl:definitions>\n")) << documents;
    EXPECT_EQ(count(documents, "wsdl_definitions"), 0U);
}

TEST(StreamDefinitions, IncludesInheritedMethodsAndProperties) {
    const std::string documents = documentsOf(listOf({threeClass()}));
    EXPECT_EQ(documents,
              documentAround(threeClass(), embeddedSchema("TST_Three", kThreeBody), "The third."));
    EXPECT_EQ(count(documents, "    <wsdl:operation name=\"Print\">\n      <wsdl:input name="), 1U);
}

TEST(StreamDefinitions, TheAddressIsThatOfTheArgumentAndTheNamespaceIsNotWritten) {
    const List classes = listOf({oneClass()});
    std::stringstream stream;
    WsdlUtil::streamDefinitions(stream, "http://other", "root/other", classes);
    std::string expected = documentsOf(classes);
    const std::string address = "\"http://host:5985/wsman\"";
    expected.replace(expected.find(address), address.size(), "\"http://otherwsman\"");
    EXPECT_EQ(stream.str(), expected);
}

// From two classes on. What the documents in the wrapper hold is DocumentTest's.
TEST(StreamDefinitions, TwoClassesAreWrappedAlsoWhenTheyAreTheSame) {
    const Class cimClass = twoClass();
    for (const List& classes : {listOf({oneClass(), cimClass}), listOf({cimClass, cimClass})}) {
        const std::string documents = documentsOf(classes);
        EXPECT_TRUE(documents.starts_with("<wsdl_definitions>\n<wsdl:definitions\n")) << documents;
        EXPECT_TRUE(documents.ends_with("</wsdl:definitions>\n</wsdl_definitions>\n")) << documents;
        EXPECT_EQ(count(documents, "<wsdl:definitions\n"), 2U);
    }
}

TEST(StreamDefinitions, TheLastWrittenDescriptionWithAValueIsTheDocumentation) {
    struct Case {
        ModelClass cimClass;
        const char* documentation;
    };
    const Case cases[] = {
        {ModelClass("A").qualifier("dEsCrIpTiOn", "First."), "First."},
        {ModelClass("A").qualifier("Descriptions", "First."), ""},
        {ModelClass("A").qualifier("Description", "First.").qualifier("DESCRIPTION", "Second."),
         "Second."},
        {ModelClass("A").qualifier("Description", "First.").qualifier("description", ""), ""},
        {ModelClass("A").qualifier("description", "First.").qualifierWithoutValue("Description"),
         "First."},
        {ModelClass("A").propagatedQualifier("Description", "Inherited."), ""},
    };
    for (std::size_t number = 0; number < std::size(cases); ++number)
        EXPECT_EQ(documentationOf(cases[number].cimClass), cases[number].documentation)
            << "case " << number;
}

TEST(StreamDefinitions, ADescriptionIsInsertedAsItIs) {
    for (const std::string& description :
         {std::string("50% <a> & %s %n"), std::string("Two\nlines."), std::string(100'000, 'x')})
        EXPECT_EQ(documentationOf(ModelClass("A").qualifier("Description", description.c_str())),
                  description);
}

TEST(StreamDefinitions, ANullListThrowsAndWritesNothing) {
    std::stringstream stream;
    stream << "before";
    EXPECT_THROW(WsdlUtil::streamDefinitions(stream, kUrl, kNamespace, kNoList),
                 TSKNullPointerException);
    EXPECT_EQ(stream.str(), "before");
}

TEST(StreamDefinitions, ANullClassThrowsAndWritesNothing) {
    for (const List& classes :
         {listOf({kNoClass}), listOf({kNoClass, oneClass()}), listOf({oneClass(), kNoClass})}) {
        std::stringstream stream;
        stream << "before";
        EXPECT_THROW(WsdlUtil::streamDefinitions(stream, kUrl, kNamespace, classes),
                     TSKNullPointerException);
        EXPECT_EQ(stream.str(), "before");
    }
}

TEST(StreamDefinitions, AppendsToWhatTheStreamHolds) {
    std::stringstream stream;
    stream << "before";
    WsdlUtil::streamDefinitions(stream, kUrl, kNamespace, listOf({}));
    EXPECT_EQ(stream.str(), "before");
    WsdlUtil::streamDefinitions(stream, kUrl, kNamespace, listOf({oneClass()}));
    WsdlUtil::streamDefinitions(stream, kUrl, kNamespace, listOf({twoClass()}));
    EXPECT_EQ(stream.str(),
              "before" + documentsOf(listOf({oneClass()})) + documentsOf(listOf({twoClass()})));
}

TEST(StreamDefinitions, WhatTheStreamHoldsIsNoPartOfTheTypes) {
    std::stringstream stream;
    WsdlUtil::streamXsdDefinition(stream, oneClass());
    WsdlUtil::streamDefinitions(stream, kUrl, kNamespace, listOf({twoClass()}));
    EXPECT_EQ(typesSectionsOf(stream.str()), std::vector<std::string>{schemaOf(twoClass())});
}

TEST(StreamDefinitions, MakesTheSameDocumentsEveryTime) {
    const Class cimClass = oneClass();
    const List classes = listOf({cimClass, twoClass()});
    const std::string documents = documentsOf(classes);
    EXPECT_EQ(documentsOf(classes), documents);
    EXPECT_EQ(classes.owners(), 1);
    EXPECT_EQ(cimClass.owners(), 2);
}

TEST(StreamDefinitions, WritesNothingWhenTheHostFails) {
    for (const List& classes :
         {listOf({oneClass()}), listOf({oneClass(), twoClass(), threeClass()})})
        expectNothingWrittenOnFailure([&](std::stringstream& stream) {
            WsdlUtil::streamDefinitions(stream, kUrl, kNamespace, classes);
        });
}

// The results say what was done; how the stream fares is the stream's to tell.
TEST(Streaming, AFailedStreamChangesNoResult) {
    std::stringstream stream;
    stream.setstate(std::ios_base::badbit);
    EXPECT_EQ(WsdlUtil::streamXsdDefinition(stream, oneClass()), 1);
    EXPECT_EQ(WsdlUtil::streamXsdDefinitions(stream, kUrl, listOf({oneClass()})), 1);
    EXPECT_EQ(WsdlUtil::streamDefinitions(stream, kUrl, kNamespace, listOf({oneClass()})), 1);
}

}  // namespace

#include <gtest/gtest.h>
#include <libxml/parser.h>
#include <memory>
#include <string>

#include "ObjectManager/Pages/ExampleRequests.h"
#include "Tests/Support/MofModel.h"

namespace {

class ExampleRequestsTest : public testing::Test {
  protected:
    // The envelope of an operation or a method.
    [[nodiscard]] static std::string envelope(const std::string& mof, const char* name,
                                              const std::string& operation) {
        const MofModel model(mof);
        const Pages::ClassRelations relations(model.nameSpace());
        for (const Pages::ExampleRequest& each :
             Pages::exampleRequests(model.cimClass(name), relations, "http://host:1")) {
            if (each.operation == operation)
                return each.envelope;
        }
        return "no " + operation;
    }

    // Without the lines of the elements themselves.
    [[nodiscard]] static std::string inside(const std::string& envelope, const std::string& begin,
                                            const std::string& end) {
        const std::size_t from = envelope.find(begin);
        if (from == std::string::npos)
            return "no " + begin;
        return envelope.substr(from + begin.size(), envelope.find(end, from) - from - begin.size());
    }
    [[nodiscard]] static std::string selectorsOf(const std::string& envelope) {
        return inside(envelope, "    <wsman:SelectorSet>\n", "    </wsman:SelectorSet>\n  </s:H");
    }
    [[nodiscard]] static std::string bodyOf(const std::string& envelope) {
        return inside(envelope, "  <s:Body>\n", "  </s:Body>\n");
    }
};

TEST_F(ExampleRequestsTest, GetIsWholeAndNamesTheInstanceByItsKeys) {
    EXPECT_EQ(envelope(R"(class A { [Key] string CreationClassName; [Key] uint8 N; string S; };)",
                       "A", "Get"),
              R"(<?xml version="1.0" encoding="UTF-8"?>
<s:Envelope xmlns:s="http://www.w3.org/2003/05/soap-envelope"
    xmlns:wsa="http://schemas.xmlsoap.org/ws/2004/08/addressing"
    xmlns:wsman="http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd"
    xmlns:wsen="http://schemas.xmlsoap.org/ws/2004/09/enumeration"
    xmlns:cim="http://schemas.dmtf.org/wbem/wscim/1/common"
    xmlns:p="http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/A">
  <s:Header>
    <wsa:Action>http://schemas.xmlsoap.org/ws/2004/09/transfer/Get</wsa:Action>
    <wsa:To>http://host:1/wsman</wsa:To>
    <wsman:ResourceURI>http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/A</wsman:ResourceURI>
    <wsa:MessageID>uuid:3f1c8a52-7d64-4b0e-9a35-c2e0f6b81d47</wsa:MessageID>
    <wsa:ReplyTo>
      <wsa:Address>http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous</wsa:Address>
    </wsa:ReplyTo>
    <wsman:SelectorSet>
      <wsman:Selector Name="__cimnamespace">root/test</wsman:Selector>
      <wsman:Selector Name="CreationClassName">A</wsman:Selector>
      <wsman:Selector Name="N">1</wsman:Selector>
    </wsman:SelectorSet>
  </s:Header>
  <s:Body/>
</s:Envelope>
)");
}

TEST_F(ExampleRequestsTest, EnumerationsNameTheNamespaceAlone) {
    const std::string mof = "class A { [Key] string K; };";
    const std::string nameSpace =
        "      <wsman:Selector Name=\"__cimnamespace\">root/test</wsman:Selector>\n";
    EXPECT_EQ(selectorsOf(envelope(mof, "A", "Enumerate")), nameSpace);
    EXPECT_EQ(selectorsOf(envelope(mof, "A", "Pull")), nameSpace);
    EXPECT_EQ(bodyOf(envelope(mof, "A", "Enumerate")), "    <wsen:Enumerate/>\n");
    EXPECT_EQ(bodyOf(envelope(mof, "A", "Pull")),
              "    <wsen:Pull>\n"
              "      <wsen:EnumerationContext>CONTEXT</wsen:EnumerationContext>\n"
              "      <wsen:MaxElements>10</wsen:MaxElements>\n"
              "    </wsen:Pull>\n");
    EXPECT_EQ(selectorsOf(envelope("class A {};", "A", "Delete")), nameSpace);
}

TEST_F(ExampleRequestsTest, PutHasKeysWhatIsRequiredAndSomeOfWhatMayBeWritten) {
    EXPECT_EQ(bodyOf(envelope(R"(class A { [Key] string K; [Required] boolean R[]; string No;
                                  [Write] uint8 W1; [Write] uint8 W2; [Write] uint8 W3;
                                  [Write] uint8 W4; };)",
                              "A", "Put")),
              "    <p:Put_INPUT>\n"
              "      <p:K>K</p:K>\n"
              "      <p:R>true</p:R>\n"
              "      <p:W1>1</p:W1>\n"
              "      <p:W2>1</p:W2>\n"
              "      <p:W3>1</p:W3>\n"
              "    </p:Put_INPUT>\n");
}

TEST_F(ExampleRequestsTest, PutOfAClassWithoutPropertiesIsEmpty) {
    EXPECT_EQ(bodyOf(envelope("class A {};", "A", "Put")), "    <p:Put_INPUT/>\n");
}

TEST_F(ExampleRequestsTest, AMethodGetsItsInputs) {
    const std::string mof = R"(class A {
        uint32 M ([In] datetime When, [In (false), Out] string No, string NotWritten, [In] A REF Where);
        uint32 Plain (); };)";
    const std::string call = envelope(mof, "A", "M");
    EXPECT_NE(call.find("<wsa:Action>http://schemas.dmtf.org/wbem/ws-cim/1/cim-schema/2/A/M<"),
              std::string::npos);
    EXPECT_EQ(bodyOf(call), R"(    <p:M_INPUT>
      <When>
        <cim:Datetime>2026-01-31T12:00:00Z</cim:Datetime>
      </When>
      <Where>
        <wsa:EndpointReference>
          <wsa:Address>http://host:1/wsman</wsa:Address>
          <wsa:ReferenceParameters>
            <wsman:ResourceURI>http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/A</wsman:ResourceURI>
            <wsman:SelectorSet>
              <wsman:Selector Name="__cimnamespace">root/test</wsman:Selector>
            </wsman:SelectorSet>
          </wsa:ReferenceParameters>
        </wsa:EndpointReference>
      </Where>
    </p:M_INPUT>
)");
    EXPECT_EQ(bodyOf(envelope(mof, "A", "Plain")), "    <p:Plain_INPUT/>\n");
}

TEST_F(ExampleRequestsTest, ValuesAreThoseThatQualifiersAllow) {
    struct {
        const char* declaration;
        const char* value;
    } constexpr kCases[] = {
        {"[Key] string P;", "P"},
        {"[Key, MaxLen (3)] string Property;", "Pro"},
        {"[Key, MinLen (4)] string P;", "Pxxx"},
        {"[Key, ValueMap {\"a..\", \"R&D\"}] string P;", "R&amp;D"},
        {"[Key, ValueMap {\"..\", \"0x10\", \"7\"}] uint8 P;", "16"},
        {"[Key, ValueMap {\"..\", \"3..5\"}] uint8 P;", "3"},
        {"[Key, ValueMap {\"..5\"}] uint8 P;", "5"},
        {"[Key, ValueMap {\"..\"}] uint8 P;", "1"},
        {"[Key, MinValue (7)] uint8 P;", "7"},
        {"[Key] real32 P;", "1"},
        {"[Key] char16 P;", "A"},
        {"[Key] boolean P;", "true"},
        {"[Key] datetime P;", "20260131120000.000000+000"},
    };
    for (const auto& [declaration, value] : kCases) {
        const std::string selectors =
            selectorsOf(envelope("class A { " + std::string(declaration) + " };", "A", "Get"));
        EXPECT_NE(selectors.find("\">" + std::string(value) + "</wsman:Selector>"),
                  std::string::npos)
            << declaration << ": " << selectors;
    }
}

// A value that ends the input of the command would make the rest of it commands of the reader's
// shell.
TEST_F(ExampleRequestsTest, NoTextOfAModelEndsTheCommand) {
    const MofModel model(
        R"(class A { [Key, ValueMap {"x\nEND\nrm -rf ~\n\t\x1"}] string P;
                     uint32 M ([In, ValueMap {"\nEND\n"}] string N); };)");
    const Pages::ClassRelations relations(model.nameSpace());
    for (const Pages::ExampleRequest& each :
         Pages::exampleRequests(model.cimClass("A"), relations, "http://host:1")) {
        EXPECT_EQ(each.envelope.find("\nEND"), std::string::npos) << each.envelope;
        EXPECT_EQ(each.envelope.find("\nrm"), std::string::npos) << each.envelope;
        EXPECT_TRUE(each.envelope.ends_with("</s:Envelope>\n"));
    }
    const std::string section = Pages::exampleSection(
        model.cimClass("A"), relations, Pages::Layout::kServed, "http://h'$(reboot)'");
    EXPECT_NE(section.find("--data-binary @- 'http://h'\\''$(reboot)'\\''/wsman' &lt;&lt;'END'\n"),
              std::string::npos);
}

// Names that no MOF file could declare.
TEST_F(ExampleRequestsTest, EnvelopesOfHostileNamesAreNoOtherEnvelopes) {
    const TSKString evil("\"></wsa:To><evil a='\nEND\n");
    std::vector<Mof::ClassDeclaration> declarations(1);
    declarations[0].name.text = evil;
    declarations[0].properties.resize(1);
    declarations[0].properties[0].name.text = "P";
    const Repository::CimNamespace nameSpace(evil, std::move(declarations), {});
    const Pages::ClassRelations relations(nameSpace);
    for (const Pages::ExampleRequest& each :
         Pages::exampleRequests(*nameSpace.classes().front(), relations, std::string_view(evil))) {
        const std::unique_ptr<xmlDoc, decltype(&xmlFreeDoc)> document(
            xmlReadMemory(each.envelope.data(), static_cast<int>(each.envelope.size()), nullptr,
                          nullptr, XML_PARSE_NONET | XML_PARSE_NOERROR),
            xmlFreeDoc);
        EXPECT_TRUE(document) << each.envelope;
        EXPECT_EQ(each.envelope.find("<evil"), std::string::npos);
        EXPECT_EQ(each.envelope.find("\nEND"), std::string::npos);
    }
}

}  // namespace

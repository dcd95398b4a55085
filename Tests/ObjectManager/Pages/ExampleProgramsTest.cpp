#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Pages/ExamplePrograms.h"
#include "Tests/Support/MofModel.h"

namespace {

using Pages::ExamplePrograms;
using Pages::ExampleRequest;

class ExampleProgramsTest : public testing::Test {
  protected:
    [[nodiscard]] static ExampleRequest request(const std::string& mof, const std::string& name) {
        const MofModel model(mof);
        const Pages::ClassRelations relations(model.nameSpace());
        for (const ExampleRequest& each :
             Pages::exampleRequests(model.cimClass("A_B"), relations, "http://host:1")) {
            if (each.operation == name)
                return each;
        }
        throw std::runtime_error("no " + name);
    }

    ExamplePrograms programs_{"A_B", "http://host:1/wsman", "http://host:1/root/test/A_B.wsdl"};
};

TEST_F(ExampleProgramsTest, AMethodIsCalledWithZeep) {
    EXPECT_EQ(programs_.zeepCall(request(
                  R"(class A_B { [Key] string K;
                       uint32 M ([In] uint8 N, [In] string S[], [In] datetime D, [In] boolean B,
                                 [In] A_B REF R); };)",
                  "M")),
              R"(values = {
    'N': 1,
    'S': 'S',
    'D': {'Datetime': '2026-01-31T12:00:00Z'},
    'B': True,
    'R': {'_value_1': elements(
        '<wsa:EndpointReference>'
        '  <wsa:Address>http://host:1/wsman</wsa:Address>'
        '  <wsa:ReferenceParameters>'
        '    <wsman:ResourceURI>http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/A_B</wsman:ResourceURI>'
        '    <wsman:SelectorSet>'
        '      <wsman:Selector Name="__cimnamespace">root/test</wsman:Selector>'
        '      <wsman:Selector Name="K">K</wsman:Selector>'
        '    </wsman:SelectorSet>'
        '  </wsa:ReferenceParameters>'
        '</wsa:EndpointReference>')},
}
header = make_header('http://schemas.dmtf.org/wbem/ws-cim/1/cim-schema/2/A_B/M',
    '<wsman:SelectorSet>'
    '  <wsman:Selector Name="__cimnamespace">root/test</wsman:Selector>'
    '  <wsman:Selector Name="K">K</wsman:Selector>'
    '</wsman:SelectorSet>')
print(service['M'](**values, _soapheaders=header))
)");
}

TEST_F(ExampleProgramsTest, AMethodIsCalledWithGsoap) {
    EXPECT_EQ(programs_.gsoapCall(request("class A_B { uint32 M_1 ([In] uint8 N); };", "M_1")),
              R"text(int main()
{
    struct soap soap(SOAP_C_UTFSTRING);
    _ns1__M_USCORE1_USCOREINPUT input;
    read(soap, R"XML(<p:M_1_INPUT
    xmlns:p="http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/A_B">
  <N>1</N>
</p:M_1_INPUT>)XML", soap_read__ns1__M_USCORE1_USCOREINPUT, input);
    setHeader(soap, R"XML(http://schemas.dmtf.org/wbem/ws-cim/1/cim-schema/2/A_B/M_1)XML", R"XML(<wsman:SelectorSet
    xmlns:wsman="http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd">
  <wsman:Selector Name="__cimnamespace">root/test</wsman:Selector>
</wsman:SelectorSet>)XML");
    _ns1__M_USCORE1_USCOREOUTPUT output;
    require(soap, soap_call___ns1__M_USCORE1(&soap, kService, nullptr, &input, output));
    soap.os = &std::cout;
    soap_write__ns1__M_USCORE1_USCOREOUTPUT(&soap, &output);
    soap_destroy(&soap);
    soap_end(&soap);
}
)text");
}

TEST_F(ExampleProgramsTest, ThePropertiesOfAListAreLists) {
    EXPECT_NE(
        programs_.zeepCall(request("class A_B { [Key] string K; [Required] uint8 N[]; };", "Put"))
            .find("values = {\n    'K': 'K',\n    'N': [1],\n}\n"),
        std::string::npos);
}

// A text that ends its literal would be a part of the program that a reader copies and runs.
TEST_F(ExampleProgramsTest, NoTextOfAModelIsCode) {
    EXPECT_EQ(Pages::pythonText("a'b\\c\nd\"\xFF"),
              "'a\\'b\\\\c\xEF\xBF\xBD"
              "d\"\xEF\xBF\xBD'");
    EXPECT_EQ(Pages::pythonLines("  a'\nb\n", 1), " '  a\\''\n 'b'");
    const ExampleRequest call = request(
        R"mof(class A_B { uint32 M ([In, ValueMap {"__import__('os')"
}] uint8 N,
                                 [In, ValueMap {")XML\"; evil(); '"}] string S);
};)mof",
        "M");
    const std::string python = programs_.zeepCall(call);
    EXPECT_NE(python.find("'N': '__import__(\\'os\\')',\n"), std::string::npos) << python;
    EXPECT_NE(python.find("'S': ')XML\"; evil(); \\'',\n"), std::string::npos) << python;
    EXPECT_NE(programs_.gsoapCall(call).find("<S>)XML&quot;; evil(); '</S>"), std::string::npos);
    const ExamplePrograms evil("A", "http://)XML\"; evil(\n", "a'; evil");
    EXPECT_NE(evil.gsoapSetup().find("kService = R\"XML_(http://)XML\"; evil(\n)XML_\";"),
              std::string::npos);
    EXPECT_TRUE(evil.gsoapCommands().starts_with("wsdl2h -o client.h 'a'\\''; evil'\n"));
}

}  // namespace

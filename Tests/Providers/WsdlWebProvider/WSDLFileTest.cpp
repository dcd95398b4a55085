#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <vector>

#include "Providers/WsdlWebProvider/WsdlUtil.h"
#include "Tests/Providers/WsdlWebProvider/ExpectedText.h"
#include "Tests/Support/AllocationProbe.h"

namespace {

using ExpectedText::block;
using ExpectedText::count;
using ExpectedText::with;

const std::string kLong(100'000, 'x');

// What a careless use of printf would trip over, and what XML would have to escape.
const char* const kPercents = "100% of %s, %d and %n";
const char* const kMarkup = R"(a<b>&"c"</b>'d')";

std::string text(const TSKString& value) {
    return std::string(std::string_view(value));
}

std::string indented(std::size_t blanks, std::string_view lines) {
    std::string result;
    for (bool atStart = true; const char character : lines) {
        if (atStart)
            result.append(blanks, ' ');
        result += character;
        atStart = character == '\n';
    }
    return result;
}

std::string between(const std::string& whole, std::string_view from, std::string_view to) {
    const std::size_t begin = whole.find(from);
    if (begin == std::string::npos)
        return "not found: " + std::string(from);
    return whole.substr(begin, whole.find(to, begin + from.size()) - begin);
}

// The sections of a document, from its beginning to its end.

std::string documentStart(std::string_view className) {
    return with("{class}", className, block(R"(
<wsdl:definitions
  name="{class}_WSDL"
  targetNamespace="http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/{class}"
  xmlns="http://schemas.xmlsoap.org/wsdl/"
  xmlns:wsdl="http://schemas.xmlsoap.org/wsdl/"
  xmlns:soap="http://schemas.xmlsoap.org/wsdl/soap12/"
  xmlns:class="http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/{class}"
  xmlns:xs="http://www.w3.org/2001/XMLSchema"
  xmlns:wsa="http://schemas.xmlsoap.org/ws/2004/08/addressing"
  xmlns:wst="http://schemas.xmlsoap.org/ws/2004/09/transfer"
  xmlns:wsen="http://schemas.xmlsoap.org/ws/2004/09/enumeration"
  xmlns:wsman="http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd"
  xmlns:cim="http://schemas.dmtf.org/wbem/wscim/1/common">
)"));
}

std::string types(std::string_view schema) {
    return "  <wsdl:types>\n" + std::string(schema) + "\n  </wsdl:types>\n\n";
}

const std::string kHeaderMessages = block(R"(
  <wsdl:message name="Action_HeaderMessage">
     <wsdl:part name="Action_Header" element="wsa:Action"/>
  </wsdl:message>
  <wsdl:message name="To_HeaderMessage">
     <wsdl:part name="To_Header" element="wsa:To"/>
  </wsdl:message>
  <wsdl:message name="ResourceURI_HeaderMessage">
     <wsdl:part name="ResourceURI_Header" element="wsman:ResourceURI"/>
  </wsdl:message>
  <wsdl:message name="MessageID_HeaderMessage">
     <wsdl:part name="MessageID_Header" element="wsa:MessageID"/>
  </wsdl:message>
  <wsdl:message name="ReplyTo_HeaderMessage">
     <wsdl:part name="ReplyTo_Header" element="wsa:ReplyTo"/>
  </wsdl:message>
  <wsdl:message name="SelectorSet_HeaderMessage">
     <wsdl:part name="SelectorSet_Header" element="wsman:SelectorSet"/>
  </wsdl:message>
)");

std::string methodMessages(std::string_view method) {
    return with("{method}", method, block(R"(
  <wsdl:message name="{method}_InputMessage">
    <wsdl:part name="body" element="class:{method}_INPUT"/>
  </wsdl:message>
  <wsdl:message name="{method}_OutputMessage">
    <wsdl:part name="body" element="class:{method}_OUTPUT"/>
  </wsdl:message>

)"));
}

const std::string kDeleteMessages =
    "  \t<!-- Delete messages -->\n"
    "  \t<wsdl:message name=\"Delete_InputMessage\"/>\n"
    "  \t<wsdl:message name=\"Delete_OutputMessage\"/>\n"
    "\n";

const std::string kGetMessages =
    "  \t<!-- Get messages -->\n"
    "  \t<wsdl:message name=\"Get_InputMessage\"/>\n"
    "  \t<wsdl:message name=\"Get_OutputMessage\">\n"
    "  \t  <wsdl:part name=\"body\" element=\"class:Get_OUTPUT\" />\n"
    "  \t</wsdl:message>\n"
    "\n";

const std::string kIntrinsicMessages =
    "\n"
    "\n" +
    kGetMessages + kDeleteMessages +
    "  \t<!-- Create messages -->\n"
    "  \t<wsdl:message name=\"Create_InputMessage\">\n"
    "  \t  <wsdl:part name=\"body\" element=\"class:Create_INPUT\" />\n"
    "  \t</wsdl:message>\n"
    "  \t<wsdl:message name=\"Create_OutputMessage\">\n"
    "  \t  <wsdl:part name=\"body\" element=\"wst:ResourceCreated\" />\n"
    "  \t</wsdl:message>\n"
    "\n"
    "  \t<!-- Enumerate messages -->\n"
    "  \t<wsdl:message name=\"Enumerate_InputMessage\">\n"
    "  \t  <wsdl:part name=\"body\" element=\"wsen:Enumerate\" />\n"
    "  \t</wsdl:message>\n"
    "  \t<wsdl:message name=\"Enumerate_OutputMessage\">\n"
    "  \t  <wsdl:part name=\"body\" element=\"wsen:EnumerateResponse\" />\n"
    "  \t</wsdl:message>\n"
    "\n"
    "  \t<!-- Pull messages -->\n"
    "  \t<wsdl:message name=\"Pull_InputMessage\">\n"
    "  \t  <wsdl:part name=\"body\" element=\"wsen:Pull\" />\n"
    "  \t</wsdl:message>\n"
    "  \t<wsdl:message name=\"Pull_OutputMessage\">\n"
    "  \t  <wsdl:part name=\"body\" element=\"wsen:PullResponse\" />\n"
    "  \t</wsdl:message>\n"
    "\n"
    "  \t<!-- Put messages -->\n"
    "  \t<wsdl:message name=\"Put_InputMessage\">\n"
    "  \t  <wsdl:part name=\"body\" element=\"class:Put_INPUT\" />\n"
    "  \t</wsdl:message>\n"
    "  \t<wsdl:message name=\"Put_OutputMessage\"/>\n";

std::string documentationLine(std::string_view documentation) {
    return "      <wsdl:documentation>" + std::string(documentation) + "</wsdl:documentation>\n";
}

// `documentation` is a whole line or nothing.
std::string methodPortOperation(std::string_view method, std::string_view documentation = "") {
    return with("{line}", documentation, with("{method}", method, block(R"(
    <wsdl:operation name="{method}">
{line}      <wsdl:input name="{method}_InputMessage" message="class:{method}_InputMessage"/>
      <wsdl:output name="{method}_OutputMessage" message="class:{method}_OutputMessage"/>
    </wsdl:operation>

)")));
}

std::string portType(std::string_view className, std::string_view methodOperations) {
    return with("{operations}", methodOperations, with("{class}", className, block(R"(


  <wsdl:portType name="{class}_PortType">
{operations}
    <wsdl:operation name="Get">
      <wsdl:input  name="Get_InputMessage" message="class:Get_InputMessage" />
      <wsdl:output name="Get_OutputMessage" message="class:Get_OutputMessage" />
    </wsdl:operation>
    <wsdl:operation name="Delete">
      <wsdl:input  name="Delete_InputMessage" message="class:Delete_InputMessage" />
      <wsdl:output name="Delete_OutputMessage" message="class:Delete_OutputMessage" />
    </wsdl:operation>
    <wsdl:operation name="Create">
      <wsdl:input  name="Create_InputMessage" message="class:Create_InputMessage" />
      <wsdl:output name="Create_OutputMessage" message="class:Create_OutputMessage" />
    </wsdl:operation>
    <wsdl:operation name="Enumerate">
      <wsdl:input  name="Enumerate_InputMessage" message="class:Enumerate_InputMessage" />
      <wsdl:output name="Enumerate_OutputMessage" message="class:Enumerate_OutputMessage" />
    </wsdl:operation>
    <wsdl:operation name="Pull">
      <wsdl:input  name="Pull_InputMessage" message="class:Pull_InputMessage" />
      <wsdl:output name="Pull_OutputMessage" message="class:Pull_OutputMessage" />
    </wsdl:operation>
    <wsdl:operation name="Put">
      <wsdl:input  name="Put_InputMessage" message="class:Put_InputMessage" />
      <wsdl:output name="Put_OutputMessage" message="class:Put_OutputMessage" />
    </wsdl:operation>
  </wsdl:portType>

)")));
}

const std::string kFiveHeaders = block(R"(
<soap:header message="class:Action_HeaderMessage" part="Action_Header" use="literal"/>
<soap:header message="class:To_HeaderMessage" part="To_Header" use="literal"/>
<soap:header message="class:ResourceURI_HeaderMessage" part="ResourceURI_Header" use="literal"/>
<soap:header message="class:MessageID_HeaderMessage" part="MessageID_Header" use="literal"/>
<soap:header message="class:ReplyTo_HeaderMessage" part="ReplyTo_Header" use="literal"/>
)");

const std::string kSixHeaders = kFiveHeaders + block(R"(
<soap:header message="class:SelectorSet_HeaderMessage" part="SelectorSet_Header" use="literal"/>
)");

std::string methodBindingOperation(const std::string& method,
                                   const std::string& className = "TST_Class") {
    const std::string action =
        "http://schemas.dmtf.org/wbem/ws-cim/1/cim-schema/2/" + className + "/" + method;
    return with("{headers}", indented(10, kSixHeaders),
                with("{action}", action, with("{method}", method, block(R"(
     <wsdl:operation name="{method}">
       <soap:operation soapAction="{action}"/>
       <wsdl:input>
{headers}          <soap:body parts="body" use="literal"/>
       </wsdl:input>
       <wsdl:output>
          <soap:body parts="body" use="literal"/>
       </wsdl:output>
     </wsdl:operation>

)"))));
}

std::string intrinsicBindingOperation(const std::string& name, const std::string& action,
                                      const std::string& headers) {
    return with("{headers}", indented(12, headers),
                with("{action}", action, with("{name}", name, block(R"(
      <wsdl:operation name="{name}">
        <soap:operation soapAction="{action}"/>
        <wsdl:input>
{headers}            <soap:body use="literal"/>
        </wsdl:input>
        <wsdl:output>
            <soap:body use="literal"/>
        </wsdl:output>
      </wsdl:operation>
)"))));
}

std::string binding(std::string_view className, const std::string& methodOperations) {
    const std::string transfer = "http://schemas.xmlsoap.org/ws/2004/09/transfer";
    const std::string enumeration = "http://schemas.xmlsoap.org/ws/2004/09/enumeration";
    const std::string intrinsicOperations =
        intrinsicBindingOperation("Get", transfer + "/Get", kSixHeaders) +
        intrinsicBindingOperation("Delete", transfer + "/Delete", kSixHeaders) +
        intrinsicBindingOperation("Create", transfer + "/Create", kSixHeaders) +
        intrinsicBindingOperation("Enumerate", enumeration + "/Enumerate", kSixHeaders) +
        intrinsicBindingOperation("Pull", enumeration + "/Pull", kFiveHeaders) +
        intrinsicBindingOperation("Put", transfer + "/Put", kSixHeaders);
    return with("{operations}", methodOperations + "\n" + intrinsicOperations,
                with("{class}", className, block(R"(
  <wsdl:binding name="{class}_Binding" type="class:{class}_PortType">
    <soap:binding style="document" transport="http://schemas.xmlsoap.org/soap/http"/>
{operations}
  </wsdl:binding>

)")));
}

std::string service(std::string_view className, std::string_view documentation,
                    std::string_view address) {
    return with("{documentation}", documentation,
                with("{address}", address, with("{class}", className, block(R"(
  <wsdl:service name="{class}_Service">
    <wsdl:documentation>{documentation}</wsdl:documentation>
    <wsdl:port name="{class}_Port" binding="class:{class}_Binding">
      <soap:address location="{address}"/>
    </wsdl:port>
  </wsdl:service>

)"))));
}

const char* const kDocumentEnd = "</wsdl:definitions>\n";

const char* const kSchema = "<xs:schema>\n  <xs:element name=\"Name\"/>\n</xs:schema>\n";

WSDLFile wsdlOf(const char* className = "TST_Class") {
    return WSDLFile(className, "http://host:5985/", "root/tst", kSchema);
}

WSDLFile wsdlWithMethods() {
    WSDLFile wsdl = wsdlOf();
    wsdl.setDocumentation("What it is for.");
    wsdl.addMessage("A", true, "Does a.");
    wsdl.addMessage("B", false, "");
    return wsdl;
}

std::string portTypeWith(const char* method, const char* documentation) {
    WSDLFile wsdl = wsdlOf();
    wsdl.addMessage(method, false, documentation);
    return text(wsdl.getPortType());
}

std::string bindingWith(const char* method, const char* documentation) {
    WSDLFile wsdl = wsdlOf();
    wsdl.addMessage(method, false, documentation);
    return text(wsdl.getBinding());
}

std::string messagesWith(const char* method, const char* documentation) {
    WSDLFile wsdl = wsdlOf();
    wsdl.addMessage(method, false, documentation);
    return text(wsdl.getMessages());
}

// The table of intrinsic operations.

std::string orNull(const char* value) {
    return value == nullptr ? "null" : value;
}

std::string rowText(const IntrinsicMethodInfo& row) {
    return orNull(row.name) + ", " + orNull(row.action) + ", " + orNull(row.inputMessage) + ", " +
           orNull(row.outputMessage) + ", " + (row.includeSelectorSet ? "true" : "false");
}

TEST(IntrinsicMethodsInfo, ListsTransferAndEnumerationAndEndsWithAnEmptyRow) {
    std::vector<std::string> rows;
    for (const IntrinsicMethodInfo* row = IntrinsicMethodsInfo;; ++row) {
        rows.push_back(rowText(*row));
        if (row->name == nullptr)
            break;
    }
    const std::string transfer = "http://schemas.xmlsoap.org/ws/2004/09/transfer";
    const std::string enumeration = "http://schemas.xmlsoap.org/ws/2004/09/enumeration";
    EXPECT_EQ(rows, (std::vector<std::string>{
                        "Get, " + transfer + "/Get, null, *, true",
                        "Delete, " + transfer + "/Delete, null, null, true",
                        "Create, " + transfer + "/Create, *, wst:ResourceCreated, true",
                        "Enumerate, " + enumeration +
                            "/Enumerate, wsen:Enumerate, wsen:EnumerateResponse, true",
                        "Pull, " + enumeration + "/Pull, wsen:Pull, wsen:PullResponse, false",
                        "Put, " + transfer + "/Put, *, null, true",
                        "null, null, null, null, false",
                    }));
}

// Construction.

TEST(WSDLFile, KeepsWhatItIsConstructedFrom) {
    const WSDLFile wsdl("TST_Class", "http://host:5985/", "root/tst", kSchema);
    EXPECT_EQ(text(wsdl.getServiceName()), "TST_Class");
    EXPECT_EQ(text(wsdl.getURL()), "http://host:5985/");
    EXPECT_EQ(text(wsdl.getNS()), "root/tst");
    EXPECT_EQ(text(wsdl.getDocumentation()), "");
    EXPECT_EQ(text(wsdl.getFileName()), "TST_Class.wsdl");
}

TEST(WSDLFile, TypesHoldTheSchemaTextUnchanged) {
    EXPECT_EQ(text(wsdlOf().getTypes()),
              "  <wsdl:types>\n"
              "<xs:schema>\n"
              "  <xs:element name=\"Name\"/>\n"
              "</xs:schema>\n"
              "\n"
              "  </wsdl:types>\n"
              "\n");
}

TEST(WSDLFile, AnEmptySchemaTextLeavesAnEmptyLineInTheTypes) {
    const WSDLFile wsdl("TST_Class", "http://host/", "root", "");
    EXPECT_EQ(text(wsdl.getTypes()),
              "  <wsdl:types>\n"
              "\n"
              "  </wsdl:types>\n"
              "\n");
}

TEST(WSDLFile, InsertsMarkupAndPercentSignsOfTheSchemaAsTheyAre) {
    for (const char* const schema : {kMarkup, kPercents})
        EXPECT_EQ(text(WSDLFile("TST_Class", "http://host/", "root", schema).getTypes()),
                  types(schema));
}

TEST(WSDLFile, MessagesBeginWithThoseOfTheSixHeaders) {
    EXPECT_EQ(text(wsdlOf().getMessages()), kHeaderMessages);
}

TEST(WSDLFile, HasTheMessagesOfTheIntrinsicOperations) {
    EXPECT_EQ(text(wsdlOf().getInstrinsicsMessages()), kIntrinsicMessages);
}

TEST(WSDLFile, DeleteHasTwoSelfClosedMessagesWithoutParts) {
    EXPECT_EQ(between(text(wsdlOf().getInstrinsicsMessages()), "  \t<!-- Delete ", "  \t<!-- "),
              kDeleteMessages);
}

TEST(WSDLFile, GetHasAnInputMessageWithoutPartAndAnOutputMessageWithOne) {
    EXPECT_EQ(between(text(wsdlOf().getInstrinsicsMessages()), "  \t<!-- Get ", "  \t<!-- "),
              kGetMessages);
}

TEST(WSDLFile, IntrinsicMessagesAreTheSameForEveryClass) {
    EXPECT_EQ(text(wsdlOf("TST_Other").getInstrinsicsMessages()), kIntrinsicMessages);
    EXPECT_EQ(text(wsdlOf("TST_Other").getMessages()), kHeaderMessages);
}

TEST(WSDLFile, NeitherTheNamespaceNorTheFileAddressIsRendered) {
    WSDLFile wsdl("TST_Class", "http://host/", "root/namespace", "");
    EXPECT_EQ(count(wsdl.toString(true), "root/namespace"), 0U);
    EXPECT_EQ(count(wsdl.toString(true), "TST_Class.wsdl"), 0U);
    wsdl.setURL("http://other/");
    EXPECT_EQ(count(wsdl.toString(true), "TST_Class.wsdl"), 0U);
    wsdl.setServiceName("TST_New");
    EXPECT_EQ(count(wsdl.toString(true), "root/namespace"), 0U);
    EXPECT_EQ(count(wsdl.toString(true), "TST_New.wsdl"), 0U);
}

// Accessors and setters.

TEST(WSDLFile, GettersReturnWhatTheSettersSet) {
    WSDLFile wsdl = wsdlOf();
    wsdl.setServiceName("TST_New");
    wsdl.setURL("http://new/");
    wsdl.setNS("root/new");
    wsdl.setDocumentation("New.");
    EXPECT_EQ(text(wsdl.getServiceName()), "TST_New");
    EXPECT_EQ(text(wsdl.getURL()), "http://new/");
    EXPECT_EQ(text(wsdl.getNS()), "root/new");
    EXPECT_EQ(text(wsdl.getDocumentation()), "New.");
}

TEST(WSDLFile, ASetterCalledTwiceKeepsTheLastValue) {
    WSDLFile wsdl = wsdlOf();
    for (const char* const value : {"first", "second", ""}) {
        wsdl.setServiceName(value);
        wsdl.setURL(value);
        wsdl.setNS(value);
        wsdl.setDocumentation(value);
        EXPECT_EQ(text(wsdl.getServiceName()), value);
        EXPECT_EQ(text(wsdl.getURL()), value);
        EXPECT_EQ(text(wsdl.getNS()), value);
        EXPECT_EQ(text(wsdl.getDocumentation()), value);
    }
}

TEST(WSDLFile, FileNameFollowsTheServiceName) {
    WSDLFile wsdl = wsdlOf();
    wsdl.setURL("http://new/");
    wsdl.setNS("root/new");
    EXPECT_EQ(text(wsdl.getFileName()), "TST_Class.wsdl");
    wsdl.setServiceName("TST_New");
    EXPECT_EQ(text(wsdl.getFileName()), "TST_New.wsdl");
    wsdl.setServiceName("");
    EXPECT_EQ(text(wsdl.getFileName()), ".wsdl");
}

TEST(WSDLFile, SettersChangeNoSectionThatIsBuilt) {
    WSDLFile wsdl = wsdlWithMethods();
    const std::string portTypeBefore = text(wsdl.getPortType());
    wsdl.setServiceName("TST_New");
    wsdl.setURL("http://new/");
    wsdl.setNS("root/new");
    wsdl.setDocumentation("New.");
    EXPECT_EQ(text(wsdl.getTypes()), types(kSchema));
    EXPECT_EQ(text(wsdl.getMessages()),
              kHeaderMessages + methodMessages("A") + methodMessages("B"));
    EXPECT_EQ(text(wsdl.getInstrinsicsMessages()), kIntrinsicMessages);
    EXPECT_EQ(text(wsdl.getPortType()), portTypeBefore);
    EXPECT_EQ(text(wsdl.getBinding()),
              binding("TST_New", methodBindingOperation("A", "TST_Class") +
                                     methodBindingOperation("B", "TST_Class")));
}

TEST(WSDLFile, SetNSChangesNothingThatIsRendered) {
    WSDLFile wsdl = wsdlWithMethods();
    const std::string before = text(wsdl.toString(true));
    wsdl.setNS("root/new");
    EXPECT_EQ(text(wsdl.toString(true)), before);
}

TEST(WSDLFile, SetURLChangesTheAddressOfTheServiceAlone) {
    WSDLFile wsdl = wsdlWithMethods();
    const std::string before = text(wsdl.toString(true));
    wsdl.setURL("http://new/");
    EXPECT_EQ(text(wsdl.toString(true)),
              with("\"http://host:5985/wsman\"", "\"http://new/wsman\"", before));
    EXPECT_EQ(text(wsdl.getService()), service("TST_Class", "What it is for.", "http://new/wsman"));
}

TEST(WSDLFile, SetDocumentationChangesTheServiceAlone) {
    WSDLFile wsdl = wsdlWithMethods();
    const std::string before = text(wsdl.toString(true));
    wsdl.setDocumentation("New.");
    EXPECT_EQ(text(wsdl.toString(true)), with("What it is for.", "New.", before));
    EXPECT_EQ(text(wsdl.getService()), service("TST_Class", "New.", "http://host:5985/wsman"));
}

TEST(WSDLFile, AfterSetServiceNameThePortTypeKeepsTheOldNameAndTheRestHasTheNew) {
    WSDLFile wsdl = wsdlOf("TST_Old");
    wsdl.setServiceName("TST_New");
    EXPECT_EQ(text(wsdl.getFileName()), "TST_New.wsdl");
    EXPECT_EQ(text(wsdl.toString(false)),
              documentStart("TST_New") + types(kSchema) + kHeaderMessages + kIntrinsicMessages +
                  portType("TST_Old", "") + binding("TST_New", "") +
                  service("TST_New", "", "http://host:5985/wsman") + kDocumentEnd);
}

TEST(WSDLFile, AMethodIsAddedUnderTheServiceNameOfThatMoment) {
    WSDLFile wsdl = wsdlOf("TST_Old");
    wsdl.addMessage("A", false, "");
    wsdl.setServiceName("TST_New");
    wsdl.addMessage("B", false, "");
    EXPECT_EQ(text(wsdl.getBinding()),
              binding("TST_New", methodBindingOperation("A", "TST_Old") +
                                     methodBindingOperation("B", "TST_New")));
    EXPECT_EQ(text(wsdl.getPortType()),
              portType("TST_Old", methodPortOperation("A") + methodPortOperation("B")));
}

TEST(WSDLFile, GettersReturnCopies) {
    const WSDLFile wsdl = wsdlWithMethods();
    const std::string before = text(wsdl.toString(true));
    for (TSKString copy :
         {wsdl.getServiceName(), wsdl.getDocumentation(), wsdl.getURL(), wsdl.getNS(),
          wsdl.getFileName(), wsdl.getTypes(), wsdl.getMessages(), wsdl.getInstrinsicsMessages(),
          wsdl.getPortType(), wsdl.getBinding(), wsdl.getService(), wsdl.toString(true)})
        copy += "changed";
    EXPECT_EQ(text(wsdl.toString(true)), before);
    EXPECT_EQ(text(wsdl.getNS()), "root/tst");
    EXPECT_EQ(text(wsdl.getFileName()), "TST_Class.wsdl");
}

TEST(WSDLFile, WhatAGetterReturnedStaysAsItWas) {
    WSDLFile wsdl = wsdlOf();
    const TSKString messages = wsdl.getMessages();
    const TSKString name = wsdl.getServiceName();
    wsdl.addMessage("A", false, "");
    wsdl.setServiceName("TST_New");
    EXPECT_EQ(text(messages), kHeaderMessages);
    EXPECT_EQ(text(name), "TST_Class");
}

TEST(WSDLFile, KeepsCopiesOfItsArguments) {
    TSKString name = "TST_Class";
    TSKString url = "http://host/";
    TSKString nameSpace = "root/tst";
    std::string schema = "<a/>";
    const WSDLFile wsdl(name, url, nameSpace, schema.c_str());
    for (TSKString* const argument : {&name, &url, &nameSpace})
        *argument += "changed";
    schema = "<b/>";
    EXPECT_EQ(text(wsdl.getServiceName()), "TST_Class");
    EXPECT_EQ(text(wsdl.getURL()), "http://host/");
    EXPECT_EQ(text(wsdl.getNS()), "root/tst");
    EXPECT_EQ(text(wsdl.getTypes()), types("<a/>"));
}

// Methods.

TEST(WSDLFile, AMethodAddsItsTwoMessagesBehindThoseOfTheHeaders) {
    EXPECT_EQ(messagesWith("Stop", "Stops it."), kHeaderMessages + block(R"(
  <wsdl:message name="Stop_InputMessage">
    <wsdl:part name="body" element="class:Stop_INPUT"/>
  </wsdl:message>
  <wsdl:message name="Stop_OutputMessage">
    <wsdl:part name="body" element="class:Stop_OUTPUT"/>
  </wsdl:message>

)"));
}

TEST(WSDLFile, AMethodLeavesTypesIntrinsicMessagesAndServiceAsTheyAre) {
    const WSDLFile wsdl = wsdlWithMethods();
    EXPECT_EQ(text(wsdl.getTypes()), types(kSchema));
    EXPECT_EQ(text(wsdl.getInstrinsicsMessages()), kIntrinsicMessages);
    EXPECT_EQ(text(wsdl.getService()),
              service("TST_Class", "What it is for.", "http://host:5985/wsman"));
}

TEST(WSDLFile, AMethodWithDocumentationHasItInThePortType) {
    EXPECT_EQ(portTypeWith("Stop", "Stops it."),
              portType("TST_Class",
                       methodPortOperation(
                           "Stop", "      <wsdl:documentation>Stops it.</wsdl:documentation>\n")));
}

TEST(WSDLFile, AMethodWithoutDocumentationHasNoDocumentationLine) {
    EXPECT_EQ(portTypeWith("Stop", ""), portType("TST_Class", methodPortOperation("Stop")));
}

TEST(WSDLFile, ADocumentationOfOneBlankHasALine) {
    EXPECT_EQ(portTypeWith("Stop", " "),
              portType("TST_Class", methodPortOperation("Stop", documentationLine(" "))));
}

TEST(WSDLFile, ADocumentationOfSeveralLinesIsInsertedAsItIs) {
    const char* const lines = "First.\n\tSecond.\r\n";
    EXPECT_EQ(portTypeWith("Stop", lines),
              portType("TST_Class", methodPortOperation("Stop", documentationLine(lines))));
}

TEST(WSDLFile, AMethodIsBoundWithAllSixHeadersAndItsOwnAction) {
    EXPECT_EQ(bindingWith("Stop", "Stops it."),
              binding("TST_Class", methodBindingOperation("Stop")));
}

TEST(WSDLFile, DocumentationChangesNeitherMessagesNorBinding) {
    EXPECT_EQ(bindingWith("Stop", "Stops it."), bindingWith("Stop", ""));
    EXPECT_EQ(messagesWith("Stop", "Stops it."), messagesWith("Stop", ""));
}

TEST(WSDLFile, WhetherAMethodHasParametersMakesNoDifference) {
    WSDLFile taking = wsdlOf();
    taking.addMessage("Stop", true, "Stops it.");
    WSDLFile plain = wsdlOf();
    plain.addMessage("Stop", false, "Stops it.");
    EXPECT_EQ(text(taking.toString(true)), text(plain.toString(true)));
}

TEST(WSDLFile, MethodsFollowInTheOrderInWhichTheyAreAdded) {
    WSDLFile wsdl = wsdlOf();
    wsdl.addMessage("A", false, "");
    wsdl.addMessage("B", false, "");
    EXPECT_EQ(text(wsdl.getMessages()),
              kHeaderMessages + methodMessages("A") + methodMessages("B"));
    EXPECT_EQ(text(wsdl.getPortType()),
              portType("TST_Class", methodPortOperation("A") + methodPortOperation("B")));
    EXPECT_EQ(text(wsdl.getBinding()),
              binding("TST_Class", methodBindingOperation("A") + methodBindingOperation("B")));
}

TEST(WSDLFile, MethodsAreNotSorted) {
    WSDLFile wsdl = wsdlOf();
    wsdl.addMessage("B", false, "");
    wsdl.addMessage("A", false, "");
    EXPECT_EQ(text(wsdl.getMessages()),
              kHeaderMessages + methodMessages("B") + methodMessages("A"));
}

TEST(WSDLFile, AMethodAddedTwiceStandsThereTwice) {
    WSDLFile wsdl = wsdlOf();
    wsdl.addMessage("A", true, "First.");
    wsdl.addMessage("A", true, "Second.");
    EXPECT_EQ(text(wsdl.getMessages()),
              kHeaderMessages + methodMessages("A") + methodMessages("A"));
    EXPECT_EQ(text(wsdl.getPortType()),
              portType("TST_Class", methodPortOperation("A", documentationLine("First.")) +
                                        methodPortOperation("A", documentationLine("Second."))));
    EXPECT_EQ(text(wsdl.getBinding()),
              binding("TST_Class", methodBindingOperation("A") + methodBindingOperation("A")));
}

TEST(WSDLFile, AMethodNamedLikeAnIntrinsicOperationIsAddedAllTheSame) {
    EXPECT_EQ(messagesWith("Get", ""), kHeaderMessages + methodMessages("Get"));
    EXPECT_EQ(portTypeWith("Get", ""), portType("TST_Class", methodPortOperation("Get")));
    EXPECT_EQ(bindingWith("Get", ""), binding("TST_Class", methodBindingOperation("Get")));
}

TEST(WSDLFile, AnEmptyMethodNameLeavesTheEndingsAlone) {
    EXPECT_EQ(messagesWith("", ""), kHeaderMessages + methodMessages(""));
    EXPECT_EQ(portTypeWith("", ""), portType("TST_Class", methodPortOperation("")));
    EXPECT_EQ(bindingWith("", ""), binding("TST_Class", methodBindingOperation("")));
}

TEST(WSDLFile, InsertsMarkupAndPercentSignsOfMethodsAsTheyAre) {
    for (const char* const value : {kMarkup, kPercents}) {
        EXPECT_EQ(messagesWith(value, value), kHeaderMessages + methodMessages(value));
        EXPECT_EQ(portTypeWith(value, value),
                  portType("TST_Class", methodPortOperation(value, documentationLine(value))));
        EXPECT_EQ(bindingWith(value, value), binding("TST_Class", methodBindingOperation(value)));
    }
}

TEST(WSDLFile, InsertsVeryLongTextsOfMethodsWhole) {
    const char* const value = kLong.c_str();
    EXPECT_EQ(messagesWith(value, value), kHeaderMessages + methodMessages(value));
    EXPECT_EQ(portTypeWith(value, value),
              portType("TST_Class", methodPortOperation(value, documentationLine(value))));
    EXPECT_EQ(bindingWith(value, value), binding("TST_Class", methodBindingOperation(value)));
}

TEST(WSDLFile, TakesManyMethods) {
    WSDLFile wsdl = wsdlOf();
    std::string messages = kHeaderMessages;
    std::string operations;
    for (int number = 0; number < 1000; ++number) {
        const std::string name = "Method" + std::to_string(number);
        wsdl.addMessage(name.c_str(), false, "");
        messages += methodMessages(name);
        operations += methodPortOperation(name);
    }
    EXPECT_EQ(text(wsdl.getMessages()), messages);
    EXPECT_EQ(text(wsdl.getPortType()), portType("TST_Class", operations));
}

// Port type, binding and service.

TEST(WSDLFile, ThePortTypeOfAClassWithoutMethodsHoldsTheIntrinsicOperations) {
    const std::string whole = text(wsdlOf().getPortType());
    EXPECT_EQ(whole, portType("TST_Class", ""));
    EXPECT_EQ(count(whole, "<wsdl:operation "), 6U);
    EXPECT_TRUE(
        whole.starts_with("\n\n  <wsdl:portType name=\"TST_Class_PortType\">\n"
                          "\n    <wsdl:operation name=\"Get\">\n"))
        << whole;
}

TEST(WSDLFile, TheBindingOfAClassWithoutMethodsHasOneEmptyLineBehindTheTransport) {
    const std::string whole = text(wsdlOf().getBinding());
    EXPECT_EQ(whole, binding("TST_Class", ""));
    EXPECT_EQ(count(whole,
                    "transport=\"http://schemas.xmlsoap.org/soap/http\"/>\n"
                    "\n      <wsdl:operation name=\"Get\">\n"),
              1U)
        << whole;
}

TEST(WSDLFile, PutsMethodsBeforeTheIntrinsicOperations) {
    const WSDLFile wsdl = wsdlWithMethods();
    EXPECT_EQ(text(wsdl.getPortType()),
              portType("TST_Class", methodPortOperation("A", documentationLine("Does a.")) +
                                        methodPortOperation("B")));
    EXPECT_EQ(text(wsdl.getBinding()),
              binding("TST_Class", methodBindingOperation("A") + methodBindingOperation("B")));
}

TEST(WSDLFile, EveryIntrinsicOperationButPullCarriesTheSelectorSet) {
    const std::string whole = text(wsdlOf().getBinding());
    for (const char* const name : {"Get", "Delete", "Create", "Enumerate", "Pull", "Put"}) {
        const bool isPull = std::string_view(name) == "Pull";
        const std::string operation = between(
            whole, "<wsdl:operation name=\"" + std::string(name) + "\">", "</wsdl:operation>");
        EXPECT_EQ(count(operation, "<soap:header "), isPull ? 5U : 6U) << operation;
        EXPECT_EQ(count(operation, "SelectorSet_HeaderMessage"), isPull ? 0U : 1U) << operation;
    }
}

TEST(WSDLFile, OutputsCarryNoHeaders) {
    const std::string whole = text(wsdlWithMethods().getBinding());
    EXPECT_EQ(count(whole, "<wsdl:output>"), 8U);
    EXPECT_EQ(count(whole, "<wsdl:output>\n            <soap:body use=\"literal\"/>\n"), 6U);
    EXPECT_EQ(
        count(whole, "<wsdl:output>\n          <soap:body parts=\"body\" use=\"literal\"/>\n"), 2U);
}

TEST(WSDLFile, ActionsOfMethodsHaveABaseOfTheirOwn) {
    const WSDLFile wsdl = wsdlWithMethods();
    EXPECT_EQ(count(wsdl.toString(false), "/wbem/ws-cim/1/cim-schema/2/TST_Class/"), 2U);
    EXPECT_EQ(count(wsdl.toString(false), "/wbem/wscim/1/cim-schema/2/TST_Class\"\n"), 2U);
}

TEST(WSDLFile, TheServiceHoldsDocumentationAndAddress) {
    WSDLFile wsdl = wsdlOf();
    wsdl.setDocumentation("What it is for.");
    EXPECT_EQ(text(wsdl.getService()), block(R"(
  <wsdl:service name="TST_Class_Service">
    <wsdl:documentation>What it is for.</wsdl:documentation>
    <wsdl:port name="TST_Class_Port" binding="class:TST_Class_Binding">
      <soap:address location="http://host:5985/wsman"/>
    </wsdl:port>
  </wsdl:service>

)"));
}

TEST(WSDLFile, ServiceDocumentationIsWrittenEvenWhenEmpty) {
    EXPECT_EQ(text(wsdlOf().getService()), block(R"(
  <wsdl:service name="TST_Class_Service">
    <wsdl:documentation></wsdl:documentation>
    <wsdl:port name="TST_Class_Port" binding="class:TST_Class_Binding">
      <soap:address location="http://host:5985/wsman"/>
    </wsdl:port>
  </wsdl:service>

)"));
}

TEST(WSDLFile, AnAddressWithoutTrailingSlashIsFollowedDirectlyByWsman) {
    const WSDLFile wsdl("TST_Class", "http://host", "root", "");
    EXPECT_EQ(text(wsdl.getService()), service("TST_Class", "", "http://hostwsman"));
}

TEST(WSDLFile, AnEmptyAddressLeavesWsmanAlone) {
    const WSDLFile wsdl("TST_Class", "", "root", "");
    EXPECT_EQ(text(wsdl.getService()), service("TST_Class", "", "wsman"));
}

// Whole documents.

TEST(WSDLFile, RendersAClassWithoutMethods) {
    EXPECT_EQ(text(wsdlOf().toString(false)),
              documentStart("TST_Class") + types(kSchema) + kHeaderMessages + kIntrinsicMessages +
                  portType("TST_Class", "") + binding("TST_Class", "") +
                  service("TST_Class", "", "http://host:5985/wsman") + kDocumentEnd);
}

TEST(WSDLFile, RendersAClassWithMethods) {
    EXPECT_EQ(text(wsdlWithMethods().toString(false)),
              documentStart("TST_Class") + types(kSchema) + kHeaderMessages + methodMessages("A") +
                  methodMessages("B") + kIntrinsicMessages +
                  portType("TST_Class", methodPortOperation("A", documentationLine("Does a.")) +
                                            methodPortOperation("B")) +
                  binding("TST_Class", methodBindingOperation("A") + methodBindingOperation("B")) +
                  service("TST_Class", "What it is for.", "http://host:5985/wsman") + kDocumentEnd);
}

TEST(WSDLFile, BeginsAndEndsWithTheDefinitions) {
    const std::string whole = text(wsdlWithMethods().toString(false));
    EXPECT_TRUE(whole.starts_with("<wsdl:definitions\n")) << whole;
    EXPECT_TRUE(whole.ends_with("\n</wsdl:definitions>\n")) << whole;
}

TEST(WSDLFile, TheXmlDeclarationIsTheOnlyDifferenceThatItMakes) {
    const WSDLFile wsdl = wsdlWithMethods();
    EXPECT_EQ(text(wsdl.toString(true)),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + text(wsdl.toString(false)));
}

TEST(WSDLFile, ADocumentConsistsOfTheSectionsThatTheGettersReturn) {
    const WSDLFile wsdl = wsdlWithMethods();
    EXPECT_EQ(text(wsdl.toString(false)),
              documentStart("TST_Class") + text(wsdl.getTypes()) + text(wsdl.getMessages()) +
                  text(wsdl.getInstrinsicsMessages()) + text(wsdl.getPortType()) +
                  text(wsdl.getBinding()) + text(wsdl.getService()) + kDocumentEnd);
}

TEST(WSDLFile, RenderingIsRepeatable) {
    const WSDLFile wsdl = wsdlWithMethods();
    EXPECT_EQ(text(wsdl.getPortType()), text(wsdl.getPortType()));
    EXPECT_EQ(text(wsdl.getBinding()), text(wsdl.getBinding()));
    EXPECT_EQ(text(wsdl.getService()), text(wsdl.getService()));
    EXPECT_EQ(text(wsdl.toString(true)), text(wsdl.toString(true)));
    EXPECT_EQ(text(wsdl.toString(false)), text(wsdl.toString(false)));
}

TEST(WSDLFile, AMethodMayBeAddedAfterRendering) {
    WSDLFile rendered = wsdlOf();
    rendered.addMessage("A", false, "");
    EXPECT_EQ(text(rendered.getPortType()), portType("TST_Class", methodPortOperation("A")));
    EXPECT_EQ(text(rendered.getBinding()), binding("TST_Class", methodBindingOperation("A")));
    rendered.addMessage("B", false, "");
    EXPECT_EQ(text(rendered.getPortType()),
              portType("TST_Class", methodPortOperation("A") + methodPortOperation("B")));
    EXPECT_EQ(text(rendered.getBinding()),
              binding("TST_Class", methodBindingOperation("A") + methodBindingOperation("B")));
}

// A class without methods whose name, schema, documentation and address are all `value`.
void expectValueEverywhere(const char* value) {
    WSDLFile wsdl(value, value, value, value);
    wsdl.setDocumentation(value);
    EXPECT_EQ(text(wsdl.getFileName()), value + std::string(".wsdl"));
    EXPECT_EQ(text(wsdl.toString(false)),
              documentStart(value) + types(value) + kHeaderMessages + kIntrinsicMessages +
                  portType(value, "") + binding(value, "") +
                  service(value, value, value + std::string("wsman")) + kDocumentEnd);
}

TEST(WSDLFile, InsertsMarkupOfTheClassAsItIs) {
    expectValueEverywhere(kMarkup);
}

TEST(WSDLFile, InsertsPercentSignsOfTheClassAsTheyAre) {
    expectValueEverywhere(kPercents);
}

TEST(WSDLFile, InsertsEmptyTextsOfTheClassAsTheyAre) {
    expectValueEverywhere("");
}

TEST(WSDLFile, InsertsVeryLongTextsOfTheClassWhole) {
    expectValueEverywhere(kLong.c_str());
}

TEST(WSDLFile, ANullSchemaIsAnEmptyOne) {
    EXPECT_EQ(text(WSDLFile("TST_Class", "", "", nullptr).getTypes()), types(""));
}

// Memory.

TEST(WSDLFile, LeaksNothingWhenAnAllocationFails) {
    const std::size_t failures =
        AllocationProbe::failEachAllocation([] { (void)wsdlWithMethods().toString(true); }, [] {});
    EXPECT_GE(failures, 5U);
}

TEST(WSDLFile, FailedRenderingsLeaveItAsItWas) {
    const WSDLFile wsdl = wsdlWithMethods();
    const std::string before = text(wsdl.toString(true));
    const std::size_t failures =
        AllocationProbe::failEachAllocation([&] { (void)wsdl.toString(true); }, [] {});
    EXPECT_GE(failures, 1U);
    EXPECT_EQ(text(wsdl.toString(true)), before);
}

}  // namespace

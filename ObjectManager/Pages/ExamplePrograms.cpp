#include "ObjectManager/Pages/ExamplePrograms.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Pages/ClassPage.h"
#include "ObjectManager/Pages/ExampleValues.h"

namespace Pages {

namespace {

constexpr std::string_view kAnonymous =
    "http://schemas.xmlsoap.org/ws/2004/08/addressing/role/anonymous";

std::string_view withoutLineEnd(std::string_view text) {
    return text.ends_with('\n') ? text.substr(0, text.size() - 1) : text;
}

// Without the spaces that all lines begin with.
std::string unindented(std::string_view text) {
    const std::size_t indent = std::min(text.find_first_not_of(' '), text.size());
    std::string lines;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\n'), text.size() - 1) + 1;
        const std::string_view line = text.substr(0, end);
        lines += line.substr(std::min(indent, line.find_first_not_of(' ')));
        text.remove_prefix(end);
    }
    return lines;
}

// A literal of C++, such that `text` may be anything.
std::string rawLiteral(std::string_view text) {
    std::string delimiter = "XML";
    while (text.find(")" + delimiter + "\"") != std::string_view::npos)
        delimiter += "_";
    return "R\"" + delimiter + "(" + std::string(text) + ")" + delimiter + "\"";
}

// A name as gSOAP writes it, since an underscore separates the parts of its names.
std::string gsoapName(std::string_view name) {
    std::string result;
    for (const char byte : name) {
        if (byte == '_')
            result += "_USCORE";
        else if (Base::isLetter(byte) || Base::isDigit(byte))
            result += byte;
    }
    return result;
}

// XML as a document of its own: with the namespaces of its prefixes. What gSOAP keeps as text, the
// content of references, needs them, too.
std::string declared(std::string_view xml, const std::string& classNamespace) {
    struct Prefix {
        std::string_view name;
        std::string_view uri;
    };
    const Prefix prefixes[] = {{"p", classNamespace},
                               {"wsa", "http://schemas.xmlsoap.org/ws/2004/08/addressing"},
                               {"wsman", "http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd"},
                               {"wsen", "http://schemas.xmlsoap.org/ws/2004/09/enumeration"},
                               {"cim", "http://schemas.dmtf.org/wbem/wscim/1/common"}};
    constexpr std::string_view kReference = "<wsa:EndpointReference";
    std::string outer;
    std::string ofReferences;
    for (const Prefix& prefix : prefixes) {
        if (xml.find("<" + std::string(prefix.name) + ":") == std::string_view::npos)
            continue;
        const std::string declaration =
            "\n    xmlns:" + std::string(prefix.name) + "=\"" + std::string(prefix.uri) + "\"";
        outer += declaration;
        if (prefix.name.starts_with("ws"))
            ofReferences += declaration;
    }
    std::string text = unindented(xml);
    for (std::size_t at = text.find(kReference, 1); at != std::string::npos;
         at = text.find(kReference, at)) {
        at += kReference.size();
        text.insert(at, ofReferences);
    }
    return text.insert(text.find_first_of("/>", 1), outer);
}

// What is in an element of XML, its children as documents of their own.
std::string declaredChildren(std::string_view xml, const std::string& classNamespace) {
    constexpr std::string_view kChild = "\n      <p:";
    std::string children;
    for (std::size_t at = xml.find(kChild); at != std::string::npos;) {
        const std::size_t next = xml.find(kChild, at + 1);
        const std::size_t end = next != std::string::npos ? next : xml.rfind("\n    </");
        children += declared(std::string(xml.substr(at + 1, end - at - 1)) + "\n", classNamespace);
        at = next;
    }
    return children;
}

}  // namespace

ExamplePrograms::ExamplePrograms(std::string_view className, std::string service, std::string wsdl)
    : className_(className), service_(std::move(service)), wsdl_(std::move(wsdl)) {}

std::string ExamplePrograms::zeepSetup() const {
    return R"(import uuid

import requests
import zeep
from lxml import etree

SERVICE = )" +
           pythonText(service_) + "\nCLASS = " + pythonText(classUri(className_)) + R"(
PREFIXES = ('xmlns:wsa="http://schemas.xmlsoap.org/ws/2004/08/addressing" '
            'xmlns:wsman="http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd"')


def elements(xml):
    return list(etree.fromstring(f"<all {PREFIXES}>{xml}</all>"))


def make_header(action, selectors):
    return elements(f"""
        <wsa:Action>{action}</wsa:Action>
        <wsa:To>{SERVICE}</wsa:To>
        <wsman:ResourceURI>{CLASS}</wsman:ResourceURI>
        <wsa:MessageID>uuid:{uuid.uuid4()}</wsa:MessageID>
        <wsa:ReplyTo>
          <wsa:Address>)" +
           std::string(kAnonymous) + R"(</wsa:Address>
        </wsa:ReplyTo>""" + selectors)


session = requests.Session()
session.auth = ("USER", "PASSWORD")
client = zeep.Client()" +
           pythonText(wsdl_) + R"(, transport=zeep.Transport(session=session))
service = client.create_service('{' + CLASS + '}' + )" +
           pythonText(className_ + "_Binding") + ", SERVICE)\n";
}

std::string ExamplePrograms::zeepCall(const ExampleRequest& request) const {
    const std::string header = "header = make_header(" + pythonText(request.action) + ",\n" +
                               pythonLines(unindented(request.selectors), 4) + ")\n";
    if (request.operation == "Pull" && !request.isMethod)
        return header + R"(message = client.create_message(
    service, 'Pull', EnumerationContext={}, MaxElements=10, _soapheaders=header)
# zeep cannot write the context, which is mixed content, so it is put into the message.
message.find('.//{*}EnumerationContext').text = 'CONTEXT'
print(client.transport.post_xml(SERVICE, message, {
    'Content-Type': 'application/soap+xml; charset=utf-8'}).text)
)";
    const std::string operation = "print(service[" + pythonText(request.operation) + "](";
    if (request.arguments.empty())
        return header + operation + "_soapheaders=header))\n";
    return "values = {\n" + request.arguments + "}\n" + header + operation +
           "**values, _soapheaders=header))\n";
}

std::string ExamplePrograms::gsoapCommands() const {
    return "wsdl2h -o client.h " + Base::shellQuoted(wsdl_) +
           "\nsoapcpp2 -C -x client.h\n"
           "g++ -o call call.cpp soapC.cpp soapClient.cpp -lgsoap++\n./call\n";
}

std::string ExamplePrograms::gsoapSetup() const {
    return R"(#include <cstdlib>
#include <iostream>
#include <sstream>

#include ")" +
           gsoapName(className_ + "_Binding") + R"(.nsmap"
#include "soapH.h"

const char* const kService = )" +
           rawLiteral(service_) + R"(;

void require(struct soap& soap, int status)
{
    if (status == SOAP_OK)
        return;
    soap_stream_fault(&soap, std::cerr);
    std::exit(1);
}

// Makes an object of XML. Its members can be changed before it is sent.
template <typename Object>
void read(struct soap& soap, const char* xml, int (*reader)(struct soap*, Object*), Object& object)
{
    std::istringstream stream(xml);
    soap.is = &stream;
    require(soap, reader(&soap, &object));
    soap.is = nullptr;
}

void setHeader(struct soap& soap, const char* action, const char* selectors)
{
    auto* header = soap_new_SOAP_ENV__Header(&soap);
    header->wsa__Action = soap_strdup(&soap, action);
    header->wsa__To = soap_strdup(&soap, kService);
    header->ns3__ResourceURI = soap_new_ns3__attributableURI(&soap);
    header->ns3__ResourceURI->__item = )" +
           rawLiteral(classUri(className_)) + R"(;
    header->wsa__MessageID = soap_strdup(&soap, soap_rand_uuid(&soap, "uuid:"));
    header->wsa__ReplyTo = soap_new_wsa__EndpointReferenceType(&soap);
    header->wsa__ReplyTo->Address = soap_strdup(&soap,
        ")" +
           std::string(kAnonymous) + R"(");
    header->ns3__SelectorSet = soap_new_ns3__SelectorSetType(&soap);
    read(soap, selectors, soap_read_ns3__SelectorSetType, *header->ns3__SelectorSet);
    soap.header = header;
    soap.userid = "USER";
    soap.passwd = "PASSWORD";
}
)";
}

std::string ExamplePrograms::gsoapCall(const ExampleRequest& request) const {
    const std::string type = "ns1__" + gsoapName(className_ + "_Type");
    const std::string operation = gsoapName(request.operation);
    constexpr const char* kInstance = "Instance";
    struct Types {
        std::string input;
        std::string output;
        bool isPrinted;
    } types = {"", "struct __ns1__" + operation + "Response", false};
    if (request.isMethod)
        types = {"_ns1__" + operation + "_USCOREINPUT", "_ns1__" + operation + "_USCOREOUTPUT",
                 true};
    else if (operation == "Get")
        types.output = type;
    else if (operation == "Put")
        types.input = kInstance;
    else if (operation == "Enumerate" || operation == "Pull")
        types = {"_ns5__" + operation, "_ns5__" + operation + "Response", true};

    const std::string uri = exampleText(classUri(className_));
    std::string program;
    if (types.input == kInstance)
        program = R"(// gSOAP writes properties without their namespace, so they are XML.
class Instance : public )" +
                  type + R"( {
  public:
    void soap_serialize(struct soap*) const override {}
    int soap_out(struct soap* soap, const char* tag, int id, const char*) const override
    {
        return soap_element_begin_out(soap, tag, id, nullptr) || soap_send(soap, )" +
                  rawLiteral(declaredChildren(request.body, uri)) + R"() ||
               soap_element_end_out(soap, tag);
    }
};

)";
    program += "int main()\n{\n    struct soap soap(SOAP_C_UTFSTRING);\n";
    if (types.input == kInstance)
        program += "    Instance input;\n";
    else if (!types.input.empty())
        program += "    " + types.input + " input;\n    read(soap, " +
                   rawLiteral(withoutLineEnd(declared(request.body, uri))) + ", soap_read_" +
                   types.input + ", input);\n";
    program += "    setHeader(soap, " + rawLiteral(request.action) + ", " +
               rawLiteral(withoutLineEnd(declared(request.selectors, uri))) + ");\n    " +
               types.output + " output;\n    require(soap, soap_call___ns1__" + operation +
               "(&soap, kService, nullptr, " + (types.input.empty() ? "" : "&input, ") +
               "output));\n";
    if (types.output == type)
        program += "    std::cout << (output.__item ? output.__item : \"\") << \"\\n\";\n";
    if (types.isPrinted)
        program +=
            "    soap.os = &std::cout;\n    soap_write_" + types.output + "(&soap, &output);\n";
    return program + "    soap_destroy(&soap);\n    soap_end(&soap);\n}\n";
}

std::string pythonText(std::string_view text) {
    std::string literal = "'";
    for (const char byte : plainText(text)) {
        if (byte == '\'' || byte == '\\')
            literal += '\\';
        literal += byte;
    }
    return literal + "'";
}

std::string pythonLines(std::string_view xml, int indent) {
    std::string lines;
    for (xml = withoutLineEnd(xml); !xml.empty();) {
        const std::size_t end = std::min(xml.find('\n'), xml.size());
        lines += (lines.empty() ? "" : "\n") + std::string(static_cast<std::size_t>(indent), ' ') +
                 pythonText(xml.substr(0, end));
        xml.remove_prefix(std::min(end + 1, xml.size()));
    }
    return lines;
}

}  // namespace Pages

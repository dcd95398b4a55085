#include <initializer_list>
#include <iterator>
#include <string_view>
#include <utility>

#include "Providers/WsdlWebProvider/IntrinsicMethods.h"
#include "Providers/WsdlWebProvider/Tags.h"
#include "Providers/WsdlWebProvider/WsdlUtil.h"

const IntrinsicMethodInfo IntrinsicMethodsInfo[] = {
    {"Get", "http://schemas.xmlsoap.org/ws/2004/09/transfer/Get", nullptr, "*", true},
    {"Delete", "http://schemas.xmlsoap.org/ws/2004/09/transfer/Delete", nullptr, nullptr, true},
    {"Create", "http://schemas.xmlsoap.org/ws/2004/09/transfer/Create", "*", "wst:ResourceCreated",
     true},
    {"Enumerate", "http://schemas.xmlsoap.org/ws/2004/09/enumeration/Enumerate", "wsen:Enumerate",
     "wsen:EnumerateResponse", true},
    {"Pull", "http://schemas.xmlsoap.org/ws/2004/09/enumeration/Pull", "wsen:Pull",
     "wsen:PullResponse", false},
    {"Put", "http://schemas.xmlsoap.org/ws/2004/09/transfer/Put", "*", nullptr, true},
    {nullptr, nullptr, nullptr, nullptr, false},
};

namespace {

// A text to be inserted somewhere: the host's, or a literal, null being the empty one.
struct Text : std::string_view {
    Text(const char* text) : std::string_view(text == nullptr ? "" : text) {}
    Text(const TSKString& text) : std::string_view(text.data(), text.length()) {}
};

// The text of the document. %1, %2, ... stand for what is inserted, as each place says. Spaces and
// tabs differ from place to place on purpose.

constexpr const char* kXmlDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

// Class name, target namespace, WSDL namespace.
constexpr const char* kDefinitionsTag =
    "<wsdl:definitions\n"
    "  name=\"%1_WSDL\"\n"
    "  targetNamespace=\"%2\"\n"
    "  xmlns=\"%3\"";
// Prefix, namespace.
constexpr const char* kNamespaceDeclaration =
    "\n"
    "  xmlns:%1=\"%2\"";
constexpr const char* kDefinitionsTagEnd = ">\n";
constexpr const char* kDefinitionsEnd = "</wsdl:definitions>\n";

// Schema.
constexpr const char* kTypes =
    "  <wsdl:types>\n"
    "%1\n"
    "  </wsdl:types>\n"
    "\n";

// Header name, element.
constexpr const char* kHeaderMessage =
    "  <wsdl:message name=\"%1_HeaderMessage\">\n"
    "     <wsdl:part name=\"%1_Header\" element=\"%2\"/>\n"
    "  </wsdl:message>\n";
// Method name.
constexpr const char* kMethodMessages =
    "  <wsdl:message name=\"%1_InputMessage\">\n"
    "    <wsdl:part name=\"body\" element=\"class:%1_INPUT\"/>\n"
    "  </wsdl:message>\n"
    "  <wsdl:message name=\"%1_OutputMessage\">\n"
    "    <wsdl:part name=\"body\" element=\"class:%1_OUTPUT\"/>\n"
    "  </wsdl:message>\n"
    "\n";
// Operation name.
constexpr const char* kIntrinsicMessagesComment = "\n  \t<!-- %1 messages -->\n";
// Operation name, "Input" or "Output".
constexpr const char* kEmptyIntrinsicMessage = "  \t<wsdl:message name=\"%1_%2Message\"/>\n";
// The same and the element.
constexpr const char* kIntrinsicMessage =
    "  \t<wsdl:message name=\"%1_%2Message\">\n"
    "  \t  <wsdl:part name=\"body\" element=\"%3\" />\n"
    "  \t</wsdl:message>\n";
// Operation name, suffix.
constexpr const char* kIntrinsicElement = "class:%1%2";

// Class name.
constexpr const char* kPortTypeTag =
    "\n"
    "\n"
    "  <wsdl:portType name=\"%1_PortType\">\n";
// Method name.
constexpr const char* kMethodPortTypeOperationTag = "    <wsdl:operation name=\"%1\">\n";
// Documentation.
constexpr const char* kMethodDocumentation = "      <wsdl:documentation>%1</wsdl:documentation>\n";
// Method name.
constexpr const char* kMethodPortTypeOperationEnd =
    "      <wsdl:input name=\"%1_InputMessage\" message=\"class:%1_InputMessage\"/>\n"
    "      <wsdl:output name=\"%1_OutputMessage\" message=\"class:%1_OutputMessage\"/>\n"
    "    </wsdl:operation>\n"
    "\n";
// Operation name.
constexpr const char* kIntrinsicPortTypeOperation =
    "    <wsdl:operation name=\"%1\">\n"
    "      <wsdl:input  name=\"%1_InputMessage\" message=\"class:%1_InputMessage\" />\n"
    "      <wsdl:output name=\"%1_OutputMessage\" message=\"class:%1_OutputMessage\" />\n"
    "    </wsdl:operation>\n";
constexpr const char* kPortTypeEnd =
    "  </wsdl:portType>\n"
    "\n";

// Class name, SOAP prefix, transport.
constexpr const char* kBindingTag =
    "  <wsdl:binding name=\"%1_Binding\" type=\"class:%1_PortType\">\n"
    "    <%2:binding style=\"document\" transport=\"%3\"/>\n";
constexpr const char* kBindingEnd =
    "\n"
    "  </wsdl:binding>\n"
    "\n";

// An operation of the binding.
struct BindingOperation {
    const char* tag;     // operation name, action, SOAP prefix
    const char* header;  // header name
    const char* end;     // SOAP prefix
};

constexpr BindingOperation kMethodBinding = {
    .tag =
        "     <wsdl:operation name=\"%1\">\n"
        "       <%3:operation soapAction=\"%2\"/>\n"
        "       <wsdl:input>\n",
    .header =
        "          <soap:header message=\"class:%1_HeaderMessage\" part=\"%1_Header\""
        " use=\"literal\"/>\n",
    .end =
        "          <%1:body parts=\"body\" use=\"literal\"/>\n"
        "       </wsdl:input>\n"
        "       <wsdl:output>\n"
        "          <%1:body parts=\"body\" use=\"literal\"/>\n"
        "       </wsdl:output>\n"
        "     </wsdl:operation>\n"
        "\n",
};

constexpr BindingOperation kIntrinsicBinding = {
    .tag =
        "      <wsdl:operation name=\"%1\">\n"
        "        <%3:operation soapAction=\"%2\"/>\n"
        "        <wsdl:input>\n",
    .header =
        "            <soap:header message=\"class:%1_HeaderMessage\" part=\"%1_Header\""
        " use=\"literal\"/>\n",
    .end =
        "            <%1:body use=\"literal\"/>\n"
        "        </wsdl:input>\n"
        "        <wsdl:output>\n"
        "            <%1:body use=\"literal\"/>\n"
        "        </wsdl:output>\n"
        "      </wsdl:operation>\n",
};

// Class name, documentation, SOAP prefix, address.
constexpr const char* kService =
    "  <wsdl:service name=\"%1_Service\">\n"
    "    <wsdl:documentation>%2</wsdl:documentation>\n"
    "    <wsdl:port name=\"%1_Port\" binding=\"class:%1_Binding\">\n"
    "      <%3:address location=\"%4wsman\"/>\n"
    "    </wsdl:port>\n"
    "  </wsdl:service>\n"
    "\n";

// The SOAP headers of requests.
struct SoapHeader {
    const char* name;
    const char* element;
};

constexpr SoapHeader kSoapHeaders[] = {
    {"Action", "wsa:Action"},
    {"To", "wsa:To"},
    {"ResourceURI", "wsman:ResourceURI"},
    {"MessageID", "wsa:MessageID"},
    {"ReplyTo", "wsa:ReplyTo"},
    {"SelectorSet", "wsman:SelectorSet"},  // last: not in all requests
};

void append(TSKString& text, std::string_view pattern, std::initializer_list<Text> insertions) {
    for (;;) {
        const std::size_t percent = pattern.find('%');
        const std::string_view literal = pattern.substr(0, percent);
        text.append(literal.data(), literal.size());
        if (percent == std::string_view::npos)
            return;
        const Text& insertion = insertions.begin()[pattern[percent + 1] - '1'];
        text.append(insertion.data(), insertion.size());
        pattern.remove_prefix(percent + 2);
    }
}

TSKString definitionsTag(const TSKString& className) {
    const TSKString classNamespace = TAG_CLASS_VALUE + className;
    const std::pair<const char*, Text> namespaces[] = {
        {"wsdl", URI_WSDL},
        {TAG_SOAP, TAG_SOAP12_VALUE},
        {TAG_CLASS, classNamespace},
        {TAG_XS, TAG_XS_VALUE},
        {"wsa", URI_WSA},
        {"wst", URI_WST},
        {"wsen", URI_WSEN},
        {"wsman", URI_WSMAN_XSD},
        {TAG_CIM, TAG_CIM_VALUE},
    };
    TSKString text;
    append(text, kDefinitionsTag, {className, classNamespace, URI_WSDL});
    for (const auto& [prefix, uri] : namespaces)
        append(text, kNamespaceDeclaration, {prefix, uri});
    text += kDefinitionsTagEnd;
    return text;
}

void appendHeaderMessages(TSKString& text) {
    for (const SoapHeader& header : kSoapHeaders)
        append(text, kHeaderMessage, {header.name, header.element});
}

void appendIntrinsicMessage(TSKString& text, const char* name, const char* element,
                            const char* direction, const char* elementSuffix) {
    if (element == nullptr) {
        append(text, kEmptyIntrinsicMessage, {name, direction});
        return;
    }
    TSKString ownElement;
    if (isOwnElement(element))
        append(ownElement, kIntrinsicElement, {name, elementSuffix});
    append(text, kIntrinsicMessage,
           {name, direction, isOwnElement(element) ? ownElement.data() : element});
}

void appendIntrinsicMessages(TSKString& text) {
    text += "\n";
    forEachIntrinsicMethod([&](const IntrinsicMethodInfo& method) {
        append(text, kIntrinsicMessagesComment, {method.name});
        appendIntrinsicMessage(text, method.name, method.inputMessage, "Input", kInputSuffix);
        appendIntrinsicMessage(text, method.name, method.outputMessage, "Output", kOutputSuffix);
    });
}

void appendBindingOperation(TSKString& text, const BindingOperation& operation, const Text& name,
                            const Text& action, bool includeSelectorSet) {
    append(text, operation.tag, {name, action, TAG_SOAP});
    const SoapHeader* const end = std::end(kSoapHeaders) - (includeSelectorSet ? 0 : 1);
    for (const SoapHeader* header = std::begin(kSoapHeaders); header != end; ++header)
        append(text, operation.header, {header->name});
    append(text, operation.end, {TAG_SOAP});
}

}  // namespace

WSDLFile::WSDLFile(const TSKString& className, const TSKString& address, const TSKString& ns,
                   const char* xsdText)
    : serviceName(className),
      url(address),
      urlNS(address + ns + "/"),
      urlName(address + className + ".wsdl"),
      cimNS(ns) {
    const Text schema(xsdText);
    eTypes.reserve(Text(kTypes).size() + schema.size());  // most of the document
    append(eTypes, kTypes, {schema});
    appendIntrinsicMessages(instrinsicsMessages);
    appendHeaderMessages(eMessages);
    append(ePortType, kPortTypeTag, {className});
}

void WSDLFile::setNS(const TSKString& ns) {
    cimNS = ns;
}

void WSDLFile::setDocumentation(const TSKString& text) {
    serviceDocumentation = text;
}

void WSDLFile::setURL(const TSKString& address) {
    url = address;
    urlName = address + serviceName + ".wsdl";
}

void WSDLFile::setServiceName(const TSKString& name) {
    serviceName = name;
    urlName = urlNS + name + ".wsdl";
}

TSKString WSDLFile::getFileName() const {
    return serviceName + ".wsdl";
}

void WSDLFile::addMessage(const TSKString& name, bool /*hasParameters*/,
                          const TSKString& documentation) {
    append(eMessages, kMethodMessages, {name});

    append(ePortType, kMethodPortTypeOperationTag, {name});
    if (documentation.length() > 0)
        append(ePortType, kMethodDocumentation, {documentation});
    append(ePortType, kMethodPortTypeOperationEnd, {name});

    appendBindingOperation(eOperations, kMethodBinding, name,
                           URI_WSCIM_ACTION_BASE + serviceName + "/" + name, true);
}

TSKString WSDLFile::getPortType() const {
    TSKString text = ePortType + "\n";
    forEachIntrinsicMethod([&](const IntrinsicMethodInfo& method) {
        append(text, kIntrinsicPortTypeOperation, {method.name});
    });
    append(text, kPortTypeEnd, {});
    return text;
}

TSKString WSDLFile::getBinding() const {
    TSKString text;
    append(text, kBindingTag, {serviceName, TAG_SOAP, URI_SOAP_HTTP});
    text += eOperations;
    text += "\n";
    forEachIntrinsicMethod([&](const IntrinsicMethodInfo& method) {
        appendBindingOperation(text, kIntrinsicBinding, method.name, method.action,
                               method.includeSelectorSet);
    });
    append(text, kBindingEnd, {});
    return text;
}

TSKString WSDLFile::getService() const {
    TSKString text;
    append(text, kService, {serviceName, serviceDocumentation, TAG_SOAP, url});
    return text;
}

TSKString WSDLFile::toString(bool withXmlDeclaration) const {
    const TSKString sections[] = {
        withXmlDeclaration ? kXmlDeclaration : "",
        definitionsTag(serviceName),
        eTypes,
        eMessages,
        instrinsicsMessages,
        getPortType(),
        getBinding(),
        getService(),
        kDefinitionsEnd,
    };
    unsigned long length = 0;
    for (const TSKString& section : sections)
        length += section.length();
    TSKString text;
    text.reserve(length);
    for (const TSKString& section : sections)
        text += section;
    return text;
}

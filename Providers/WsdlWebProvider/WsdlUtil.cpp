#include "Providers/WsdlWebProvider/WsdlUtil.h"

#include <algorithm>
#include <cstdlib>
#include <initializer_list>
#include <iterator>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "Platform/Util/TSKValSlistIterator.h"

namespace {

// Names of elements and attributes, prefixes and namespaces.

constexpr const char* TAG_SIMPLE_TYPE = "simpleType";
constexpr const char* TAG_RESTRICTION = "restriction";
constexpr const char* TAG_MIN_INCLUSIVE = "minInclusive";
constexpr const char* TAG_MAX_INCLUSIVE = "maxInclusive";
constexpr const char* TAG_UNION = "union";
constexpr const char* TAG_ENUMERATTION = "enumeration";
constexpr const char* TAG_MAX_LENGTH = "maxLength";
constexpr const char* TAG_ELEMENT = "element";
constexpr const char* TAG_COMPLEX_TYPE = "complexType";
constexpr const char* TAG_SIMPLE_CONTENT = "simpleContent";
constexpr const char* TAG_SEQUENCE = "sequence";
constexpr const char* TAG_XS = "xs";
constexpr const char* TAG_XMLNS = "xmlns";
constexpr const char* TAG_XS_VALUE = "http://www.w3.org/2001/XMLSchema";
constexpr const char* TAG_CLASS = "class";
// The class's name is appended to it.
constexpr const char* TAG_CLASS_VALUE = "http://schemas.dmtf.org/wbem/wscim/1/cim-schema/2/";
constexpr const char* TAG_CIM = "cim";
constexpr const char* TAG_CIM_VALUE = "http://schemas.dmtf.org/wbem/wscim/1/common";
constexpr const char* TAG_IMPORT = "import";
constexpr const char* TAG_SCHEMA = "schema";
constexpr const char* TAG_WSMAN_VALUE = "http://schemas.dmtf.org/wbem/wsman/1/wsman";
constexpr const char* TAG_SOAP12_VALUE = "http://schemas.xmlsoap.org/wsdl/soap12/";
constexpr const char* TAG_SOAP = "soap";

constexpr const char* URI_WSMAN_XSD = "http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd";
constexpr const char* URI_CIMBINDING_XSD = "http://schemas.dmtf.org/wbem/wsman/1/cimbinding.xsd";
// The class's name, "/" and the method's name are appended to it. Not the base of the class's
// namespace: this one is written "ws-cim".
constexpr const char* URI_WSCIM_ACTION_BASE = "http://schemas.dmtf.org/wbem/ws-cim/1/cim-schema/2/";
constexpr const char* URI_WSDL = "http://schemas.xmlsoap.org/wsdl/";
constexpr const char* URI_SOAP_HTTP = "http://schemas.xmlsoap.org/soap/http";
constexpr const char* URI_WSA = "http://schemas.xmlsoap.org/ws/2004/08/addressing";
constexpr const char* URI_WST = "http://schemas.xmlsoap.org/ws/2004/09/transfer";
constexpr const char* URI_WST_XSD = "http://schemas.xmlsoap.org/ws/2004/09/transfer/transfer.xsd";
constexpr const char* URI_WSEN = "http://schemas.xmlsoap.org/ws/2004/09/enumeration";
constexpr const char* URI_WSEN_XSD =
    "http://schemas.xmlsoap.org/ws/2004/09/enumeration/enumeration.xsd";

// The elements of a method's request and response are named after the method.
constexpr const char* kInputSuffix = "_INPUT";
constexpr const char* kOutputSuffix = "_OUTPUT";

// A text to be inserted somewhere: the host's, or a literal, null being the empty one.
struct Text : std::string_view {
    Text(const char* text) : std::string_view(text == nullptr ? "" : text) {}
    Text(const TSKString& text) : std::string_view(text.data(), text.length()) {}
};

// In IntrinsicMethodsInfo: the element of the body is one of the class's own.
constexpr std::string_view kOwnElement = "*";

bool isOwnElement(const char* message) noexcept {
    return message != nullptr && message == kOwnElement;
}

template <typename Visit>
void forEachIntrinsicMethod(const Visit& visit) {
    for (const IntrinsicMethodInfo* method = IntrinsicMethodsInfo; method->name != nullptr;
         ++method)
        visit(*method);
}

template <typename Definition, typename Visit>
void forEach(const CI_AutoPtr_U<urma::Iterator<const Definition&>>& iterator, const Visit& visit) {
    for (; iterator->hasCurrent(); iterator->advance())
        visit(iterator->current());
}

// The text of the last Description written on a definition, empty without one.
template <typename Definition>
TSKString descriptionOf(const Definition& definition) {
    TSKString description;
    forEach(definition.getQualifiers(false), [&](const urma::IQualifier& qualifier) {
        if (qualifier.hasValue() && qualifier.getName().isEqualCaseInsensitive("Description"))
            description = qualifier.getValue()->toString();
    });
    return description;
}

}  // namespace

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

// The WSDL document.

namespace {

// The text of the document. %1, %2, ... stand for what is inserted, as each place says. Blanks and
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

// XML Schema.

namespace {

using Element = TSKSmrPtr<SOAPElement>;
using Name = TSKSmrPtr<SOAPQName>;

// The names of attributes, made once: documents have thousands of attributes, and an attribute
// copies its name.
const Name TAG_BASE(new SOAPQName("base"));
const Name TAG_VALUE(new SOAPQName("value"));
const Name TAG_NAME(new SOAPQName("name"));
const Name TAG_TYPE(new SOAPQName("type"));
const Name TAG_MIN_OCCURS(new SOAPQName("minOccurs"));
const Name TAG_MAX_OCCURS(new SOAPQName("maxOccurs"));
const Name TAG_TARGET_NS(new SOAPQName("targetNamespace"));
const Name TAG_NS(new SOAPQName("namespace"));
const Name TAG_SCHEMA_LOCATION(new SOAPQName("schemaLocation"));
const Name kNillable(new SOAPQName("nillable"));
const Name kProcessContents(new SOAPQName("processContents"));
const Name kRef(new SOAPQName("ref"));

// The name of a child: it has its parent's prefix.
Name childName(const Element& parent, const char* localName) {
    Name name(new SOAPQName(localName));
    name->setPrefix(parent->getQname()->getPrefix());
    return name;
}

// Every element below a root is made here, and appended to its parent at once.
Element addChild(const Element& parent, Name name) {
    Element child = SOAPElement::makeElement(std::move(name));
    parent->addChildElement(child);
    return child;
}

Element addChild(const Element& parent, const char* localName) {
    return addChild(parent, childName(parent, localName));
}

void addAttribute(const Element& element, const Name& name, const Text& value) {
    element->addAttribute(name, value);
}

// For a name that is rare.
void addAttribute(const Element& element, const char* name, const Text& value) {
    addAttribute(element, Name(new SOAPQName(name)), value);
}

// What a CIM type is called in XML Schema and in the WS-CIM common schema.
struct TypeMapping {
    const char* cimName;
    const char* xsType;
    const char* wsCimType;
};

constexpr TypeMapping kTypeMappings[] = {
    {"string", "xs:string", "cim:cimString"},
    {"char16", "xs:string", "cim:cimChar16"},
    {"datetime", "xs:dateTime", "cim:cimDateTime"},
    {"real64", "xs:double", "cim:cimDouble"},
    {"real32", "xs:float", "cim:cimFloat"},
    {"Boolean", "xs:boolean", "cim:cimBoolean"},
    {"sint64", "xs:long", "cim:cimLong"},
    {"uint64", "xs:unsignedLong", "cim:cimUnsignedLong"},
    {"sint32", "xs:int", "cim:cimInt"},
    {"uint32", "xs:unsignedInt", "cim:cimUnsignedInt"},
    {"sint16", "xs:short", "cim:cimShort"},
    {"uint16", "xs:unsignedShort", "cim:cimUnsignedShort"},
    {"sint8", "xs:byte", "cim:cimByte"},
    {"uint8", "xs:unsignedByte", "cim:cimUnsignedByte"},
};

constexpr const char* kReferenceType = "cim:cimReference";
constexpr const char* kUnmappedType = "NA";

const char* mapType(const ITeskType& type, const char* TypeMapping::*column) {
    if (type.isReference())
        return kReferenceType;
    const TSKString name = type.getTypeName();
    for (const TypeMapping& mapping : kTypeMappings) {
        if (name.equalsIgnoreCase(mapping.cimName))
            return mapping.*column;
    }
    return kUnmappedType;
}

const char* xsType(const ITeskType& type) {
    return mapType(type, &TypeMapping::xsType);
}

const char* wsCimType(const ITeskType& type) {
    return mapType(type, &TypeMapping::wsCimType);
}

bool isStringType(const ITeskType& type) {
    return type.getTypeName().find("string", 0) >= 0 || type.getTypeName().find("String", 0) >= 0;
}

TSKString decimalText(long number) {
    TSKString text;
    text.ltoa(number, 10);
    return text;
}

bool isHexadecimal(const TSKString& text) {
    return text.find('x') >= 0 || text.find('X') >= 0;
}

long hexadecimalNumber(const TSKString& text) {
    return std::strtol(text.data(), nullptr, 16);
}

long numberOf(const TSKString& text) {
    return isHexadecimal(text) ? hexadecimalNumber(text) : text.atol();
}

TSKString normalised(const TSKString& text) {
    return isHexadecimal(text) ? decimalText(hexadecimalNumber(text)) : text;
}

// At the ends of the range the sum wraps. So a ".." after the largest number counts as one without
// gaps, where 2^63 values would have to be enumerated.
long wrappingSum(long number, long summand) {
    return static_cast<long>(static_cast<unsigned long>(number) +
                             static_cast<unsigned long>(summand));
}

void addFacet(const Element& restriction, const char* facet, const TSKString& value) {
    addAttribute(addChild(restriction, facet), TAG_VALUE, value);
}

// Adds permitted values to a restriction. They share their names, since there may be thousands
// (Benchmarks, DocumentBenchmark).
class Enumeration {
  public:
    explicit Enumeration(Element restriction)
        : restriction_(std::move(restriction)), name_(childName(restriction_, TAG_ENUMERATTION)) {}

    void add(const Text& value) const { setValue(addElement(), value); }

    [[nodiscard]] Element addElement() const { return addChild(restriction_, name_); }
    void setValue(const Element& element, const Text& value) const {
        addAttribute(element, TAG_VALUE, value);
    }

  private:
    Element restriction_;
    Name name_;
};

constexpr const char* kDotDot = "..";
constexpr unsigned long kDotDotLength = 2;

bool isRange(const TSKString& entry) {
    return entry.find(kDotDot, 0) >= 0;
}

bool hasRange(const ITeskValue& valueMap) {
    const auto values = valueMap.getArrayValues();
    if (!values)
        return false;
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> next(*values);
    while (next()) {
        if (next.key() && isRange(next.key()->toString()))
            return true;
    }
    return false;
}

std::vector<TSKString> entriesOf(const ITeskValue& valueMap) {
    std::vector<TSKString> entries;
    const auto values = valueMap.getArrayValues();
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> next(*values);
    while (next()) {
        if (next.key())
            entries.push_back(next.key()->toString());
    }
    return entries;
}

// Adds the members of the union that a ValueMap with ranges stands for.
class ValueMapUnion {
  public:
    ValueMapUnion(Element topUnion, const ITeskType& type, std::vector<TSKString> entries)
        : topUnion_(std::move(topUnion)), type_(type), entries_(std::move(entries)) {}

    void addMembers() {
        for (std::size_t index = 0; index < entries_.size(); ++index) {
            if (!isRange(entries_[index])) {
                addSingleValue(entries_[index]);
                continue;
            }
            openEnumeration_.reset();
            if (entries_[index].equals(kDotDot))
                addUnlistedValues(index);
            else
                addRange(index);
        }
    }

  private:
    // Consecutive single values share a member.
    void addSingleValue(const TSKString& entry) {
        if (!openEnumeration_)
            openEnumeration_.emplace(addEnumeration(addChild(topUnion_, TAG_SIMPLE_TYPE)));
        const TSKString value = normalised(entry);
        openEnumeration_->add(value);
        listedNumbers_.push_back(value.atol());
    }

    // The bound on the open side of a range comes from its neighbour.
    void addRange(std::size_t index) {
        const TSKString& entry = entries_[index];
        const auto dots = static_cast<unsigned long>(entry.find(kDotDot, 0));
        const TSKString before = normalised(entry.left(dots));
        const TSKString after = normalised(entry.right(entry.length() - dots - kDotDotLength));
        if (dots == 0)
            addInterval(topUnion_, decimalText(firstAfter(numberBefore(index))), after);
        else if (entry.endsWith(kDotDot, 0))
            addInterval(topUnion_, before, lastBeforeNext(index));
        else
            addInterval(topUnion_, before, after);
    }

    // The lone "..": what lies above the number before it, and unless as many values are listed as
    // there are up to that number, also the unlisted ones below.
    void addUnlistedValues(std::size_t index) {
        const long number = numberBefore(index);
        const TSKString lower = decimalText(firstAfter(number));
        const TSKString upper = lastBeforeNext(index);
        sortOnce(listedNumbers_);
        if (static_cast<long>(listedNumbers_.size()) >= firstAfter(number)) {
            addInterval(topUnion_, lower, upper);
            return;
        }
        const Element member = addChild(topUnion_, TAG_SIMPLE_TYPE);
        Element gapUnion = addChild(member, TAG_UNION);
        addGaps(addChild(gapUnion, TAG_SIMPLE_TYPE), number);
        addInterval(gapUnion, lower, upper);
    }

    static void sortOnce(std::vector<long>& numbers) {
        std::sort(numbers.begin(), numbers.end());
        numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    }

    void addGaps(const Element& member, long end) const {
        const Enumeration gaps = addEnumeration(member);
        for (long number = 0; number < end; ++number) {
            if (!std::binary_search(listedNumbers_.begin(), listedNumbers_.end(), number))
                gaps.add(decimalText(number));
        }
    }

    [[nodiscard]] Enumeration addEnumeration(const Element& member) const {
        const Element restriction = addChild(member, TAG_RESTRICTION);
        addAttribute(restriction, TAG_BASE, xsType(type_));
        return Enumeration(restriction);
    }

    void addInterval(Element& parent, const TSKString& lower, const TSKString& upper) {
        WsdlUtil::addSimpleTypeRestrictionChildElement(parent, type_, lower, upper);
    }

    [[nodiscard]] long numberBefore(std::size_t index) const {
        constexpr long kNone = -1;  // the values begin with 0 then
        return index == 0 ? kNone : numberOf(entries_[index - 1]);
    }

    [[nodiscard]] static long firstAfter(long number) { return wrappingSum(number, 1); }

    // Empty after the last entry.
    [[nodiscard]] TSKString lastBeforeNext(std::size_t index) const {
        if (index + 1 == entries_.size())
            return {};
        return decimalText(wrappingSum(numberOf(entries_[index + 1]), -1));
    }

    Element topUnion_;
    const ITeskType& type_;
    std::vector<TSKString> entries_;
    std::optional<Enumeration> openEnumeration_;
    std::vector<long> listedNumbers_;  // sorted, and each once, where they are looked at
};

bool isTrue(const urma::IQualifier* qualifier) {
    if (qualifier == nullptr)
        return false;
    const TSKSmrPtr<ITeskValue> value = qualifier->getValue();
    return value && value->toBoolean();
}

// Gives an element its type: a named one, or an anonymous one with the restrictions of those of the
// two qualifiers that are not null.
void addType(const Element& element, const ITeskType& type, const urma::IQualifier* maxLen,
             const urma::IQualifier* valueMap) {
    if (maxLen == nullptr && valueMap == nullptr) {
        addAttribute(element, TAG_TYPE, wsCimType(type));
        return;
    }
    const Element complexType = addChild(element, TAG_COMPLEX_TYPE);
    Element simpleContent = addChild(complexType, TAG_SIMPLE_CONTENT);
    if (maxLen != nullptr)
        WsdlUtil::addRestrictionMaxLenChildElement(simpleContent, type, *maxLen->getValue());
    if (valueMap != nullptr)
        WsdlUtil::addRestrictionValueMapChildElement(simpleContent, type, *valueMap->getValue(),
                                                     false, 0);
}

void addNillable(const Element& element) {
    addAttribute(element, kNillable, "true");
}

// The same, and lets the value be nil unless it is a scalar that must be there.
void addTypeAndNillability(const Element& element, const ITeskType& type,
                           const urma::IQualifier* maxLen, const urma::IQualifier* valueMap,
                           bool mandatory) {
    addType(element, type, maxLen, valueMap);
    if (type.isArray() || !mandatory)
        addNillable(element);
}

// A global element with an anonymous type; returns its sequence.
Element addSequenceElement(const Element& parent, const TSKString& name) {
    Element element = addChild(parent, TAG_ELEMENT);
    addAttribute(element, TAG_NAME, name);
    return addChild(addChild(element, TAG_COMPLEX_TYPE), TAG_SEQUENCE);
}

TSKString classTypeName(const TSKString& className) {
    return "class:" + className + "_Type";
}

Element makeSchema() {
    return SOAPElement::makeElement(TSKSmrPtr<SOAPQName>(new SOAPQName(TAG_SCHEMA, TAG_XS)));
}

void addCommonImport(Element& root) {
    WsdlUtil::addImportEelement(root, TAG_CIM_VALUE, TSKString(TAG_CIM_VALUE) + ".xsd");
}

// The body elements of the intrinsic operations that carry a whole instance.
void addIntrinsicElements(Element& root, const TSKString& type) {
    forEachIntrinsicMethod([&](const IntrinsicMethodInfo& method) {
        if (isOwnElement(method.inputMessage))
            WsdlUtil::addElement(root, TSKString(method.name) + kInputSuffix, type);
        if (isOwnElement(method.outputMessage))
            WsdlUtil::addElement(root, TSKString(method.name) + kOutputSuffix, type);
    });
}

void addClassImports(Element& root, const TSKString& baseAddress,
                     const WsdlUtil::ClassList& classes) {
    const TSKString nameSpace = baseAddress.left(baseAddress.length() - 1);
    TSKValSlistIterator<TSKSmrPtr<ITeskClass>> next(classes);
    while (next()) {
        if (next.key())
            WsdlUtil::addImportEelement(root, nameSpace,
                                        nameSpace + "/" + next.key()->getName() + ".xsd");
    }
}

// The WSDL documents of all classes. The types of each hold the schemas of those before, too.
TSKString wsdlDocuments(const TSKString& url, const TSKString& ns,
                        const WsdlUtil::ClassList& classes) {
    const bool wrapped = classes.entries() > 1;
    TSKString documents;
    std::stringstream schemas;
    schemas.exceptions(std::ios_base::badbit);
    if (wrapped)
        documents += "<wsdl_definitions>\n";
    TSKValSlistIterator<TSKSmrPtr<ITeskClass>> next(classes);
    while (next()) {
        const ITeskClass& cimClass = *next.key();
        WsdlUtil::streamXsdDefinition(schemas, next.key());
        WSDLFile wsdl(cimClass.getName(), url, ns, schemas.str().c_str());
        wsdl.setDocumentation(descriptionOf(cimClass));
        WsdlUtil::enumerateExtrinsicsMethods(cimClass.getMethods(true), wsdl);
        documents += wsdl.toString(false);
    }
    if (wrapped)
        documents += "</wsdl_definitions>\n";
    return documents;
}

void printWhole(const Element& root, std::ostream& stream) {
    root->printXML(stream, std::numeric_limits<unsigned long>::max());
}

}  // namespace

TSKString WsdlUtil::getWsXsType(const ITeskType& type) {
    return xsType(type);
}

TSKString WsdlUtil::getWsCimType(const ITeskType& type) {
    return wsCimType(type);
}

void WsdlUtil::addElementAttribute(TSKSmrPtr<SOAPElement>& element, const TSKString& name,
                                   const TSKString& value) {
    addAttribute(element, name.data(), value);
}

void WsdlUtil::addElement(TSKSmrPtr<SOAPElement>& parent, const TSKString& name,
                          const TSKString& type) {
    Element element = addChild(parent, TAG_ELEMENT);
    addAttribute(element, TAG_NAME, name);
    addAttribute(element, TAG_TYPE, type);
}

void WsdlUtil::addAnyAttributeChildElement(TSKSmrPtr<SOAPElement>& parent) {
    Element wildcard = addChild(parent, "anyAttribute");
    addAttribute(wildcard, TAG_NS, "##any");
    addAttribute(wildcard, kProcessContents, "lax");
}

void WsdlUtil::addOpenContentChildElement(TSKSmrPtr<SOAPElement>& parent) {
    Element wildcard = addChild(parent, "any");
    addAttribute(wildcard, TAG_NS, "##other");
    addAttribute(wildcard, kProcessContents, "lax");
    addAttribute(wildcard, TAG_MIN_OCCURS, "0");
    addAttribute(wildcard, TAG_MAX_OCCURS, "unbounded");
}

void WsdlUtil::addImportEelement(TSKSmrPtr<SOAPElement>& parent, const TSKString& nameSpace,
                                 const TSKString& schemaLocation) {
    Element import = addChild(parent, TAG_IMPORT);
    addAttribute(import, TAG_NS, nameSpace);
    addAttribute(import, TAG_SCHEMA_LOCATION, schemaLocation);
}

void WsdlUtil::addRestrictionMaxLenChildElement(TSKSmrPtr<SOAPElement>& parent,
                                                const ITeskType& type, const ITeskValue& maxLen) {
    Element restriction = addChild(parent, TAG_RESTRICTION);
    addAttribute(restriction, TAG_BASE, wsCimType(type));
    const Element maxLength = addChild(restriction, TAG_MAX_LENGTH);
    addAttribute(maxLength, TAG_VALUE, maxLen.toString());
    addAnyAttributeChildElement(restriction);
}

void WsdlUtil::addRestrictionEnumerationChildElement(TSKSmrPtr<SOAPElement>& parent,
                                                     const ITeskType& type,
                                                     const ITeskValue& values, bool addAnyAttribute,
                                                     bool addMaxLength, long maxLength) {
    Element restriction = addChild(parent, TAG_RESTRICTION);
    addAttribute(restriction, TAG_BASE, wsCimType(type));
    const auto entries = values.getArrayValues();
    if (!entries || entries->entries() == 0)
        return;
    if (addMaxLength)
        addFacet(restriction, TAG_MAX_LENGTH, decimalText(maxLength));
    const Enumeration enumeration(restriction);
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> next(*entries);
    while (next()) {
        if (!next.key())
            continue;
        const TSKString text = next.key()->toString();
        const Element element = enumeration.addElement();
        const bool asWritten = !isHexadecimal(text) || isStringType(type);
        enumeration.setValue(element, asWritten ? text : normalised(text));
    }
    if (addAnyAttribute)
        addAnyAttributeChildElement(restriction);
}

void WsdlUtil::addSimpleTypeRestrictionChildElement(TSKSmrPtr<SOAPElement>& parent,
                                                    const ITeskType& type,
                                                    const TSKString& minValue,
                                                    const TSKString& maxValue) {
    const Element simpleType = addChild(parent, TAG_SIMPLE_TYPE);
    const Element restriction = addChild(simpleType, TAG_RESTRICTION);
    addAttribute(restriction, TAG_BASE, isStringType(type) ? wsCimType(type) : xsType(type));
    if (minValue.length() > 0)
        addFacet(restriction, TAG_MIN_INCLUSIVE, minValue);
    if (maxValue.length() > 0)
        addFacet(restriction, TAG_MAX_INCLUSIVE, maxValue);
}

void WsdlUtil::addRestrictionValueMapChildElement(TSKSmrPtr<SOAPElement>& parent,
                                                  const ITeskType& type, const ITeskValue& valueMap,
                                                  bool addMaxLength, long maxLength) {
    const TSKSmrPtr<ITeskType> valueType = valueMap.getType();
    if (!valueType || !valueType->isArray())
        return;
    if (!hasRange(valueMap)) {
        addRestrictionEnumerationChildElement(parent, type, valueMap, true, addMaxLength,
                                              maxLength);
        return;
    }
    Element restriction = addChild(parent, TAG_RESTRICTION);
    addAttribute(restriction, TAG_BASE, "cim:cimAnySimpleType");
    const Element simpleType = addChild(restriction, TAG_SIMPLE_TYPE);
    const Element topUnion = addChild(simpleType, TAG_UNION);
    ValueMapUnion(topUnion, type, entriesOf(valueMap)).addMembers();
    addAnyAttributeChildElement(restriction);
}

void WsdlUtil::addPropertyElement(TSKSmrPtr<SOAPElement>& parent,
                                  const urma::IPropertyDef& property) {
    Element element = addChild(parent, TAG_ELEMENT);
    addAttribute(element, TAG_NAME, property.getName());
    addPropertyTypeElement(element, property);
}

void WsdlUtil::addPropertyTypeElement(TSKSmrPtr<SOAPElement>& element,
                                      const urma::IPropertyDef& property) {
    const bool key = isTrue(property.getQualifier("Key", true));
    const bool required = isTrue(property.getQualifier("Required", true));
    const urma::IQualifier* const maxLen = property.getQualifier("MaxLen", true);
    const urma::IQualifier* const valueMap = property.getQualifier("ValueMap", false);
    // A value map takes the place of a maximum length.
    addTypeAndNillability(element, property.getType(), valueMap == nullptr ? maxLen : nullptr,
                          valueMap, key || required);
}

void WsdlUtil::addElementAttributeMinMaxOccurs(TSKSmrPtr<SOAPElement>& element,
                                               const urma::IPropertyDef& property) {
    const bool key = isTrue(property.getQualifier("Key", true));
    const bool required = isTrue(property.getQualifier("Required", true));
    const bool array = property.getType().isArray();
    if (array || !(key || required))
        addAttribute(element, TAG_MIN_OCCURS, "0");
    if (array)
        addAttribute(element, TAG_MAX_OCCURS, "unbounded");
}

void WsdlUtil::addMethodsElement(TSKSmrPtr<SOAPElement>& parent,
                                 const TSKSmrPtr<ITeskClass>& cimClass) {
    if (!cimClass)
        return;
    forEach(cimClass->getMethods(true),
            [&](const urma::IMethodDef& method) { addMethodElement(parent, method); });
}

void WsdlUtil::addMethodElement(TSKSmrPtr<SOAPElement>& parent, const urma::IMethodDef& method) {
    const TSKString name = method.getName();
    Element input = addSequenceElement(parent, name + kInputSuffix);
    Element output = addSequenceElement(parent, name + kOutputSuffix);
    forEach(method.getParameters(), [&](const urma::IParameterDef& parameter) {
        const bool isInput = isTrue(parameter.getQualifier("In", true));
        const bool isOutput = isTrue(parameter.getQualifier("Out", true));
        if (isInput)
            addMethodParamterElement(input, parameter);
        if (isOutput)
            addMethodParamterElement(output, parameter);
    });
    Element returnValue = addChild(output, TAG_ELEMENT);
    addAttribute(returnValue, TAG_NAME, "ReturnValue");
    addAttribute(returnValue, TAG_TYPE, wsCimType(method.getReturnType()));
    addNillable(returnValue);
}

void WsdlUtil::addMethodParamterElement(TSKSmrPtr<SOAPElement>& sequence,
                                        const urma::IParameterDef& parameter) {
    Element element = addChild(sequence, TAG_ELEMENT);
    addAttribute(element, TAG_NAME, parameter.getName());
    addMethodParamterTypeElement(element, parameter);
}

// Other rules than for properties: Key and Required count by their presence and only together, and
// both restrictions stand side by side.
void WsdlUtil::addMethodParamterTypeElement(TSKSmrPtr<SOAPElement>& element,
                                            const urma::IParameterDef& parameter) {
    const bool key = parameter.getQualifier("Key", false) != nullptr;
    const bool required = parameter.getQualifier("Required", false) != nullptr;
    const urma::IQualifier* const maxLen = parameter.getQualifier("MaxLen", true);
    const urma::IQualifier* const valueMap = parameter.getQualifier("ValueMap", false);
    addTypeAndNillability(element, parameter.getType(), maxLen, valueMap, key && required);
}

void WsdlUtil::addClassStructureElement(TSKSmrPtr<SOAPElement>& root,
                                        const TSKSmrPtr<ITeskClass>& cimClass) {
    if (!cimClass)
        return;
    const TSKString name = cimClass->getName();
    Element complexType = addChild(root, TAG_COMPLEX_TYPE);
    addAttribute(complexType, TAG_NAME, name + "_Type");
    Element sequence = addChild(complexType, TAG_SEQUENCE);
    bool hasProperties = false;
    forEach(cimClass->getProperties(true), [&](const urma::IPropertyDef& property) {
        Element reference = addChild(sequence, TAG_ELEMENT);
        addAttribute(reference, kRef, "class:" + property.getName());
        addElementAttributeMinMaxOccurs(reference, property);
        hasProperties = true;
    });
    if (hasProperties)
        addOpenContentChildElement(sequence);
    addAnyAttributeChildElement(complexType);
    addElement(root, name, classTypeName(name));
}

void WsdlUtil::addClassDefElement(TSKSmrPtr<SOAPElement>& root,
                                  const TSKSmrPtr<ITeskClass>& cimClass, bool declareNamespaces) {
    if (!cimClass)
        return;
    const TSKString classNamespace = TAG_CLASS_VALUE + cimClass->getName();
    addAttribute(root, TAG_TARGET_NS, classNamespace);
    if (declareNamespaces) {
        const TSKString declaration = TSKString(TAG_XMLNS) + ":";
        addAttribute(root, (declaration + TAG_XS).data(), TAG_XS_VALUE);
        addAttribute(root, (declaration + TAG_CLASS).data(), classNamespace);
        addAttribute(root, (declaration + TAG_CIM).data(), TAG_CIM_VALUE);
    }
    forEach(cimClass->getProperties(true),
            [&](const urma::IPropertyDef& property) { addPropertyElement(root, property); });
    addClassStructureElement(root, cimClass);
    addMethodsElement(root, cimClass);
}

int WsdlUtil::streamXsdDefinition(std::stringstream& stream,
                                  const TSKSmrPtr<ITeskClass>& cimClass) {
    Element root = makeSchema();
    addCommonImport(root);
    const TSKString wsmanSchema = TSKString(TAG_WSMAN_VALUE) + ".xsd";
    addImportEelement(root, wsmanSchema, wsmanSchema);
    addImportEelement(root, URI_WST, URI_WST_XSD);
    addImportEelement(root, URI_WSEN, URI_WSEN_XSD);
    addImportEelement(root, URI_CIMBINDING_XSD, URI_CIMBINDING_XSD);
    if (!cimClass)
        return 0;
    addClassDefElement(root, cimClass, false);
    addIntrinsicElements(root, classTypeName(cimClass->getName()));
    printWhole(root, stream);
    return 1;
}

int WsdlUtil::streamXsdDefinitions(std::stringstream& stream, const TSKString& baseAddress,
                                   const TSKSmrPtr<ClassList>& classes) {
    Element root = makeSchema();
    addCommonImport(root);
    if (classes) {
        if (classes->entries() > 1) {
            addClassImports(root, baseAddress, *classes);
        } else {
            TSKValSlistIterator<TSKSmrPtr<ITeskClass>> next(*classes);
            while (next())
                addClassDefElement(root, next.key(), true);
        }
    }
    printWhole(root, stream);
    return 1;
}

int WsdlUtil::streamDefinitions(std::stringstream& stream, const TSKString& url,
                                const TSKString& ns, const TSKSmrPtr<ClassList>& classes) {
    const TSKString output = wsdlDocuments(url, ns, *classes);
    stream.write(output.data(), static_cast<std::streamsize>(output.length()));
    return 1;
}

void WsdlUtil::enumerateExtrinsicsMethods(
    const CI_AutoPtr_U<urma::Iterator<const urma::IMethodDef&>>& methods, WSDLFile& wsdl) {
    forEach(methods, [&](const urma::IMethodDef& method) {
        const TSKString documentation = descriptionOf(method);
        const bool hasParameters = method.getParameters()->hasCurrent();
        wsdl.addMessage(method.getName(), hasParameters, documentation);
    });
}

#include "ObjectManager/Inspection/XmlDocument.h"

#include <libxml/parser.h>
#include <limits>
#include <new>

namespace Inspection {

namespace {

struct DeleteContext {
    void operator()(xmlParserCtxt* context) const noexcept { xmlFreeParserCtxt(context); }
};

std::string faultOf(xmlParserCtxt& context) {
    const xmlError* const error = xmlCtxtGetLastError(&context);
    if (error == nullptr)
        return "it is empty";
    std::string message = error->message == nullptr ? "unknown error" : error->message;
    while (!message.empty() && (message.back() == '\n' || message.back() == ' '))
        message.pop_back();
    return "line " + std::to_string(error->line) + ", column " + std::to_string(error->int2) +
           ": " + message;
}

const xmlChar* asXml(const char* text) noexcept {
    return reinterpret_cast<const xmlChar*>(text);
}

const char* fromXml(const xmlChar* text) noexcept {
    return reinterpret_cast<const char*>(text);
}

}  // namespace

XmlDocument::XmlDocument(std::string_view text) {
    const std::unique_ptr<xmlParserCtxt, DeleteContext> context(xmlNewParserCtxt());
    if (!context)
        throw std::bad_alloc();
    if (text.size() > std::numeric_limits<int>::max()) {
        fault_ = "it is larger than 2 GiB";
        return;
    }
    constexpr int kOptions =
        XML_PARSE_NONET | XML_PARSE_NOERROR | XML_PARSE_NOWARNING | XML_PARSE_HUGE;
    document_.reset(xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()),
                                      nullptr, nullptr, kOptions));
    if (!document_)
        fault_ = faultOf(*context);
}

const xmlNode* XmlDocument::root() const noexcept {
    return document_ ? xmlDocGetRootElement(document_.get()) : nullptr;
}

bool isElement(const xmlNode& node) noexcept {
    return node.type == XML_ELEMENT_NODE;
}

std::string_view localName(const xmlNode& element) noexcept {
    return fromXml(element.name);
}

std::string attribute(const xmlNode& element, const char* name) {
    xmlChar* const value = xmlGetNoNsProp(const_cast<xmlNode*>(&element), asXml(name));
    if (value == nullptr)
        return {};
    std::string text = fromXml(value);
    xmlFree(value);
    return text;
}

}  // namespace Inspection

#include "ObjectManager/Xml/Document.h"

#include <libxml/parser.h>
#include <limits>
#include <new>

#include "ObjectManager/Xml/ParserSetup.h"

namespace Xml {

namespace {

void ignoreEntity(void* /*context*/, const xmlChar* /*name*/, int /*type*/,
                  const xmlChar* /*publicId*/, const xmlChar* /*systemId*/,
                  xmlChar* /*content*/) noexcept {}

Context makeContext() {
    prepareThread();
    Context context(xmlNewParserCtxt());
    if (!context)
        throw std::bad_alloc();
    // Entities stand for nothing, so that none is fetched, and a few lines never become gigabytes.
    context->sax->entityDecl = ignoreEntity;
    return context;
}

const xmlChar* asXml(const char* text) noexcept {
    return reinterpret_cast<const xmlChar*>(text);
}

const char* fromXml(const xmlChar* text) noexcept {
    return reinterpret_cast<const char*>(text);
}

}  // namespace

Document::Document(std::string_view text) {
    if (text.size() > std::numeric_limits<int>::max()) {
        fault_ = "it is larger than 2 GiB";
        return;
    }
    const Context context = makeContext();
    const FirstError error(*context);
    constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_HUGE;
    document_.reset(xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()),
                                      nullptr, nullptr, kOptions));
    throwIfOutOfMemory();
    if (error.hasOccurred())
        fault_ = error.text();
    else if (!document_)
        fault_ = "it is empty";
}

const xmlNode* Document::root() const noexcept {
    return fault_ ? nullptr : xmlDocGetRootElement(document_.get());
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

}  // namespace Xml

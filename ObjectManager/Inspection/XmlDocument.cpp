#include "ObjectManager/Inspection/XmlDocument.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <libxml/globals.h>
#include <libxml/parser.h>
#include <libxml/threads.h>
#include <libxml/xmlmemory.h>
#include <limits>
#include <mutex>
#include <new>

namespace Inspection {

namespace {

struct DeleteContext {
    void operator()(xmlParserCtxt* context) const noexcept { xmlFreeParserCtxt(context); }
};
using Context = std::unique_ptr<xmlParserCtxt, DeleteContext>;

// Keeps the first error of a parser: those that follow are often its consequences.
class FirstError {
  public:
    explicit FirstError(xmlParserCtxt& context) noexcept {
        context._private = this;
        context.sax->serror = keep;
    }
    FirstError(const FirstError&) = delete;
    FirstError& operator=(const FirstError&) = delete;
    ~FirstError() { xmlResetError(&error_); }

    [[nodiscard]] bool hasOccurred() const noexcept { return error_.code != XML_ERR_OK; }

    [[nodiscard]] std::string text() const {
        std::string message = error_.message == nullptr ? "unknown error" : error_.message;
        std::replace(message.begin(), message.end(), '\n', ' ');
        message.erase(message.find_last_not_of(' ') + 1);
        return "line " + std::to_string(error_.line) + ", column " + std::to_string(error_.int2) +
               ": " + message;
    }

  private:
    // Called by the parser, which no exception may pass through.
    static void keep(void* context, xmlError* error) noexcept {
        FirstError& first =
            *static_cast<FirstError*>(static_cast<xmlParserCtxt*>(context)->_private);
        // The name of a namespace with letters beyond ASCII is read by everybody.
        const bool isHarmless = error->level == XML_ERR_WARNING || error->code == XML_WAR_NS_URI;
        if (!first.hasOccurred() && !isHarmless)
            xmlCopyError(error, &first.error_);
    }

    xmlError error_ = {};
};

// libxml2 goes on without what it could not allocate, and does not always say so. So its
// allocations of this thread that fail are noted here.
thread_local bool ranOutOfMemory = false;

void* noted(void* memory) noexcept {
    if (memory == nullptr)
        ranOutOfMemory = true;
    return memory;
}

void* allocate(std::size_t size) noexcept {
    return noted(std::malloc(size));
}

void* reallocate(void* memory, std::size_t size) noexcept {
    return noted(std::realloc(memory, size));
}

char* duplicate(const char* text) noexcept {
    return static_cast<char*>(noted(strdup(text)));
}

// The message is for a terminal, and the failure is reported by an exception.
void ignoreMessage(void* /*context*/, const char* /*format*/, ...) noexcept {}

void setUpLibrary() {
    xmlMemSetup(std::free, allocate, reallocate, duplicate);
    ranOutOfMemory = false;
    xmlInitParser();
    xmlSetGenericErrorFunc(nullptr, ignoreMessage);
    xmlThrDefSetGenericErrorFunc(nullptr, ignoreMessage);
    if (ranOutOfMemory)
        throw std::bad_alloc();
}

void ignoreEntity(void* /*context*/, const xmlChar* /*name*/, int /*type*/,
                  const xmlChar* /*publicId*/, const xmlChar* /*systemId*/,
                  xmlChar* /*content*/) noexcept {}

Context makeContext() {
    // Sets up what all parsers share, before several threads want it.
    static std::once_flag once;
    std::call_once(once, setUpLibrary);
    // Every other thread gets a state of its own at its first use. Where libxml2 cannot allocate
    // it, only this function says so; all others go on with a null pointer.
    if (xmlIsMainThread() == 0 && xmlGetGlobalState() == nullptr)
        throw std::bad_alloc();
    ranOutOfMemory = false;
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

XmlDocument::XmlDocument(std::string_view text) {
    if (text.size() > std::numeric_limits<int>::max()) {
        fault_ = "it is larger than 2 GiB";
        return;
    }
    const Context context = makeContext();
    const FirstError error(*context);
    constexpr int kOptions = XML_PARSE_NONET | XML_PARSE_HUGE;
    document_.reset(xmlCtxtReadMemory(context.get(), text.data(), static_cast<int>(text.size()),
                                      nullptr, nullptr, kOptions));
    if (ranOutOfMemory)
        throw std::bad_alloc();
    if (error.hasOccurred())
        fault_ = error.text();
    else if (!document_)
        fault_ = "it is empty";
}

const xmlNode* XmlDocument::root() const noexcept {
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

}  // namespace Inspection

#include "ObjectManager/Xml/ParserSetup.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <libxml/globals.h>
#include <libxml/threads.h>
#include <libxml/xmlmemory.h>
#include <mutex>
#include <new>

namespace Xml {

namespace {

// The allocations of libxml2 that fail on this thread are noted here.
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
    throwIfOutOfMemory();
}

}  // namespace

void prepareThread() {
    // Sets up what all parsers share, before several threads want it.
    static std::once_flag once;
    std::call_once(once, setUpLibrary);
    // Every other thread gets a state of its own at its first use. Where libxml2 cannot allocate
    // it, only this function says so; all others go on with a null pointer.
    if (xmlIsMainThread() == 0 && xmlGetGlobalState() == nullptr)
        throw std::bad_alloc();
    ranOutOfMemory = false;
}

void throwIfOutOfMemory() {
    if (ranOutOfMemory)
        throw std::bad_alloc();
}

FirstError::FirstError(xmlParserCtxt& context) noexcept {
    context._private = this;
    context.sax->serror = keep;
}

FirstError::~FirstError() {
    xmlResetError(&error_);
}

std::string FirstError::text() const {
    std::string message = error_.message == nullptr ? "unknown error" : error_.message;
    std::replace(message.begin(), message.end(), '\n', ' ');
    message.erase(message.find_last_not_of(' ') + 1);
    return "line " + std::to_string(error_.line) + ", column " + std::to_string(error_.int2) +
           ": " + message;
}

// Called by the parser, which no exception may pass through.
void FirstError::keep(void* /*userData*/, xmlError* error) noexcept {
    FirstError& first =
        *static_cast<FirstError*>(static_cast<xmlParserCtxt*>(error->ctxt)->_private);
    // The name of a namespace with letters beyond ASCII is read by everybody.
    const bool isHarmless = error->level == XML_ERR_WARNING || error->code == XML_WAR_NS_URI;
    if (!first.hasOccurred() && !isHarmless)
        xmlCopyError(error, &first.error_);
}

}  // namespace Xml

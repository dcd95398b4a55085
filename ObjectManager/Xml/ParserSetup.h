#pragma once

#include <libxml/parser.h>
#include <memory>
#include <string>

// What every use of a parser of libxml2 needs.

namespace Xml {

struct DeleteContext {
    void operator()(xmlParserCtxt* context) const noexcept { xmlFreeParserCtxt(context); }
};
using Context = std::unique_ptr<xmlParserCtxt, DeleteContext>;

/// Makes the library ready for the calling thread. Call it before each use of a parser. May be
/// called by several threads at once.
/// Errors: std::bad_alloc.
void prepareThread();

/// Throws std::bad_alloc when an allocation of libxml2 has failed on this thread since the last
/// prepareThread(). libxml2 goes on without what it could not allocate, and does not always say so.
void throwIfOutOfMemory();

/// Keeps the first error of a parser: those that follow are often its consequences.
///
/// Thread safety: belongs to one thread.
class FirstError {
  public:
    /// Takes the parser's `_private` and its error function. Must live as long as it is used.
    explicit FirstError(xmlParserCtxt& context) noexcept;
    FirstError(const FirstError&) = delete;
    FirstError& operator=(const FirstError&) = delete;
    ~FirstError();

    [[nodiscard]] bool hasOccurred() const noexcept { return error_.code != XML_ERR_OK; }

    /// "line 3, column 5: Opening and ending tag mismatch".
    [[nodiscard]] std::string text() const;

  private:
    static void keep(void* userData, xmlError* error) noexcept;

    xmlError error_ = {};
};

}  // namespace Xml

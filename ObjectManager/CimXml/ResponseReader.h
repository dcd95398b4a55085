#pragma once

#include <cstddef>
#include <exception>
#include <functional>
#include <libxml/parser.h>
#include <optional>
#include <string>
#include <string_view>

#include "ObjectManager/CimXml/Element.h"
#include "ObjectManager/CimXml/Options.h"
#include "ObjectManager/Xml/ParserSetup.h"

namespace CimXml {

/// The identifier of every message: a connection carries one request at a time.
inline constexpr const char* kMessageId = "1";

/// Reads the response to an operation (DSP0201, SIMPLERSP) as its bytes come. It is never held as a
/// whole: no more than one result, such as a class. A response is UTF-8, has no document type
/// declaration and no entities of its own.
///
/// Thread safety: belongs to one thread; several may be read by turns.
class ResponseReader {
  public:
    /// Called with each child of IRETURNVALUE; valid during the call. What it throws, read()
    /// throws.
    using OnResult = std::function<void(const Element&)>;

    /// `operation` is the name of the operation that was asked for. `limits` must outlive this.
    ResponseReader(std::string operation, const Limits& limits, OnResult onResult);
    ResponseReader(const ResponseReader&) = delete;
    ResponseReader& operator=(const ResponseReader&) = delete;
    ~ResponseReader() = default;

    /// Reads the next bytes. Errors: ServerError of the kinds kNotCimXml and kLimit;
    /// std::bad_alloc; nothing more can be read then.
    void read(std::string_view bytes);

    /// Says that the response is over. Errors: the same; kCimError when the server reports an error
    /// instead of results; kNotCimXml when the response is not complete.
    void finish();

  private:
    // What the parser calls; no exception may pass through it.
    struct Handlers;

    void readPart(std::string_view bytes, bool isLast);
    void start(std::string_view name, bool hasPrefix, int count, const xmlChar** attributes);
    void end();
    void characters(std::string_view text);
    void startResult(Tag tag, std::string_view name, int count, const xmlChar** attributes);
    void checkEnvelope(Tag tag, std::string_view name, int count, const xmlChar** attributes);
    void refuse(std::exception_ptr reason) noexcept;

    const std::string operation_;
    const Limits& limits_;
    const OnResult onResult_;
    Xml::Context context_;
    std::optional<Xml::FirstError> parserError_;
    std::exception_ptr refusal_;
    ElementRecorder recorder_;
    std::size_t depth_ = 0;
    std::size_t skippedFrom_ = 0;  // the depth of an element that is ignored with its content; 0
    std::size_t results_ = 0;
    std::size_t size_ = 0;
    std::size_t markSize_ = 0;  // of the byte order mark that the response begins with
    bool isInText_ = false;
    bool hasRoot_ = false;
    bool hasResponse_ = false;  // a whole IMETHODRESPONSE
    bool hasReturnValue_ = false;
    std::optional<int> errorCode_;
    std::string errorDescription_;
};

}  // namespace CimXml

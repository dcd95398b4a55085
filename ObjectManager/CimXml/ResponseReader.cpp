#include "ObjectManager/CimXml/ResponseReader.h"

#include <algorithm>
#include <charconv>
#include <cstring>
#include <libxml/SAX2.h>
#include <libxml/parserInternals.h>
#include <new>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/CimXml/ServerError.h"

namespace CimXml {

namespace {

using Kind = ServerError::Kind;

// How deep elements of the envelope are: CIM, MESSAGE, SIMPLERSP, IMETHODRESPONSE, and IRETURNVALUE
// or ERROR.
enum Level : std::size_t { kRoot = 1, kMessage, kSimple, kMethod, kReturn };

// The parser gets so many bytes at once, and must have used up all but so many: a longer tag or
// comment is none of CIM-XML, and the parser takes time by the square of the number of attributes.
constexpr std::size_t kMaxPart = std::size_t{16} << 10U;
constexpr std::size_t kMaxPending = kMaxPart;
constexpr int kMaxAttributes = 32;

std::string_view viewOf(const xmlChar* begin, const xmlChar* end) noexcept {
    return {reinterpret_cast<const char*>(begin), static_cast<std::size_t>(end - begin)};
}

std::string_view viewOf(const xmlChar* text) noexcept {
    return reinterpret_cast<const char*>(text);
}

// The attributes of an element as libxml2 hands them over: name, prefix, namespace, value, end.
class AttributeList {
  public:
    AttributeList(int count, const xmlChar** attributes) noexcept
        : count_(count), attributes_(attributes) {}

    template <typename Visit>
    void forEach(const Visit& visit) const {
        for (int index = 0; index < count_; ++index) {
            const xmlChar* const* const attribute = attributes_ + std::ptrdiff_t{5} * index;
            const std::optional<Attribute> known =
                attribute[1] == nullptr ? attributeOf(viewOf(attribute[0])) : std::nullopt;
            if (known)
                visit(*known, viewOf(attribute[3], attribute[4]));
        }
    }

    [[nodiscard]] std::string_view valueOf(Attribute wanted) const {
        std::string_view value;
        forEach([&](Attribute attribute, std::string_view text) {
            if (attribute == wanted)
                value = text;
        });
        return value;
    }

  private:
    int count_;
    const xmlChar** attributes_;
};

ServerError notCimXml(const std::string& reason) {
    return {Kind::kNotCimXml, "the response is not CIM-XML: " + reason};
}

// "a class has more than 4,194,304 bytes".
ServerError beyond(std::size_t limit, const std::string& subject, const std::string& unit) {
    return {Kind::kLimit, subject + " more than " + Base::withSeparators(limit) + " " + unit};
}

std::string shown(std::string_view text) {
    return Base::quoted(Base::logText(text));
}

}  // namespace

struct ResponseReader::Handlers {
    template <typename Action>
    static void guarded(void* reader, const Action& action) noexcept {
        ResponseReader& self = *static_cast<ResponseReader*>(reader);
        if (self.refusal_)
            return;
        try {
            action(self);
        } catch (...) {
            self.refuse(std::current_exception());
        }
    }

    static void startElement(void* reader, const xmlChar* name, const xmlChar* prefix,
                             const xmlChar* /*uri*/, int /*namespaces*/,
                             const xmlChar** /*namespaceList*/, int count, int /*defaulted*/,
                             const xmlChar** attributes) noexcept {
        guarded(reader, [&](ResponseReader& self) {
            self.start(viewOf(name), prefix != nullptr, count, attributes);
        });
    }

    static void endElement(void* reader, const xmlChar* /*name*/, const xmlChar* /*prefix*/,
                           const xmlChar* /*uri*/) noexcept {
        guarded(reader, [](ResponseReader& self) { self.end(); });
    }

    static void characters(void* reader, const xmlChar* text, int length) noexcept {
        guarded(reader,
                [&](ResponseReader& self) { self.characters(viewOf(text, text + length)); });
    }

    static void documentType(void* reader, const xmlChar* /*name*/, const xmlChar* /*externalId*/,
                             const xmlChar* /*systemId*/) noexcept {
        guarded(reader, [](ResponseReader& /*self*/) {
            throw notCimXml("it has a document type declaration");
        });
    }
};

ResponseReader::ResponseReader(std::string operation, const Limits& limits, OnResult onResult)
    : operation_(std::move(operation)), limits_(limits), onResult_(std::move(onResult)) {
    Xml::prepareThread();
    xmlSAXHandler handler = {};
    handler.initialized = XML_SAX2_MAGIC;
    handler.startElementNs = Handlers::startElement;
    handler.endElementNs = Handlers::endElement;
    handler.characters = Handlers::characters;
    handler.ignorableWhitespace = Handlers::characters;
    handler.cdataBlock = Handlers::characters;
    handler.internalSubset = Handlers::documentType;
    context_.reset(xmlCreatePushParserCtxt(&handler, nullptr, nullptr, 0, nullptr));
    if (!context_)
        throw std::bad_alloc();
    // Whatever the text says of itself: the header section said UTF-8.
    if (xmlSwitchEncoding(context_.get(), XML_CHAR_ENCODING_UTF8) != 0)
        throw std::bad_alloc();
    // "&amp;" in attributes is handed over as "&" only where entities are replaced; there are none
    // but those of XML itself.
    xmlCtxtUseOptions(context_.get(), XML_PARSE_NONET | XML_PARSE_IGNORE_ENC | XML_PARSE_NOENT);
    context_->userData = this;
    parserError_.emplace(*context_);
    Xml::throwIfOutOfMemory();
}

void ResponseReader::read(std::string_view bytes) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    while (size_ == markSize_ && markSize_ < kByteOrderMark.size() && !bytes.empty() &&
           bytes[0] == kByteOrderMark[markSize_]) {
        bytes.remove_prefix(1);
        ++size_;
        ++markSize_;
    }
    size_ += bytes.size();
    if (size_ > limits_.maxResponseSize) {
        throw ServerError(Kind::kLimit,
                          "the response has more than " + Base::bytesText(limits_.maxResponseSize));
    }
    for (; !bytes.empty(); bytes.remove_prefix(std::min(kMaxPart, bytes.size())))
        readPart(bytes.substr(0, kMaxPart), false);
}

void ResponseReader::finish() {
    if (!hasRoot_ || depth_ > 0)
        throw notCimXml("it is cut short");
    readPart({}, true);
    if (!hasResponse_)
        throw notCimXml("it holds no response");
    if (errorCode_) {
        const std::string text =
            errorDescription_.empty() ? "" : ": " + Base::logText(errorDescription_);
        throw ServerError(Kind::kCimError, statusText(*errorCode_) + text, *errorCode_);
    }
}

void ResponseReader::readPart(std::string_view bytes, bool isLast) {
    Xml::prepareThread();
    xmlParseChunk(context_.get(), bytes.data(), static_cast<int>(bytes.size()), isLast ? 1 : 0);
    if (refusal_)
        std::rethrow_exception(refusal_);
    Xml::throwIfOutOfMemory();
    if (parserError_->hasOccurred())
        throw notCimXml(Base::logText(parserError_->text()));
    const xmlParserInput* const input = context_->input;
    if (input != nullptr && static_cast<std::size_t>(input->end - input->cur) > kMaxPending)
        throw beyond(kMaxPending, "a tag or a comment has", "bytes");
}

void ResponseReader::refuse(std::exception_ptr reason) noexcept {
    refusal_ = std::move(reason);
    xmlStopParser(context_.get());
}

void ResponseReader::start(std::string_view name, bool hasPrefix, int count,
                           const xmlChar** attributes) {
    hasRoot_ = true;
    ++depth_;
    if (depth_ > limits_.maxDepth)
        throw beyond(limits_.maxDepth, "elements are nested in", "others");
    if (count > kMaxAttributes)
        throw beyond(kMaxAttributes, "an element has", "attributes");
    AttributeList(count, attributes).forEach([&](Attribute, std::string_view value) {
        if (value.size() > limits_.maxAttributeSize)
            throw beyond(limits_.maxAttributeSize, "an attribute has", "bytes");
    });
    if (skippedFrom_ != 0)
        return;
    const Tag tag = hasPrefix ? Tag::kUnknown : tagOf(name);
    if (depth_ > kReturn)
        startResult(tag, name, count, attributes);
    else
        checkEnvelope(tag, name, count, attributes);
}

void ResponseReader::checkEnvelope(Tag tag, std::string_view name, int count,
                                   const xmlChar** attributes) {
    static constexpr std::pair<Tag, const char*> kExpected[] = {
        {Tag::kCim, "CIM"},
        {Tag::kMessage, "MESSAGE"},
        {Tag::kSimpleResponse, "SIMPLERSP"},
        {Tag::kMethodResponse, "IMETHODRESPONSE"},
    };
    const AttributeList list(count, attributes);
    if (depth_ < kReturn) {
        const auto& [expected, expectedName] = kExpected[depth_ - 1];
        if (tag != expected)
            throw notCimXml("found the element " + shown(name) + ", expected " + expectedName);
    }
    if (depth_ == kMessage) {
        const std::string_view id = list.valueOf(Attribute::kId);
        const std::string_view version = list.valueOf(Attribute::kProtocolVersion);
        if (id != kMessageId)
            throw notCimXml("it is a response to the message " + shown(id));
        if (!version.starts_with("1."))
            throw notCimXml("its protocol version is " + shown(version));
    }
    if (depth_ == kMethod) {
        const std::string_view operation = list.valueOf(Attribute::kName);
        if (hasResponse_ || !Base::equalsIgnoringCase(operation, operation_))
            throw notCimXml("it is a response to the operation " + shown(operation));
    }
    if (depth_ != kReturn)
        return;
    if (tag == Tag::kReturnValue && !hasReturnValue_ && !errorCode_) {
        hasReturnValue_ = true;
        return;
    }
    if (tag == Tag::kReturnValue)
        throw notCimXml("it holds more than one result");
    skippedFrom_ = depth_;
    if (tag != Tag::kError)
        return;
    const std::string_view code = list.valueOf(Attribute::kCode);
    int number = 0;
    if (std::from_chars(code.data(), code.data() + code.size(), number).ptr !=
            code.data() + code.size() ||
        number <= 0)
        throw notCimXml("its error has the code " + shown(code));
    errorCode_ = number;
    errorDescription_ = list.valueOf(Attribute::kDescription);
}

void ResponseReader::startResult(Tag tag, std::string_view name, int count,
                                 const xmlChar** attributes) {
    if (depth_ == kReturn + 1 && ++results_ > limits_.maxResults)
        throw beyond(limits_.maxResults, "the response holds", "results");
    if (isInText_)
        throw notCimXml("the element " + shown(name) + " is inside of a text");
    recorder_.begin(tag);
    if (tag == Tag::kUnknown) {
        recorder_.attribute(Attribute::kName, name.substr(0, limits_.maxAttributeSize));
        skippedFrom_ = depth_;
        return;
    }
    AttributeList(count, attributes).forEach([this](Attribute attribute, std::string_view value) {
        recorder_.attribute(attribute, value);
    });
    if (recorder_.size() > limits_.maxClassSize)
        throw beyond(limits_.maxClassSize, "a class has", "bytes");
    // What a default value of a reference names is of no use without instances.
    if (tag == Tag::kValueReference)
        skippedFrom_ = depth_;
    isInText_ = holdsText(tag);
}

void ResponseReader::end() {
    const std::size_t depth = depth_--;
    if (skippedFrom_ != 0 && depth > skippedFrom_)
        return;
    skippedFrom_ = 0;
    hasResponse_ = hasResponse_ || depth == kMethod;
    if (!recorder_.isOpen())
        return;
    isInText_ = false;
    recorder_.end();
    if (recorder_.isOpen())
        return;
    onResult_(recorder_.element());
    recorder_.clear();
}

void ResponseReader::characters(std::string_view text) {
    if (skippedFrom_ != 0 || !isInText_)
        return;
    if (recorder_.size() + text.size() > limits_.maxClassSize)
        throw beyond(limits_.maxClassSize, "a class has", "bytes");
    recorder_.text(text);
}

}  // namespace CimXml

#include "ObjectManager/Http/RequestParser.h"

#include <algorithm>
#include <array>
#include <boost/asio/buffer.hpp>
#include <boost/beast/http/empty_body.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Http/RequestTarget.h"

namespace Http {

namespace {

namespace http = boost::beast::http;
using boost::beast::error_code;

std::string_view viewOf(boost::beast::string_view text) {
    return {text.data(), text.size()};
}

// Beast's parser, given a whole header section at once. Given pieces, it would check nothing
// between the first piece and the end of the header section, and it has no limit for the request
// line; therefore RequestParser checks the bytes and their number first. Keeps views into the
// header section, in its order.
class HeaderParser final : public http::request_parser<http::empty_body> {
  public:
    struct Field {
        http::field id;
        std::string_view name;
        std::string_view value;
    };

    explicit HeaderParser(std::size_t maxFields) : maxFields_(maxFields) {
        header_limit(std::numeric_limits<std::uint32_t>::max());
        body_limit(std::numeric_limits<std::uint64_t>::max());
        fields_.reserve(16);  // clients send about ten
    }

    // What is wrong with the header section, no error if nothing is.
    [[nodiscard]] error_code read(std::string_view header) {
        error_code error;
        const std::size_t length = put(boost::asio::buffer(header.data(), header.size()), error);
        if (!error && length != header.size())
            error = http::error::bad_line_ending;
        return error;
    }

    [[nodiscard]] http::verb method() const { return get().method(); }
    [[nodiscard]] std::string_view methodText() const { return viewOf(get().method_string()); }
    [[nodiscard]] std::string_view target() const { return viewOf(get().target()); }
    [[nodiscard]] bool isHttp10() const { return get().version() == 10; }
    [[nodiscard]] const std::vector<Field>& fields() const { return fields_; }

  private:
    void on_field_impl(http::field id, boost::beast::string_view name,
                       boost::beast::string_view value, error_code& error) override {
        if (fields_.size() >= maxFields_)
            error = http::error::header_limit;
        else
            fields_.push_back({id, viewOf(name), viewOf(value)});
    }

    std::size_t maxFields_;
    std::vector<Field> fields_;
};

Error badRequest(const char* text) {
    return {.status = 400, .text = text};
}

bool isForbidden(char character) {
    return Base::isControl(character) && !Base::isSpace(character);
}

std::string_view requestLineOf(std::string_view header) {
    return header.substr(0, header.find('\r'));
}

// The end of the request line if it is "HTTP/", a digit, a dot and a digit; empty if it is not.
std::string_view httpVersionOf(std::string_view header) {
    const std::string_view line = requestLineOf(header);
    const std::string_view version = line.substr(line.rfind(' ') + 1);
    const bool isVersion = version.size() == 8 && version.starts_with("HTTP/") &&
                           Base::isDigit(version[5]) && version[6] == '.' &&
                           Base::isDigit(version[7]);
    return isVersion ? version : std::string_view();
}

// `header` with the version HTTP/1.1 if it has a later one of HTTP/1, which is understood in the
// same way (RFC 9110, section 2.5); `copy` holds its bytes then.
std::string_view asHttp11(std::string_view header, std::string& copy) {
    const std::string_view version = httpVersionOf(header);
    if (!version.starts_with("HTTP/1.") || version.back() <= '1')
        return header;
    copy = header;
    copy[requestLineOf(header).size() - 1] = '1';
    return copy;
}

Error versionError(std::string_view header) {
    if (httpVersionOf(header).empty())
        return badRequest("The request line does not end with a version of HTTP.");
    if (std::ranges::count(requestLineOf(header), ' ') > 2)
        return badRequest("The request target contains a space.");
    return {.status = 505, .text = "This server supports HTTP/1.0 and HTTP/1.1."};
}

Error toError(const error_code& error, std::string_view header, const Options& options) {
    if (error == http::error::bad_method)
        return badRequest("The method is malformed.");
    if (error == http::error::bad_target)
        return badRequest("The request target is malformed.");
    if (error == http::error::bad_version)
        return versionError(header);
    if (error == http::error::bad_field)
        return badRequest("The name of a header field is malformed.");
    if (error == http::error::bad_value)
        return badRequest("The value of a header field is malformed.");
    if (error == http::error::bad_content_length)
        return badRequest("The Content-Length field is malformed or contradicts another field.");
    if (error == http::error::bad_transfer_encoding)
        return badRequest("The Transfer-Encoding field contradicts another field.");
    if (error == http::error::header_limit)
        return {.status = 431,
                .text = "The request has more than " + std::to_string(options.maxHeaderFields) +
                        " header fields."};
    return badRequest("The header section has a malformed line.");
}

// Beast would join the lines in a temporary buffer, but HeaderParser keeps views.
bool hasContinuedField(std::string_view header) {
    return header.find("\n ") != std::string_view::npos ||
           header.find("\n\t") != std::string_view::npos;
}

// What is wrong with the Host field, null if nothing is.
const char* validateHost(const HeaderParser& parser) {
    const HeaderParser::Field* host = nullptr;
    for (const HeaderParser::Field& field : parser.fields()) {
        if (field.id != http::field::host)
            continue;
        if (host != nullptr)
            return "There is more than one Host field.";
        host = &field;
    }
    if (host == nullptr)
        return parser.isHttp10() ? nullptr : "The Host field is missing.";
    return isHostWithPort(host->value) ? nullptr
                                       : "The Host field is not a host with an optional port.";
}

// Whether all transfer codings of a list are registered (RFC 9112, section 7). Bodies are dropped,
// so they need not be decoded.
bool areKnownCodings(std::string_view list) {
    constexpr std::array<std::string_view, 6> kKnown = {"chunked", "compress",   "deflate",
                                                        "gzip",    "x-compress", "x-gzip"};
    while (!list.empty()) {
        const std::string_view element = list.substr(0, list.find(','));
        list.remove_prefix(std::min(element.size() + 1, list.size()));
        const std::string_view name = Base::trimmed(element);
        const auto isName = [name](std::string_view known) {
            return Base::equalsIgnoringCase(known, name);
        };
        if (!name.empty() && std::ranges::none_of(kKnown, isName))
            return false;
    }
    return true;
}

// What is wrong with the transfer codings: one that is not known, or the end of the body cannot be
// found (RFC 9112, section 6.3).
std::optional<Error> validateTransferCodings(const HeaderParser& parser) {
    bool isEndless = false;
    for (const HeaderParser::Field& field : parser.fields()) {
        if (field.id != http::field::transfer_encoding)
            continue;
        if (!areKnownCodings(field.value))
            return Error{.status = 501, .text = "A transfer coding is not known."};
        isEndless = !parser.chunked();
    }
    if (isEndless)
        return badRequest("The last transfer coding is not \"chunked\".");
    return std::nullopt;
}

// The target of CONNECT is an authority, which the server is not asked about as a resource.
std::variant<RequestTarget, Error> targetOf(const HeaderParser& parser, bool usesTls) {
    if (parser.method() == http::verb::connect)
        return Error{
            .status = 405, .text = "This server is not a proxy.", .allow = "GET, HEAD, OPTIONS"};
    if (parser.method() == http::verb::options && parser.target() == "*")
        return RequestTarget{.path = "*", .authority = {}};
    return parseRequestTarget(parser.target(), usesTls);
}

TSKHTTPRequest makeMessage(const HeaderParser& parser, const RequestTarget& target) {
    TSKHTTPRequest message(TSKString(parser.methodText()), TSKString(std::string_view(target.path)),
                           parser.isHttp10() ? "HTTP/1.0" : "HTTP/1.1");
    for (const HeaderParser::Field& field : parser.fields())
        message.setHeaderField(TSKString(field.name), TSKString(field.value), true);
    if (!target.authority.empty())
        message.setHeaderField("Host", TSKString(std::string_view(target.authority)), false);
    return message;
}

// Reads a header section with the empty line at its end.
std::variant<TSKHTTPRequest, Error> parseHeader(std::string_view header, const Options& options,
                                                bool usesTls) {
    if (hasContinuedField(header))
        return badRequest("A header field continues on a second line.");
    HeaderParser parser(options.maxHeaderFields);
    std::string copy;
    if (const error_code error = parser.read(asHttp11(header, copy)))
        return toError(error, header, options);
    if (auto error = validateTransferCodings(parser))
        return *std::move(error);
    if (const char* const fault = validateHost(parser))
        return badRequest(fault);

    auto target = targetOf(parser, usesTls);
    if (auto* error = std::get_if<Error>(&target))
        return std::move(*error);
    return makeMessage(parser, std::get<RequestTarget>(target));
}

}  // namespace

RequestParser::State RequestParser::parse(std::string_view received) {
    while (position_ < received.size()) {
        const char byte = received[position_];
        const State state = check(byte);
        if (state == State::kRefused)
            return state;
        ++position_;
        previous_ = byte;
        if (state == State::kComplete)
            return finish(received.substr(start_, position_ - start_));
    }
    return State::kIncomplete;
}

// Checks the byte at `position_`. Complete means that the header section ends with it.
RequestParser::State RequestParser::check(char byte) {
    if (position_ >= options_.maxHeaderSize)
        return refuse({.status = 431,
                       .text = "The header section is longer than " +
                               std::to_string(options_.maxHeaderSize) + " bytes."});
    if ((byte == '\n') != (previous_ == '\r'))
        return refuse(badRequest("A line does not end with CR LF."));
    if (byte == '\n')
        return endLine();
    if (isForbidden(byte))
        return refuse(badRequest("The header section contains a control character."));
    const bool isInRequestLine = lineStart_ == start_ && byte != '\r';
    if (isInRequestLine && position_ - lineStart_ >= options_.maxRequestLine)
        return refuse({.status = 414,
                       .text = "The request line is longer than " +
                               std::to_string(options_.maxRequestLine) + " bytes."});
    return State::kIncomplete;
}

RequestParser::State RequestParser::endLine() {
    const bool isEmpty = position_ - lineStart_ == 1;
    if (isEmpty && lineStart_ > start_)
        return State::kComplete;
    lineStart_ = position_ + 1;
    if (isEmpty)
        start_ = lineStart_;
    return State::kIncomplete;
}

RequestParser::State RequestParser::refuse(Error error) {
    error_ = std::move(error);
    return State::kRefused;
}

RequestParser::State RequestParser::finish(std::string_view header) {
    auto parsed = parseHeader(header, options_, usesTls_);
    if (auto* error = std::get_if<Error>(&parsed))
        return refuse(std::move(*error));
    request_ = std::move(std::get<TSKHTTPRequest>(parsed));
    return State::kComplete;
}

}  // namespace Http

#include "ObjectManager/Http/RequestHead.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/beast/http/basic_parser.hpp>
#include <boost/beast/http/error.hpp>
#include <cstdint>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/Http/HostField.h"
#include "ObjectManager/Http/RequestTarget.h"

namespace Http {

namespace {

namespace http = boost::beast::http;
using boost::beast::error_code;

std::string_view viewOf(boost::beast::string_view text) {
    return {text.data(), text.size()};
}

// Notes what stands in a head; the texts are parts of the head. No body is ever read.
class HeadParser final : public http::basic_parser<true> {
  public:
    struct Field {
        http::field id;
        std::string_view name;
        std::string_view value;
    };

    explicit HeadParser(std::size_t mostFields) : mostFields_(mostFields) {
        header_limit(std::numeric_limits<std::uint32_t>::max());
        body_limit(std::numeric_limits<std::uint64_t>::max());
    }

    // What is wrong with the head, no error when nothing is.
    [[nodiscard]] error_code read(std::string_view head) {
        error_code error;
        const std::size_t length = put(boost::asio::buffer(head.data(), head.size()), error);
        if (!error && length != head.size())
            error = http::error::bad_line_ending;
        return error;
    }

    [[nodiscard]] http::verb method() const { return method_; }
    [[nodiscard]] std::string_view methodText() const { return methodText_; }
    [[nodiscard]] std::string_view target() const { return target_; }
    [[nodiscard]] const char* protocol() const { return version_ == 10 ? "HTTP/1.0" : "HTTP/1.1"; }
    [[nodiscard]] bool needsHost() const { return version_ > 10; }
    [[nodiscard]] const std::vector<Field>& fields() const { return fields_; }

  private:
    void on_request_impl(http::verb method, boost::beast::string_view methodText,
                         boost::beast::string_view target, int version,
                         error_code& /*error*/) override {
        method_ = method;
        methodText_ = viewOf(methodText);
        target_ = viewOf(target);
        version_ = version;
    }
    void on_field_impl(http::field id, boost::beast::string_view name,
                       boost::beast::string_view value, error_code& error) override {
        if (fields_.size() >= mostFields_)
            error = http::error::header_limit;
        else
            fields_.push_back({id, viewOf(name), viewOf(value)});
    }
    void on_response_impl(int /*code*/, boost::beast::string_view /*reason*/, int /*version*/,
                          error_code& /*error*/) override {}
    void on_header_impl(error_code& /*error*/) override {}
    void on_body_init_impl(const boost::optional<std::uint64_t>& /*length*/,
                           error_code& /*error*/) override {}
    std::size_t on_body_impl(boost::beast::string_view body, error_code& /*error*/) override {
        return body.size();
    }
    void on_chunk_header_impl(std::uint64_t /*size*/, boost::beast::string_view /*extensions*/,
                              error_code& /*error*/) override {}
    std::size_t on_chunk_body_impl(std::uint64_t /*remain*/, boost::beast::string_view body,
                                   error_code& /*error*/) override {
        return body.size();
    }
    void on_finish_impl(error_code& /*error*/) override {}

    std::size_t mostFields_;
    http::verb method_ = http::verb::unknown;
    std::string_view methodText_;
    std::string_view target_;
    int version_ = 0;
    std::vector<Field> fields_;
};

Refusal malformed(const char* text) {
    return {.status = 400, .text = text};
}

// Whether the request line ends with "HTTP/", a digit, a dot and a digit.
bool namesHttpVersion(std::string_view head) {
    const std::string_view line = head.substr(0, head.find('\r'));
    const std::string_view version = line.substr(line.rfind(' ') + 1);
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    return version.size() == 8 && version.starts_with("HTTP/") && isDigit(version[5]) &&
           version[6] == '.' && isDigit(version[7]);
}

Refusal refusalOf(const error_code& error, std::string_view head, const RequestLimits& limits) {
    if (error == http::error::bad_method)
        return malformed("The method is malformed.");
    if (error == http::error::bad_target)
        return malformed("The request target is malformed.");
    if (error == http::error::bad_version) {
        if (namesHttpVersion(head))
            return {.status = 505, .text = "This server speaks HTTP/1.0 and HTTP/1.1."};
        return malformed("The request line does not end with a version of HTTP.");
    }
    if (error == http::error::bad_field)
        return malformed("The name of a header field is malformed.");
    if (error == http::error::bad_value)
        return malformed("The value of a header field is malformed.");
    if (error == http::error::bad_content_length)
        return malformed("The Content-Length field is malformed or contradicts another field.");
    if (error == http::error::bad_transfer_encoding)
        return malformed("The Transfer-Encoding field contradicts another field.");
    if (error == http::error::header_limit)
        return {.status = 431,
                .text = "The request has more than " + std::to_string(limits.mostFields) +
                        " header fields."};
    return malformed("The head of the request is incomplete or has a malformed line.");
}

// Beast joins the lines in a buffer of its own; the parser's fields are parts of the head.
bool hasContinuedField(std::string_view head) {
    return head.find("\n ") != std::string_view::npos ||
           head.find("\n\t") != std::string_view::npos;
}

// Why the Host field is refused, null when it is not.
const char* faultOfHost(const HeadParser& parser) {
    const HeadParser::Field* host = nullptr;
    for (const HeadParser::Field& field : parser.fields()) {
        if (field.id != http::field::host)
            continue;
        if (host != nullptr)
            return "There is more than one Host field.";
        host = &field;
    }
    if (host == nullptr)
        return parser.needsHost() ? "The Host field is missing." : nullptr;
    return isHostField(host->value) ? nullptr
                                    : "The Host field is not a host with an optional port.";
}

// Whether there is a transfer coding that does not end by itself (RFC 9112, section 6.3).
bool hasEndlessCoding(const HeadParser& parser) {
    if (parser.chunked())
        return false;
    return std::ranges::any_of(parser.fields(), [](const HeadParser::Field& field) {
        return field.id == http::field::transfer_encoding;
    });
}

TSKHTTPRequest makeRequest(const HeadParser& parser, const RequestTarget& target) {
    TSKHTTPRequest request(TSKString(parser.methodText()), TSKString(std::string_view(target.path)),
                           parser.protocol());
    for (const HeadParser::Field& field : parser.fields())
        request.setHeaderField(TSKString(field.name), TSKString(field.value), true);
    if (!target.authority.empty())
        request.setHeaderField("Host", TSKString(std::string_view(target.authority)), false);
    return request;
}

}  // namespace

std::variant<RequestHead, Refusal> parseRequestHead(std::string_view head,
                                                    const RequestLimits& limits) {
    if (hasContinuedField(head))
        return malformed("A header field is continued on a second line.");
    HeadParser parser(limits.mostFields);
    if (const error_code error = parser.read(head))
        return refusalOf(error, head, limits);
    if (hasEndlessCoding(parser))
        return malformed("The last transfer coding is not \"chunked\".");
    if (const char* const fault = faultOfHost(parser))
        return malformed(fault);
    if (parser.method() == http::verb::connect || parser.method() == http::verb::trace)
        return Refusal{.status = 501, .text = "This method is not implemented."};

    auto target = parseRequestTarget(parser.target());
    if (auto* refusal = std::get_if<Refusal>(&target))
        return std::move(*refusal);
    return RequestHead{.request = makeRequest(parser, std::get<RequestTarget>(target)),
                       .announcesBody = !parser.is_done()};
}

}  // namespace Http

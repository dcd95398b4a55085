#include "ObjectManager/Http/ErrorResponses.h"

#include <boost/beast/http/status.hpp>
#include <string_view>
#include <utility>

namespace Http {

namespace {

// `text` is a response.
Response makeResponse(std::string text) {
    return std::move(Response::make(std::move(text)).value());
}

// The queue for password hashes, the longest of those that make a server refuse requests, is empty
// after this time.
constexpr std::string_view kRetryAfter = "Retry-After: 5\r\n";

}  // namespace

Response errorResponse(const Error& error, bool withoutBody) {
    const boost::beast::string_view reason =
        boost::beast::http::obsolete_reason(boost::beast::http::int_to_status(error.status));
    const std::string body = error.text + "\n";
    std::string text = "HTTP/1.1 " + std::to_string(error.status) + " ";
    text += std::string_view(reason.data(), reason.size());
    text +=
        "\r\n"
        "Connection: close\r\n";
    if (!error.allow.empty())
        text += "Allow: " + error.allow + "\r\n";
    if (error.status == 503)
        text += kRetryAfter;
    text +=
        "Content-Type: text/plain; charset=utf-8\r\n"
        "Content-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body;
    Response response = makeResponse(std::move(text));
    if (withoutBody)
        response.dropBody();
    return response;
}

Response notModifiedResponse(const std::string& tag) {
    return makeResponse(
        "HTTP/1.1 304 Not Modified\r\n"
        "Connection: close\r\n"
        "ETag: " +
        tag + "\r\n\r\n");
}

Response optionsResponse(const std::string& allow) {
    return makeResponse(
        "HTTP/1.1 204 No Content\r\n"
        "Connection: close\r\n"
        "Allow: " +
        allow + "\r\n\r\n");
}

Response authenticationChallenge() {
    return makeResponse(
        "HTTP/1.1 401 Unauthorized\r\n"
        "Connection: close\r\n"
        "WWW-Authenticate: Basic realm=\"tesk\", charset=\"UTF-8\"\r\n"
        "Content-Length: 0\r\n\r\n");
}

}  // namespace Http

#include "ObjectManager/Http/ErrorResponses.h"

#include <boost/beast/http/status.hpp>
#include <string_view>
#include <utility>

namespace Http {

namespace {

// `text` is a response.
Response makeResponse(std::string text, bool withoutBody) {
    return std::move(Response::make(std::move(text), withoutBody).value());
}

}  // namespace

Response errorResponse(const Error& error, bool withoutBody) {
    const boost::beast::string_view reason =
        boost::beast::http::obsolete_reason(boost::beast::http::int_to_status(error.status));
    const std::string body = error.text + "\n";
    std::string text = "HTTP/1.1 " + std::to_string(error.status) + " ";
    text += std::string_view(reason.data(), reason.size());
    text +=
        "\r\n"
        "Connection: close\r\n"
        "Content-Type: text/plain; charset=utf-8\r\n"
        "Content-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body;
    return makeResponse(std::move(text), withoutBody);
}

Response authenticationChallenge() {
    return makeResponse(
        "HTTP/1.1 401 Unauthorized\r\n"
        "Connection: close\r\n"
        "WWW-Authenticate: Basic realm=\"tesk\", charset=\"UTF-8\"\r\n"
        "Content-Length: 0\r\n\r\n",
        true);
}

}  // namespace Http

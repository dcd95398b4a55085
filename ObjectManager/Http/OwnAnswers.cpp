#include "ObjectManager/Http/OwnAnswers.h"

#include <boost/beast/http/status.hpp>
#include <string>
#include <string_view>
#include <utility>

namespace Http {

namespace {

// What is written here is a response.
Answer makeAnswer(std::string response, bool headOnly) {
    return std::move(Answer::make(std::move(response), headOnly).value());
}

}  // namespace

Answer answerOf(const Refusal& refusal, bool headOnly) {
    const boost::beast::string_view reason =
        boost::beast::http::obsolete_reason(boost::beast::http::int_to_status(refusal.status));
    const std::string body = refusal.text + "\n";
    std::string response = "HTTP/1.1 " + std::to_string(refusal.status) + " ";
    response += std::string_view(reason.data(), reason.size());
    response +=
        "\r\n"
        "Connection: close\r\n"
        "Content-Type: text/plain; charset=utf-8\r\n"
        "Content-Length: " +
        std::to_string(body.size()) + "\r\n\r\n" + body;
    return makeAnswer(std::move(response), headOnly);
}

Answer makeChallenge() {
    return makeAnswer(
        "HTTP/1.1 401 Unauthorized\r\n"
        "Connection: close\r\n"
        "WWW-Authenticate: Basic realm=\"tesk\", charset=\"UTF-8\"\r\n"
        "Content-Length: 0\r\n\r\n",
        true);
}

}  // namespace Http

#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Http/ErrorResponses.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"

namespace {

std::string sent(const Http::Response& response) {
    std::string text;
    for (const boost::asio::const_buffer& part : response.unsent())
        text.append(static_cast<const char*>(part.data()), part.size());
    return withoutDate(text);
}

TEST(ErrorResponses, TheBodyIsTheText) {
    EXPECT_EQ(sent(Http::errorResponse({.status = 400, .text = "The method is malformed."}, false)),
              "HTTP/1.1 400 Bad Request\r\n"
              "Connection: close\r\n"
              "Content-Type: text/plain; charset=utf-8\r\n"
              "Content-Length: 25\r\n"
              "\r\n"
              "The method is malformed.\n");
}

TEST(ErrorResponses, AMethodThatIsNotAllowedGetsTheOthers) {
    EXPECT_EQ(
        sent(Http::errorResponse({.status = 405, .text = "No.", .allow = "GET, HEAD"}, false)),
        "HTTP/1.1 405 Method Not Allowed\r\n"
        "Connection: close\r\n"
        "Allow: GET, HEAD\r\n"
        "Content-Type: text/plain; charset=utf-8\r\n"
        "Content-Length: 4\r\n"
        "\r\n"
        "No.\n");
}

TEST(ErrorResponses, AnOverloadedServerSaysWhenToTryAgain) {
    EXPECT_EQ(sent(Http::errorResponse({.status = 503, .text = "No."}, false)),
              "HTTP/1.1 503 Service Unavailable\r\n"
              "Connection: close\r\n"
              "Retry-After: 5\r\n"
              "Content-Type: text/plain; charset=utf-8\r\n"
              "Content-Length: 4\r\n"
              "\r\n"
              "No.\n");
}

TEST(ErrorResponses, ABodyThatTheClientHasIsNotSent) {
    EXPECT_EQ(sent(Http::notModifiedResponse("\"a\"")),
              "HTTP/1.1 304 Not Modified\r\nConnection: close\r\nETag: \"a\"\r\n\r\n");
}

TEST(ErrorResponses, OptionsGetsTheMethods) {
    EXPECT_EQ(sent(Http::optionsResponse("GET, OPTIONS")),
              "HTTP/1.1 204 No Content\r\nConnection: close\r\nAllow: GET, OPTIONS\r\n\r\n");
}

TEST(ErrorResponses, TheBodyIsLeftOutForHead) {
    EXPECT_EQ(sent(Http::errorResponse({.status = 404, .text = "No."}, true)),
              "HTTP/1.1 404 Not Found\r\n"
              "Connection: close\r\n"
              "Content-Type: text/plain; charset=utf-8\r\n"
              "Content-Length: 4\r\n"
              "\r\n");
}

TEST(ErrorResponses, EveryStatusHasItsReasonPhrase) {
    const auto statusLine = [](unsigned status) {
        const std::string text = sent(Http::errorResponse({.status = status, .text = "x"}, false));
        return text.substr(0, text.find("\r\n"));
    };
    EXPECT_EQ(statusLine(408), "HTTP/1.1 408 Request Timeout");
    EXPECT_EQ(statusLine(414), "HTTP/1.1 414 URI Too Long");
    EXPECT_EQ(statusLine(431), "HTTP/1.1 431 Request Header Fields Too Large");
    EXPECT_EQ(statusLine(500), "HTTP/1.1 500 Internal Server Error");
    EXPECT_EQ(statusLine(501), "HTTP/1.1 501 Not Implemented");
    EXPECT_EQ(statusLine(503), "HTTP/1.1 503 Service Unavailable");
    EXPECT_EQ(statusLine(505), "HTTP/1.1 505 HTTP Version Not Supported");
}

TEST(ErrorResponses, TheChallengeRevealsNothingElse) {
    EXPECT_EQ(sent(Http::authenticationChallenge()),
              "HTTP/1.1 401 Unauthorized\r\n"
              "Connection: close\r\n"
              "WWW-Authenticate: Basic realm=\"tesk\", charset=\"UTF-8\"\r\n"
              "Content-Length: 0\r\n"
              "\r\n");
}

}  // namespace

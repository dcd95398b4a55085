#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Http/ErrorPage.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"

namespace {

bool asks(const char* accept) {
    TSKHTTPRequest request("GET", "/", "HTTP/1.1");
    request.setHeaderField("Accept", accept, true);
    return Http::asksForPage(request);
}

std::string pageFor(const std::string& response, const char* path) {
    Http::Response made = Http::Response::make(response).value();
    Http::addErrorPage(made, path);
    std::string text;
    for (const boost::asio::const_buffer& part : made.unsent())
        text.append(static_cast<const char*>(part.data()), part.size());
    return withoutDate(text);
}

TEST(ErrorPage, IsForClientsThatNameHtml) {
    for (const char* const accept :
         {"text/html", "text/html,application/xhtml+xml,application/xml;q=0.9,*/*;q=0.8",
          "text/plain , TEXT/HTML ; q=0.5", "text/html;level=1", "text/html;q=0.001",
          ",,text/html"})
        EXPECT_TRUE(asks(accept)) << accept;
    for (const char* const accept : {"", "*/*", "text/*", "text/htmlx", "text/html;q=0",
                                     "text/html; Q=0.000", "a;b=text/html", "application/xml"})
        EXPECT_FALSE(asks(accept)) << accept;
    EXPECT_FALSE(Http::asksForPage(TSKHTTPRequest("GET", "/", "HTTP/1.1")));
}

TEST(ErrorPage, FieldsOfOneNameAreOneList) {
    TSKHTTPRequest request("GET", "/", "HTTP/1.1");
    request.setHeaderField("Accept", "text/plain", true);
    request.setHeaderField("accept", "text/html", true);
    EXPECT_TRUE(Http::asksForPage(request));
}

TEST(ErrorPage, SaysWhatIsWrongAndLeadsToTheStart) {
    const std::string body =
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta name=\"color-scheme\" content=\"light dark\">\n"
        "<link rel=\"icon\" href=\"data:,\">\n<title>404 Not "
        "Found</title>\n</head>\n<body>\n<main>\n"
        "<h1>404 Not Found</h1>\n<p>There is nothing at this address.</p>\n"
        "<p><a href=\"./../../\">Start page</a></p>\n</main>\n</body>\n</html>\n";
    EXPECT_EQ(
        pageFor("HTTP/1.1 404 Nothing\r\nConnection: close\r\nX: y\r\n\r\n",
                "/root/cimv2/<script>"),
        "HTTP/1.1 404 Nothing\r\n"
        "Content-Security-Policy: default-src 'none'; img-src data:; frame-ancestors 'none'\r\n"
        "X-Content-Type-Options: nosniff\r\nVary: Accept\r\nConnection: close\r\nX: y\r\n"
        "Content-Type: text/html; charset=utf-8\r\nContent-Length: " +
            std::to_string(body.size()) + "\r\n\r\n" + body);
}

TEST(ErrorPage, HasASentenceForEveryStatus) {
    const auto sentence = [](const char* status) {
        const std::string page =
            pageFor("HTTP/1.1 " + std::string(status) + " No\r\nConnection: close\r\n\r\n", "/");
        const std::size_t begin = page.find("</h1>\n<p>") + 9;
        return page.substr(begin, page.find("</p>", begin) - begin);
    };
    EXPECT_EQ(sentence("401"), "A user name and a password are needed here.");
    EXPECT_EQ(sentence("403"), "This user may not see what is at this address.");
    EXPECT_EQ(sentence("410"), "The server does not accept this request.");
    EXPECT_EQ(sentence("500"), "The server failed; its log says why.");
    EXPECT_EQ(sentence("599"), "The server failed; its log says why.");
}

}  // namespace

#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Http/Response.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"

namespace {

using Http::dateField;
using Http::Response;

// What would be sent now.
std::string unsentOf(const Response& response) {
    std::string text;
    for (const boost::asio::const_buffer& part : response.unsent())
        text.append(static_cast<const char*>(part.data()), part.size());
    return text;
}

std::string sent(const std::string& text, bool withoutBody = false) {
    Response response = Response::make(text).value();
    if (withoutBody)
        response.dropBody();
    return unsentOf(response);
}

TEST(Response, TheDateFollowsTheStatusLine) {
    const std::string response =
        "HTTP/1.1 200 OK\r\nConnection: close\r\nX: y\r\n\r\nbody\r\n\r\nmore";
    EXPECT_EQ(sent(response).substr(0, 23), "HTTP/1.1 200 OK\r\nDate: ");
    EXPECT_EQ(withoutDate(sent(response)), response);
}

TEST(Response, AMissingConnectionFieldIsAdded) {
    EXPECT_EQ(withoutDate(sent("HTTP/1.1 404 No\r\n\r\n")),
              "HTTP/1.1 404 No\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(
        withoutDate(sent("HTTP/1.1 200 OK\r\nX: Connection: \r\n\r\nConnection: close\r\n")),
        "HTTP/1.1 200 OK\r\nConnection: close\r\nX: Connection: \r\n\r\nConnection: close\r\n");
    EXPECT_EQ(withoutDate(sent("HTTP/1.1 200 OK\r\nX: y\r\ncONNECTION:close\r\n\r\n")),
              "HTTP/1.1 200 OK\r\nX: y\r\ncONNECTION:close\r\n\r\n");
}

TEST(Response, TheBodyIsLeftOutForHead) {
    EXPECT_EQ(withoutDate(sent(
                  "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 4\r\n\r\nbody", true)),
              "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 4\r\n\r\n");
}

TEST(Response, AnotherBodyBringsItsOwnFields) {
    Response response =
        Response::make(
            "HTTP/1.0 404 No\r\nA: b\r\ncontent-type: c\r\nContent-Length: 4\r\nETag: \"a\"\r\n"
            "Transfer-Encoding: d\r\nConnection: close\r\n\r\nbody")
            .value();
    response.setBody("text/plain", "other");
    EXPECT_EQ(withoutDate(unsentOf(response)),
              "HTTP/1.1 404 No\r\nA: b\r\nConnection: close\r\nContent-Type: text/plain\r\n"
              "Content-Length: 5\r\n\r\nother");
    EXPECT_EQ(response.body(), "other");
}

TEST(Response, OnlyAResponseIsSent) {
    for (const char* const response :
         {"", "body", "HTTP/1.1 200 OK\r\n", "HTTP/1.1 200 OK\n\n", "HTTP/2 200\r\n\r\n",
          " HTTP/1.1 200 OK\r\n\r\n", "HTTP/1.1 200 OK\r\nX: y\r\n", "HTTP/1.\r\n\r\n",
          "HTTP/1.1\r\n\r\n", "HTTP/1.x 200 OK\r\n\r\n", "HTTP/1.10 200\r\n\r\n"})
        EXPECT_FALSE(Response::make(response).has_value()) << response;
}

TEST(Response, TheVersionIsThatOfTheServer) {
    EXPECT_EQ(withoutDate(sent("HTTP/1.0 200 OK\r\nConnection: close\r\n\r\nHTTP/1.0")),
              "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nHTTP/1.0");
}

TEST(Response, TellsWhatTheProviderWrote) {
    const Response response =
        Response::make("HTTP/1.1 204 OK\r\nA: \r\nnothing\r\nb:\t c d \r\nB: e\r\n\r\nb: f\r\n\r\n")
            .value();
    EXPECT_EQ(response.status(), 204U);
    EXPECT_EQ(response.field("a"), "");
    EXPECT_EQ(response.field("nothing"), "");
    EXPECT_EQ(response.field("B"), "c d");
    EXPECT_EQ(response.field("Date"), std::nullopt);
    EXPECT_EQ(response.field("HTTP/1.1 204 OK"), std::nullopt);
    EXPECT_EQ(response.body(), "b: f\r\n\r\n");
    EXPECT_EQ(Response::make("HTTP/1.0 404\r\n\r\n").value().status(), 404U);
    EXPECT_EQ(Response::make("HTTP/1.1 \r\n\r\n").value().status(), 0U);
    EXPECT_EQ(Response::make("HTTP/1.1 abc\r\n\r\n").value().status(), 0U);
}

TEST(Response, AFieldCanBeAdded) {
    Response response = Response::make("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nbody").value();
    response.addField("ETag", "\"a\"");
    EXPECT_EQ(withoutDate(unsentOf(response)),
              "HTTP/1.1 200 OK\r\nETag: \"a\"\r\nConnection: close\r\n\r\nbody");
}

TEST(Response, ABodyThatIsLeftOutTakesNoMemory) {
    Response response =
        Response::make("HTTP/1.1 200 OK\r\n\r\n" + std::string(100'000, 'x')).value();
    EXPECT_GE(response.memorySize(), 100'000U);
    response.dropBody();
    EXPECT_LT(response.memorySize(), 100U);
    EXPECT_EQ(response.body(), "");
}

TEST(Response, IsSentInPiecesOfAnySize) {
    const std::string written = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nbody";
    const std::string whole = sent(written);
    for (std::size_t piece = 1; piece <= whole.size(); ++piece) {
        Response response = Response::make(written).value();
        std::string text;
        while (!response.isSent()) {
            const std::string next = unsentOf(response).substr(0, piece);
            response.consume(next.size());
            text += next;
        }
        EXPECT_EQ(withoutDate(text), written) << piece;
        EXPECT_EQ(unsentOf(response), "");
    }
}

TEST(Response, TellsHowMuchOfTheBodyIsSent) {
    Response response = Response::make("HTTP/1.1 200 OK\r\n\r\nbody").value();
    const std::size_t size = unsentOf(response).size();
    EXPECT_EQ(response.sentBodyBytes(), 0U);
    response.consume(size - 4);
    EXPECT_EQ(response.sentBodyBytes(), 0U);
    response.consume(1);
    EXPECT_EQ(response.sentBodyBytes(), 1U);
    response.consume(3);
    EXPECT_EQ(response.sentBodyBytes(), 4U);
}

TEST(Response, TheBodyIsNotCopied) {
    std::string written =
        "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + std::string(100'000, 'x');
    const char* const bytes = written.data();
    const std::size_t statusLine = 17;
    const Response response = Response::make(std::move(written)).value();
    EXPECT_EQ(response.unsent()[0].data(), bytes);
    EXPECT_EQ(response.unsent()[2].data(), bytes + statusLine);
}

TEST(DateField, IsWrittenAsRfc9110Shows) {
    EXPECT_EQ(dateField(784'111'777), "Date: Sun, 06 Nov 1994 08:49:37 GMT\r\n");
}

TEST(DateField, EveryDayAndMonthHasItsName) {
    EXPECT_EQ(dateField(0), "Date: Thu, 01 Jan 1970 00:00:00 GMT\r\n");
    EXPECT_EQ(dateField(1'709'164'800), "Date: Thu, 29 Feb 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(dateField(1'711'929'599), "Date: Sun, 31 Mar 2024 23:59:59 GMT\r\n");
    EXPECT_EQ(dateField(1'711'929'600), "Date: Mon, 01 Apr 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(dateField(1'715'040'000), "Date: Tue, 07 May 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(dateField(1'718'150'400), "Date: Wed, 12 Jun 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(dateField(1'721'347'200), "Date: Fri, 19 Jul 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(dateField(1'723'852'800), "Date: Sat, 17 Aug 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(dateField(1'725'840'000), "Date: Mon, 09 Sep 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(dateField(1'729'555'200), "Date: Tue, 22 Oct 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(dateField(1'735'603'200), "Date: Tue, 31 Dec 2024 00:00:00 GMT\r\n");
    EXPECT_EQ(dateField(253'402'300'799), "Date: Fri, 31 Dec 9999 23:59:59 GMT\r\n");
}

std::string sentWithInsertion(const std::string& text) {
    Response response = Response::make(text).value();
    response.insertIntoBody(2, "--");
    return withoutDate(unsentOf(response));
}

TEST(Response, AnInsertionIntoTheBodyChangesTheLength) {
    EXPECT_EQ(sentWithInsertion("HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 9\r\n"
                                "X: y\r\n\r\nbody body"),
              "HTTP/1.1 200 OK\r\nContent-Length: 11\r\nConnection: close\r\nX: y\r\n\r\n"
              "bo--dy body");
    EXPECT_EQ(sentWithInsertion("HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nbody"),
              "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nbo--dy");
}

TEST(Response, AnInsertionIntoTheBodyTakesNoMemory) {
    std::string text = "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 100\r\n\r\n" +
                       std::string(100, 'x');
    text.shrink_to_fit();
    Response response = Response::make(std::move(text)).value();
    const std::size_t before = response.memorySize();
    response.insertIntoBody(50, "s");
    EXPECT_EQ(response.memorySize(), before);
    EXPECT_EQ(response.body(), std::string(50, 'x') + "s" + std::string(50, 'x'));
}

}  // namespace

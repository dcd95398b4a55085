#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Http/Answer.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"

namespace {

using Http::Answer;

// What would be sent now.
std::string unsentOf(const Answer& answer) {
    std::string text;
    for (const boost::asio::const_buffer& part : answer.unsent())
        text.append(static_cast<const char*>(part.data()), part.size());
    return text;
}

std::string sent(const std::string& response, bool headOnly = false) {
    return unsentOf(Answer::make(response, headOnly).value());
}

TEST(Answer, TheDateStandsBehindTheStatusLine) {
    const std::string response =
        "HTTP/1.1 200 OK\r\nConnection: close\r\nX: y\r\n\r\nbody\r\n\r\nmore";
    EXPECT_EQ(sent(response).substr(0, 23), "HTTP/1.1 200 OK\r\nDate: ");
    EXPECT_EQ(withoutDate(sent(response)), response);
}

TEST(Answer, ALackingConnectionFieldIsAdded) {
    EXPECT_EQ(withoutDate(sent("HTTP/1.0 404 No\r\n\r\n")),
              "HTTP/1.0 404 No\r\nConnection: close\r\n\r\n");
    EXPECT_EQ(
        withoutDate(sent("HTTP/1.1 200 OK\r\nX: Connection: \r\n\r\nConnection: close\r\n")),
        "HTTP/1.1 200 OK\r\nConnection: close\r\nX: Connection: \r\n\r\nConnection: close\r\n");
    EXPECT_EQ(withoutDate(sent("HTTP/1.1 200 OK\r\nX: y\r\ncONNECTION:close\r\n\r\n")),
              "HTTP/1.1 200 OK\r\nX: y\r\ncONNECTION:close\r\n\r\n");
}

TEST(Answer, TheBodyIsLeftOutForHead) {
    EXPECT_EQ(withoutDate(sent(
                  "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 4\r\n\r\nbody", true)),
              "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 4\r\n\r\n");
}

TEST(Answer, OnlyAResponseIsSent) {
    for (const char* const response :
         {"", "body", "HTTP/1.1 200 OK\r\n", "HTTP/1.1 200 OK\n\n", "HTTP/2 200\r\n\r\n",
          " HTTP/1.1 200 OK\r\n\r\n", "HTTP/1.1 200 OK\r\nX: y\r\n"})
        EXPECT_FALSE(Answer::make(response, false).has_value()) << response;
}

TEST(Answer, IsSentInPiecesOfAnySize) {
    const std::string response = "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\nbody";
    const std::string whole = sent(response);
    for (std::size_t piece = 1; piece <= whole.size(); ++piece) {
        Answer answer = Answer::make(response, false).value();
        std::string text;
        while (!answer.isSent()) {
            const std::string next = unsentOf(answer).substr(0, piece);
            answer.consume(next.size());
            text += next;
        }
        EXPECT_EQ(withoutDate(text), response) << piece;
        EXPECT_EQ(unsentOf(answer), "");
    }
}

TEST(Answer, TheBodyIsNotCopied) {
    std::string response =
        "HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n" + std::string(100'000, 'x');
    const char* const bytes = response.data();
    const std::size_t statusLine = 17;
    const Answer answer = Answer::make(std::move(response), false).value();
    EXPECT_EQ(answer.unsent()[0].data(), bytes);
    EXPECT_EQ(answer.unsent()[2].data(), bytes + statusLine);
}

}  // namespace

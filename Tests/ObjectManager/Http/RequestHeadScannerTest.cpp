#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Http/RequestHeadScanner.h"

namespace {

using Http::RequestHeadScanner;
using Http::RequestLimits;
using Progress = RequestHeadScanner::Progress;
using std::string_literals::operator""s;

constexpr RequestLimits kLimits;

// What becomes of `bytes` when all come at once: "incomplete", "HEAD|REST" or "STATUS: TEXT".
std::string scan(const std::string& bytes, const RequestLimits& limits = kLimits) {
    RequestHeadScanner scanner(limits);
    switch (scanner.scan(bytes)) {
        case Progress::kIncomplete:
            return "incomplete";
        case Progress::kComplete:
            return std::string(scanner.headIn(bytes)) + "|" + bytes.substr(scanner.end());
        case Progress::kRefused:
            break;
    }
    return std::to_string(scanner.refusal().status) + ": " + scanner.refusal().text;
}

// The same when they come one by one.
std::string scanByBytes(const std::string& bytes, const RequestLimits& limits = kLimits) {
    RequestHeadScanner scanner(limits);
    for (std::size_t length = 0; length <= bytes.size(); ++length) {
        const std::string_view received = std::string_view(bytes).substr(0, length);
        switch (scanner.scan(received)) {
            case Progress::kIncomplete:
                break;
            case Progress::kComplete:
                return std::string(scanner.headIn(received)) + "|" + bytes.substr(scanner.end());
            case Progress::kRefused:
                return std::to_string(scanner.refusal().status) + ": " + scanner.refusal().text;
        }
    }
    return "incomplete";
}

constexpr const char* kLineEnd = "400: A line does not end with a carriage return and a newline.";
constexpr const char* kControl = "400: The head of the request holds a control character.";

TEST(RequestHeadScanner, AHeadEndsWithAnEmptyLine) {
    for (const std::string& head :
         {"GET / HTTP/1.1\r\n\r\n"s, "GET / HTTP/1.1\r\nHost: a\r\n\r\n"s, "x\r\n\r\n"s}) {
        EXPECT_EQ(scan(head), head + "|");
        EXPECT_EQ(scan(head + "rest"), head + "|rest");
        EXPECT_EQ(scan(head + head), head + "|" + head);
        EXPECT_EQ(scanByBytes(head + "rest"), head + "|rest");
    }
}

TEST(RequestHeadScanner, EveryShorterPartIsIncomplete) {
    const std::string head = "\r\nGET / HTTP/1.1\r\nHost: a\r\n\r\n";
    for (std::size_t length = 0; length < head.size(); ++length)
        EXPECT_EQ(scan(head.substr(0, length)), "incomplete") << length;
}

TEST(RequestHeadScanner, EmptyLinesInFrontAreSkipped) {
    EXPECT_EQ(scan("\r\nGET / HTTP/1.1\r\n\r\nrest"), "GET / HTTP/1.1\r\n\r\n|rest");
    EXPECT_EQ(scanByBytes("\r\n\r\n\r\nx\r\n\r\n"), "x\r\n\r\n|");
    EXPECT_EQ(scan("\r\n\r\n"), "incomplete");
}

TEST(RequestHeadScanner, ALineEndsWithBothItsBytes) {
    for (const char* const bytes :
         {"GET / HTTP/1.1\n", "\n", "a\r\nb\n", "a\rb", "\rb", "\r\r", "a\r\n\rb"}) {
        EXPECT_EQ(scan(bytes), kLineEnd) << bytes;
        EXPECT_EQ(scanByBytes(bytes), kLineEnd) << bytes;
    }
}

TEST(RequestHeadScanner, ControlCharactersAreRefusedAtOnce) {
    for (const std::string& bytes :
         {"\x16\x03\x01"s, "GET \0"s, "a\r\nb: \x1b"s, "a\x7f"s, "\x0b"s})
        EXPECT_EQ(scan(bytes), kControl) << bytes;
    EXPECT_EQ(scan("a\tb \x80\xff\r\n\r\n"), "a\tb \x80\xff\r\n\r\n|");
}

TEST(RequestHeadScanner, TheHeadHasALimit) {
    const RequestLimits limits{.mostHeadBytes = 40, .mostRequestLineBytes = 100};
    const std::string head = "GET / HTTP/1.1\r\nHost: example.org12\r\n\r\n";
    ASSERT_EQ(head.size(), 39U);
    const std::string refused = "431: The head of the request is longer than 40 bytes.";
    EXPECT_EQ(scan(head + "a longer body", limits), head + "|a longer body");
    EXPECT_EQ(scan("\r\n" + head, limits), refused);
    const std::string longest = "GET / HTTP/1.1\r\nHost: example.org123\r\n\r\n";
    EXPECT_EQ(scan(longest, limits), longest + "|");
    EXPECT_EQ(scanByBytes(longest, limits), longest + "|");
    const std::string longer = "GET / HTTP/1.1\r\nHost: example.org1234\r\n\r\n";
    EXPECT_EQ(scan(longer, limits), refused);
    EXPECT_EQ(scanByBytes(longer, limits), refused);
    EXPECT_EQ(scan("GET / HTTP/1.1\r\n" + std::string(24, 'a'), limits), "incomplete");
    EXPECT_EQ(scan("GET / HTTP/1.1\r\n" + std::string(25, 'a'), limits), refused);
}

TEST(RequestHeadScanner, TheRequestLineHasALimit) {
    const RequestLimits limits{.mostRequestLineBytes = 20};
    const std::string refused = "414: The request line is longer than 20 bytes.";
    for (const char* const front : {"", "\r\n"}) {
        const std::string rest = "\r\nHost: a.much.longer.example.org\r\n\r\n";
        EXPECT_EQ(scan(front + std::string(20, 'a') + rest, limits),
                  std::string(20, 'a') + rest + "|");
        EXPECT_EQ(scan(front + std::string(20, 'a'), limits), "incomplete");
        EXPECT_EQ(scan(front + std::string(20, 'a') + "\r", limits), "incomplete");
        EXPECT_EQ(scan(front + std::string(21, 'a'), limits), refused);
        EXPECT_EQ(scanByBytes(front + std::string(21, 'a') + rest, limits), refused);
    }
}

TEST(RequestHeadScanner, TheDefaultLimits) {
    const std::string line = std::string(8192, 'a') + "\r\n";
    EXPECT_EQ(scan(line), "incomplete");
    EXPECT_EQ(scan("a" + line), "414: The request line is longer than 8192 bytes.");
    const std::string head = line + std::string(16384 - line.size() - 4, 'b') + "\r\n\r\n";
    EXPECT_EQ(scan(head), head + "|");
    EXPECT_EQ(scan("\r\n" + head), "431: The head of the request is longer than 16384 bytes.");
}

TEST(RequestHeadScanner, TellsTheMethodHead) {
    const auto isHeadRequest = [](std::string_view bytes) {
        RequestHeadScanner scanner(kLimits);
        (void)scanner.scan(bytes);
        return scanner.isHeadRequest(bytes);
    };
    EXPECT_TRUE(isHeadRequest("HEAD / HTTP/1.1\r\n\r\n"));
    EXPECT_TRUE(isHeadRequest("\r\nHEAD \x01"));
    EXPECT_FALSE(isHeadRequest("HEAD"));
    EXPECT_FALSE(isHeadRequest("HEADS / HTTP/1.1\r\n\r\n"));
    EXPECT_FALSE(isHeadRequest("GET / HTTP/1.1\r\n\r\n"));
    EXPECT_FALSE(isHeadRequest(""));
}

}  // namespace

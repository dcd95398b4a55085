#include <cstddef>
#include <gtest/gtest.h>
#include <string>
#include <string_view>

#include "ObjectManager/Http/RequestParser.h"
#include "Tests/Support/AllocationProbe.h"

namespace {

using Http::Options;
using Http::RequestParser;
using State = RequestParser::State;
using std::string_literals::operator""s;

const Options kDefaults;

std::string textOf(const TSKString& text) {
    return std::string(std::string_view(text));
}

std::string textOf(const TSKHTTPRequest& message) {
    std::string text = textOf(message.getMethod()) + " " + textOf(message.getUri()) + " " +
                       textOf(message.getProtocol());
    for (const auto& field : message.getHeaderFields())
        text += "|" + textOf(field.name) + ": " + textOf(field.value);
    return text;
}

// Reads `bytes`, of which `piece` come in at a time.
std::string readInPieces(const std::string& bytes, std::size_t piece, const Options& options) {
    RequestParser parser(options);
    for (std::size_t length = piece; length < bytes.size() + piece; length += piece) {
        const std::string_view received = std::string_view(bytes).substr(0, length);
        switch (parser.parse(received)) {
            case State::kIncomplete:
                break;
            case State::kComplete:
                return textOf(parser.request()) + (parser.length() < bytes.size()
                                                       ? "|rest: " + bytes.substr(parser.length())
                                                       : "");
            case State::kRefused:
                return std::to_string(parser.error().status) + ": " + parser.error().text;
        }
    }
    return "incomplete";
}

// What becomes of `bytes`, however they come in: "incomplete", "STATUS: TEXT" or "METHOD URI
// PROTOCOL|NAME: VALUE|...", with "|rest: ..." for what follows.
std::string read(const std::string& bytes, const Options& options = kDefaults) {
    const std::string result = readInPieces(bytes, bytes.size() + 1, options);
    for (const std::size_t piece : {1U, 2U, 7U})
        EXPECT_EQ(readInPieces(bytes, piece, options), result) << "in pieces of " << piece;
    return result;
}

// A request with this request line.
std::string readLine(const std::string& line) {
    return read(line + "\r\nHost: a\r\n\r\n");
}

// A request with these further lines.
std::string readFields(const std::string& fields) {
    return read("GET / HTTP/1.1\r\nHost: a\r\n" + fields + "\r\n");
}

constexpr const char* kMethod = "400: The method is malformed.";
constexpr const char* kTarget = "400: The request target is malformed.";
constexpr const char* kNoVersion = "400: The request line does not end with a version of HTTP.";
constexpr const char* kOtherVersion = "505: This server supports HTTP/1.0 and HTTP/1.1.";
constexpr const char* kName = "400: The name of a header field is malformed.";
constexpr const char* kValue = "400: The value of a header field is malformed.";
constexpr const char* kContinued = "400: A header field continues on a second line.";
constexpr const char* kLength =
    "400: The Content-Length field is malformed or contradicts another field.";
constexpr const char* kCoding = "400: The Transfer-Encoding field contradicts another field.";
constexpr const char* kEndless = "400: The last transfer coding is not \"chunked\".";
constexpr const char* kNoHost = "400: The Host field is missing.";
constexpr const char* kManyHosts = "400: There is more than one Host field.";
constexpr const char* kBadHost = "400: The Host field is not a host with an optional port.";
constexpr const char* kMalformed = "400: The header section has a malformed line.";
constexpr const char* kLineEnd = "400: A line does not end with CR LF.";
constexpr const char* kControl = "400: The header section contains a control character.";

TEST(RequestParser, ARequestIsReadWithAllItsFields) {
    EXPECT_EQ(read("GET /root/cimv2/CIM_Foo.wsdl?x HTTP/1.1\r\n"
                   "Host: example.org:5985\r\n"
                   "Accept:text/xml\r\n"
                   "X-Empty:\r\n"
                   "x-Padded: \t a  b \t \r\n"
                   "Accept: */*\r\n"
                   "\r\n"),
              "GET /root/cimv2/CIM_Foo.wsdl HTTP/1.1|Host: example.org:5985|Accept: text/xml|"
              "X-Empty: |x-Padded: a  b|Accept: */*");
}

TEST(RequestParser, MethodsAreLeftToTheProvider) {
    for (const std::string& method : {"GET"s, "HEAD"s, "POST"s, "PUT"s, "DELETE"s, "OPTIONS"s,
                                      "PATCH"s, "TRACE"s, "M-POST"s, "get"s, "!#$%&'*+-.^_`|~0aZ"s})
        EXPECT_EQ(readLine(method + " / HTTP/1.1"), method + " / HTTP/1.1|Host: a");
}

TEST(RequestParser, ConnectIsNotAllowed) {
    EXPECT_EQ(readLine("CONNECT a:80 HTTP/1.1"), "405: This server is not a proxy.");
    EXPECT_EQ(readLine("CONNECT / HTTP/1.1"), "405: This server is not a proxy.");
    EXPECT_EQ(readLine("connect / HTTP/1.1"), "connect / HTTP/1.1|Host: a");
}

TEST(RequestParser, OptionsMayBeAskedOfTheWholeServer) {
    EXPECT_EQ(readLine("OPTIONS * HTTP/1.1"), "OPTIONS * HTTP/1.1|Host: a");
    const std::string refused = "400: The request target is neither a path nor an http URI.";
    EXPECT_EQ(readLine("GET * HTTP/1.1"), refused);
    EXPECT_EQ(readLine("OPTIONS ** HTTP/1.1"), refused);
    EXPECT_EQ(readLine("OPTIONS *? HTTP/1.1"), refused);
}

TEST(RequestParser, AMethodIsAToken) {
    for (const char* const line : {" GET / HTTP/1.1", "G@T / HTTP/1.1", "GET", "GET\t/ HTTP/1.1",
                                   "G\xc3\x89T / HTTP/1.1", "(GET) / HTTP/1.1", "GET: / HTTP/1.1"})
        EXPECT_EQ(readLine(line), kMethod) << line;
}

TEST(RequestParser, ATargetStandsBetweenSingleSpaces) {
    for (const char* const line : {"GET ", "GET  HTTP/1.1", "GET  / HTTP/1.1", "GET /\tHTTP/1.1",
                                   "GET /", "GET \t/ HTTP/1.1"})
        EXPECT_EQ(readLine(line), kTarget) << line;
}

TEST(RequestParser, TheTargetIsChecked) {
    EXPECT_EQ(readLine("GET /a/../b HTTP/1.1"),
              "400: The path contains a segment of one or two dots.");
    EXPECT_EQ(readLine("GET /a#b HTTP/1.1"), "400: The request target contains a fragment.");
    EXPECT_EQ(readLine("GET /\xff HTTP/1.1"),
              "400: The request target contains a character that must be percent-encoded.");
}

TEST(RequestParser, TheRequestLineEndsWithTheVersion) {
    for (const char* const line :
         {"GET / ", "GET / HTTP", "GET / HTTP/1", "GET / HTTP/1.", "GET / HTTP/1.1 ",
          "GET / HTTP/1.1.1", "GET / HTTP/11", "GET / HTTP/a.b", "GET / http/1.1",
          "GET / HTTP/-1.1", "GET / HTTP/1,1", "GET / HTTP/1.1 HTTP", "GET /  HTTP/1.1x",
          "GET / HTTP/1.10"})
        EXPECT_EQ(readLine(line), kNoVersion) << line;
}

TEST(RequestParser, OtherVersionsAreNotSupported) {
    for (const char* const version : {"0.9", "2.0", "2.1", "3.0", "9.9", "0.0"})
        EXPECT_EQ(readLine("GET / HTTP/"s + version), kOtherVersion) << version;
}

TEST(RequestParser, LaterVersionsOfHttp1AreReadAsHttp11) {
    for (const char* const version : {"1.2", "1.9"}) {
        EXPECT_EQ(readLine("GET /a HTTP/"s + version), "GET /a HTTP/1.1|Host: a") << version;
        EXPECT_EQ(read("GET / HTTP/"s + version + "\r\n\r\n"), kNoHost) << version;
    }
    EXPECT_EQ(read("\r\nPOST /a HTTP/1.2\r\nHost: a\r\nX: HTTP/1.3\r\n\r\nHTTP/1.4"),
              "POST /a HTTP/1.1|Host: a|X: HTTP/1.3|rest: HTTP/1.4");
}

TEST(RequestParser, ASpaceInTheTargetIsRefused) {
    const std::string refused = "400: The request target contains a space.";
    for (const char* const line : {"GET /  HTTP/1.1", "GET /a b HTTP/1.1", "GET /a b HTTP/1.0",
                                   "GET /a b HTTP/1.2", "GET /a b c HTTP/2.0"})
        EXPECT_EQ(readLine(line), refused) << line;
}

TEST(RequestParser, AFieldNameIsATokenDirectlyBeforeTheColon) {
    for (const char* const field : {"Accept : a", "Accept\t: a", ": a", "Ac cept: a", "Accept",
                                    "Acc\xc3\xa9pt: a", "(a): b", "a@b: c", "\"a\": b"})
        EXPECT_EQ(readFields(field + "\r\n"s), kName) << field;
}

TEST(RequestParser, AFieldValueContainsNoControlCharacter) {
    for (const std::string& value : {"\0"s, "a\0b"s, "\x1b"s, "a\x7f"s})
        EXPECT_EQ(readFields("Accept: " + value + "\r\n"), kControl) << value;
    EXPECT_EQ(readFields("Accept: a\nb\r\n"), kLineEnd);
    EXPECT_EQ(readFields("Accept: a\rb\r\n"), kLineEnd);
    EXPECT_EQ(readFields("Connection: ,;\r\n"), kValue);
    EXPECT_EQ(readFields("Accept: \"\t\xff\"\r\n"), "GET / HTTP/1.1|Host: a|Accept: \"\t\xff\"");
}

TEST(RequestParser, AFieldDoesNotContinueOnASecondLine) {
    for (const char* const fields : {"Accept: a\r\n b\r\n", "Accept: a\r\n\tb\r\n", " a: b\r\n",
                                     "Accept:\r\n \r\n", "Accept: a\r\n \r\n"})
        EXPECT_EQ(readFields(fields), kContinued) << fields;
    EXPECT_EQ(read("GET / HTTP/1.1\r\n Host: a\r\n\r\n"), kContinued);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: a\r\n b\r\n\r\n"), kContinued);
}

TEST(RequestParser, ABodyMayFollow) {
    EXPECT_EQ(readFields("Content-Length: 0\r\n"), "GET / HTTP/1.1|Host: a|Content-Length: 0");
    EXPECT_EQ(readFields("content-length: 5\r\n"), "GET / HTTP/1.1|Host: a|content-length: 5");
    EXPECT_EQ(readFields("Content-Length: 18446744073709551615\r\n"),
              "GET / HTTP/1.1|Host: a|Content-Length: 18446744073709551615");
    EXPECT_EQ(readFields("Content-Length: 5\r\nContent-Length: 5\r\n"),
              "GET / HTTP/1.1|Host: a|Content-Length: 5|Content-Length: 5");
    EXPECT_EQ(readFields("Transfer-Encoding: chunked\r\n"),
              "GET / HTTP/1.1|Host: a|Transfer-Encoding: chunked");
    EXPECT_EQ(readFields("transfer-encoding: gzip, CHUNKED\r\n"),
              "GET / HTTP/1.1|Host: a|transfer-encoding: gzip, CHUNKED");
    EXPECT_EQ(readFields("Expect: 100-continue\r\nContent-Length: 5\r\n"),
              "GET / HTTP/1.1|Host: a|Expect: 100-continue|Content-Length: 5");
}

TEST(RequestParser, MalformedOrContradictingLengthsAreRefused) {
    for (const char* const fields :
         {"Content-Length:\r\n", "Content-Length: a\r\n", "Content-Length: -1\r\n",
          "Content-Length: +1\r\n", "Content-Length: 0x5\r\n", "Content-Length: 5 5\r\n",
          "Content-Length: 18446744073709551616\r\n", "Content-Length: 5\r\nContent-Length: 6\r\n",
          "Content-Length: 5, 6\r\n", "Content-Length: 1.0\r\n",
          "Transfer-Encoding: chunked\r\nContent-Length: 5\r\n"})
        EXPECT_EQ(readFields(fields), kLength) << fields;
}

TEST(RequestParser, ContradictingTransferCodingsAreRefused) {
    for (const char* const fields :
         {"Content-Length: 5\r\nTransfer-Encoding: chunked\r\n",
          "Content-Length: 5\r\nTransfer-Encoding: gzip\r\n",
          "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n"})
        EXPECT_EQ(readFields(fields), kCoding) << fields;
}

TEST(RequestParser, ATransferCodingWithoutAnEndIsRefused) {
    for (const char* const fields :
         {"Transfer-Encoding: gzip\r\n", "Transfer-Encoding: chunked, gzip\r\n",
          "Transfer-Encoding:\r\n", "Transfer-Encoding: gzip\r\nContent-Length: 5\r\n"})
        EXPECT_EQ(readFields(fields), kEndless) << fields;
}

TEST(RequestParser, AnUnknownTransferCodingIsNotImplemented) {
    const std::string refused = "501: A transfer coding is not known.";
    for (const char* const codings : {"xchunked", "identity", "br, chunked", "gzip, br, chunked",
                                      "gzip;a=b, chunked", "chunke d"})
        EXPECT_EQ(readFields("Transfer-Encoding: "s + codings + "\r\n"), refused) << codings;
    for (const char* const codings :
         {"gzip, deflate, compress, chunked", "X-GZIP,x-compress , chunked"})
        EXPECT_EQ(readFields("Transfer-Encoding: "s + codings + "\r\n"),
                  "GET / HTTP/1.1|Host: a|Transfer-Encoding: "s + codings)
            << codings;
}

TEST(RequestParser, ARequestHasExactlyOneHost) {
    EXPECT_EQ(read("GET / HTTP/1.1\r\n\r\n"), kNoHost);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHosts: a\r\n\r\n"), kNoHost);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: a\r\nHost: a\r\n\r\n"), kManyHosts);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: a\r\nhOST:\r\n\r\n"), kManyHosts);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nhOST: a\r\n\r\n"), "GET / HTTP/1.1|hOST: a");
}

TEST(RequestParser, TheHostIsChecked) {
    for (const char* const host :
         {"", "a b", "a, b", "user@a", "a/b", "http://a", "a:x", "a:65536", "[::1", "\xc3\xbc"})
        EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: "s + host + "\r\n\r\n"), kBadHost) << host;
    for (const char* const host : {"a", "a:", "a:80", "192.0.2.7:65535", "[::1]:80"})
        EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: "s + host + "\r\n\r\n"),
                  "GET / HTTP/1.1|Host: "s + host);
}

TEST(RequestParser, AnHttp10RequestMayLackTheHost) {
    EXPECT_EQ(read("GET / HTTP/1.0\r\n\r\n"), "GET / HTTP/1.0");
    EXPECT_EQ(read("GET / HTTP/1.0\r\nHost: a\r\n\r\n"), "GET / HTTP/1.0|Host: a");
    EXPECT_EQ(read("GET / HTTP/1.0\r\nHost: a/b\r\n\r\n"), kBadHost);
    EXPECT_EQ(read("GET / HTTP/1.0\r\nHost: a\r\nHost: a\r\n\r\n"), kManyHosts);
}

TEST(RequestParser, TheAuthorityOfAnAbsoluteTargetReplacesTheHost) {
    EXPECT_EQ(read("GET http://b:80/c HTTP/1.1\r\nHost: a\r\nAccept: x\r\n\r\n"),
              "GET /c HTTP/1.1|Host: b:80|Accept: x");
    EXPECT_EQ(read("GET http://b/ HTTP/1.0\r\n\r\n"), "GET / HTTP/1.0|Host: b");
    EXPECT_EQ(read("GET http://b/ HTTP/1.1\r\n\r\n"), kNoHost);
    EXPECT_EQ(read("GET http://b/ HTTP/1.1\r\nHost: a/b\r\n\r\n"), kBadHost);
}

TEST(RequestParser, ALineThatEndsTooEarlyIsRefused) {
    EXPECT_EQ(read("GET / \r\n\r\n"), kMalformed);
    EXPECT_EQ(read("GET / HTTP/1\r\n\r\n"), kNoVersion);
}

TEST(RequestParser, TheNumberOfFieldsHasALimit) {
    const Options options{.maxHeaderFields = 3};
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: a\r\nb:\r\nc:\r\n\r\n", options),
              "GET / HTTP/1.1|Host: a|b: |c: ");
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: a\r\nb:\r\nc:\r\nd:\r\n\r\n", options),
              "431: The request has more than 3 header fields.");
}

TEST(RequestParser, TheDefaultLimitOfFieldsIs100) {
    std::string fields;
    std::string expected = "GET / HTTP/1.1|Host: a";
    for (int count = 0; count < 99; ++count) {
        fields += "b:\r\n";
        expected += "|b: ";
    }
    EXPECT_EQ(readFields(fields), expected);
    EXPECT_EQ(readFields(fields + "b:\r\n"), "431: The request has more than 100 header fields.");
}

TEST(RequestParser, TheHeaderSectionHasALimit) {
    const Options options{.maxHeaderSize = 40};
    const std::string refused = "431: The header section is longer than 40 bytes.";
    const std::string shorter = "GET / HTTP/1.1\r\nHost: example.org12\r\n\r\n";
    ASSERT_EQ(shorter.size(), 39U);
    const std::string result = "GET / HTTP/1.1|Host: example.org12";
    EXPECT_EQ(read(shorter, options), result);
    EXPECT_EQ(read(shorter + "a longer body", options), result + "|rest: a longer body");
    EXPECT_EQ(read("\r\n" + shorter, options), refused);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: example.org123\r\n\r\n", options), result + "3");
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: example.org1234\r\n\r\n", options), refused);
    EXPECT_EQ(read("GET / HTTP/1.1\r\n" + std::string(24, 'a'), options), "incomplete");
    EXPECT_EQ(read("GET / HTTP/1.1\r\n" + std::string(25, 'a'), options), refused);
}

TEST(RequestParser, TheRequestLineHasALimit) {
    const Options options{.maxRequestLine = 20};
    const std::string refused = "414: The request line is longer than 20 bytes.";
    const std::string rest = "\r\nHost: a.much.longer.example.org\r\n\r\n";
    for (const char* const front : {"", "\r\n"}) {
        EXPECT_EQ(read(front + "GET /aaaaaa HTTP/1.1"s + rest, options),
                  "GET /aaaaaa HTTP/1.1|Host: a.much.longer.example.org");
        EXPECT_EQ(read(front + "GET /aaaaaaa HTTP/1.1"s + rest, options), refused);
        EXPECT_EQ(read(front + std::string(20, 'a'), options), "incomplete");
        EXPECT_EQ(read(front + std::string(20, 'a') + "\r", options), "incomplete");
        EXPECT_EQ(read(front + std::string(21, 'a'), options), refused);
    }
}

TEST(RequestParser, TheDefaultLimitsAre8And16Kibibytes) {
    const std::string path(8192 - "GET / HTTP/1.1"s.size(), 'a');
    const std::string line = "GET /" + path + " HTTP/1.1\r\nHost: a\r\nX: ";
    const std::string value(16384 - line.size() - 4, 'b');
    EXPECT_EQ(read(line + value + "\r\n\r\n"), "GET /" + path + " HTTP/1.1|Host: a|X: " + value);
    EXPECT_EQ(read(line + value + "b\r\n\r\n"),
              "431: The header section is longer than 16384 bytes.");
    EXPECT_EQ(read("GET /a" + path + " HTTP/1.1\r\n"),
              "414: The request line is longer than 8192 bytes.");
}

TEST(RequestParser, EveryShorterPartIsIncomplete) {
    const std::string header =
        "\r\nGET /a HTTP/1.1\r\nHost: example.org\r\nContent-Length: 5\r\n\r\n";
    for (std::size_t length = 0; length < header.size(); ++length)
        EXPECT_EQ(read(header.substr(0, length)), "incomplete") << length;
    EXPECT_EQ(read(header), "GET /a HTTP/1.1|Host: example.org|Content-Length: 5");
}

TEST(RequestParser, WhatFollowsTheHeaderSectionIsNotRead) {
    const std::string header = "GET / HTTP/1.1\r\nHost: a\r\n\r\n";
    for (const std::string& rest : {"x"s, "\0\n\r\r"s, header})
        EXPECT_EQ(read(header + rest), "GET / HTTP/1.1|Host: a|rest: " + rest);
}

TEST(RequestParser, EmptyLinesBeforeTheRequestAreSkipped) {
    EXPECT_EQ(readLine("\r\nGET / HTTP/1.1"), "GET / HTTP/1.1|Host: a");
    EXPECT_EQ(readLine("\r\n\r\n\r\nGET / HTTP/1.1"), "GET / HTTP/1.1|Host: a");
    EXPECT_EQ(read("\r\n\r\n"), "incomplete");
}

TEST(RequestParser, ALineThatDoesNotEndWithBothBytesIsRefusedAtOnce) {
    for (const char* const bytes :
         {"GET / HTTP/1.1\n", "\n", "a\r\nb\n", "a\rb", "\rb", "\r\r", "a\r\n\rb"})
        EXPECT_EQ(read(bytes), kLineEnd) << bytes;
}

TEST(RequestParser, AControlCharacterIsRefusedAtOnce) {
    for (const std::string& bytes :
         {"\x16\x03\x01"s, "GET \0"s, "a\r\nb: \x1b"s, "a\x7f"s, "\x0b"s})
        EXPECT_EQ(read(bytes), kControl) << bytes;
    EXPECT_EQ(read("a\tb \x80\xff"), "incomplete");
}

TEST(RequestParser, TheMethodHeadIsKnownAsSoonAsItHasComeIn) {
    const auto isHeadRequest = [](std::string_view bytes) {
        RequestParser parser(kDefaults);
        (void)parser.parse(bytes);
        return parser.isHeadRequest(bytes);
    };
    EXPECT_TRUE(isHeadRequest("HEAD / HTTP/1.1\r\n\r\n"));
    EXPECT_TRUE(isHeadRequest("\r\nHEAD \x01"));
    EXPECT_FALSE(isHeadRequest("HEAD"));
    EXPECT_FALSE(isHeadRequest("HEADS / HTTP/1.1\r\n\r\n"));
    EXPECT_FALSE(isHeadRequest("GET / HTTP/1.1\r\n\r\n"));
    EXPECT_FALSE(isHeadRequest(""));
}

TEST(RequestParser, EveryByteAtEveryPlaceIsReadOrRefused) {
    const std::string header = "GET http://b/%41 HTTP/1.1\r\nHost: a\r\nContent-Length: 5\r\n\r\n";
    std::size_t complete = 0;
    std::size_t refused = 0;
    for (std::size_t index = 0; index < header.size(); ++index) {
        for (int byte = 0; byte < 256; ++byte) {
            std::string changed = header;
            changed[index] = static_cast<char>(byte);
            RequestParser parser(kDefaults);
            const State state = parser.parse(changed);
            EXPECT_NE(state, State::kIncomplete) << changed;
            ++(state == State::kComplete ? complete : refused);
            if (state != State::kComplete)
                continue;
            const std::string path = textOf(parser.request().getUri());
            EXPECT_EQ(path.find_first_of("\r\n\0"s), std::string::npos) << changed;
            EXPECT_EQ(path.substr(0, 1), "/") << changed;
        }
    }
    EXPECT_GT(complete, header.size());
    EXPECT_GT(refused, header.size());
}

TEST(RequestParser, AFailedAllocationPasses) {
    const std::string header =
        "GET http://a.much.longer.example.org/a/much/longer/path HTTP/1.1\r\n"
        "Host: example.org\r\nAccept: application/xml, text/xml\r\n\r\n";
    std::string result;
    result.reserve(100);
    const std::size_t failures = AllocationProbe::failEachAllocation(
        [&] {
            result.clear();
            RequestParser parser(kDefaults);
            if (parser.parse(header) == State::kComplete)
                result = parser.request().getHost()->data();
        },
        [&] { EXPECT_EQ(result, ""); });
    EXPECT_GT(failures, 5U);
    EXPECT_EQ(result, "a.much.longer.example.org");
}

}  // namespace

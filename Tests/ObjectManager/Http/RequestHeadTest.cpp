#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Http/RequestHead.h"
#include "Tests/Support/AllocationProbe.h"

namespace {

using Http::Refusal;
using Http::RequestHead;
using Http::RequestLimits;
using std::string_literals::operator""s;

constexpr RequestLimits kLimits;

std::string textOf(const TSKString& text) {
    return std::string(std::string_view(text));
}

// "METHOD URI PROTOCOL|NAME: VALUE|...", with "|+" at the end when a body is announced, or
// "STATUS: TEXT".
std::string read(const std::string& head, const RequestLimits& limits = kLimits) {
    const auto result = Http::parseRequestHead(head, limits);
    if (const auto* refusal = std::get_if<Refusal>(&result))
        return std::to_string(refusal->status) + ": " + refusal->text;
    const auto& [request, announcesBody] = std::get<RequestHead>(result);
    std::string text = textOf(request.getMethod()) + " " + textOf(request.getUri()) + " " +
                       textOf(request.getProtocol());
    for (const auto& field : request.getHeaderFields())
        text += "|" + textOf(field.name) + ": " + textOf(field.value);
    return text + (announcesBody ? "|+" : "");
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
constexpr const char* kOtherVersion = "505: This server speaks HTTP/1.0 and HTTP/1.1.";
constexpr const char* kName = "400: The name of a header field is malformed.";
constexpr const char* kValue = "400: The value of a header field is malformed.";
constexpr const char* kContinued = "400: A header field is continued on a second line.";
constexpr const char* kLength =
    "400: The Content-Length field is malformed or contradicts another field.";
constexpr const char* kCoding = "400: The Transfer-Encoding field contradicts another field.";
constexpr const char* kEndless = "400: The last transfer coding is not \"chunked\".";
constexpr const char* kNoHost = "400: The Host field is missing.";
constexpr const char* kManyHosts = "400: There is more than one Host field.";
constexpr const char* kBadHost = "400: The Host field is not a host with an optional port.";
constexpr const char* kMalformed =
    "400: The head of the request is incomplete or has a malformed line.";

TEST(RequestHead, IsReadWithAllItsFields) {
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

TEST(RequestHead, EveryMethodIsLeftToTheProvider) {
    for (const std::string& method : {"GET"s, "HEAD"s, "POST"s, "PUT"s, "DELETE"s, "OPTIONS"s,
                                      "PATCH"s, "M-POST"s, "get"s, "!#$%&'*+-.^_`|~0aZ"s})
        EXPECT_EQ(readLine(method + " / HTTP/1.1"), method + " / HTTP/1.1|Host: a");
}

TEST(RequestHead, MethodsThatNoResourceHasAreNotImplemented) {
    EXPECT_EQ(readLine("TRACE / HTTP/1.1"), "501: This method is not implemented.");
    EXPECT_EQ(readLine("CONNECT a:80 HTTP/1.1"), "501: This method is not implemented.");
    EXPECT_EQ(readLine("trace / HTTP/1.1"), "trace / HTTP/1.1|Host: a");
}

TEST(RequestHead, AMethodIsAToken) {
    for (const char* const line : {" GET / HTTP/1.1", "G@T / HTTP/1.1", "GET", "GET\t/ HTTP/1.1",
                                   "G\xc3\x89T / HTTP/1.1", "(GET) / HTTP/1.1", "GET: / HTTP/1.1"})
        EXPECT_EQ(readLine(line), kMethod) << line;
}

TEST(RequestHead, ATargetStandsBetweenSingleBlanks) {
    for (const char* const line : {"GET ", "GET  HTTP/1.1", "GET  / HTTP/1.1", "GET /\tHTTP/1.1",
                                   "GET /", "GET \t/ HTTP/1.1"})
        EXPECT_EQ(readLine(line), kTarget) << line;
}

TEST(RequestHead, TheTargetIsChecked) {
    EXPECT_EQ(readLine("GET /a/../b HTTP/1.1"),
              "400: The path holds a segment of one or two dots.");
    EXPECT_EQ(readLine("OPTIONS * HTTP/1.1"),
              "400: The request target is neither a path nor an http URI.");
    EXPECT_EQ(readLine("GET /\xff HTTP/1.1"),
              "400: The request target holds a character that must be percent-encoded.");
}

TEST(RequestHead, TheRequestLineEndsWithTheVersion) {
    for (const char* const line :
         {"GET / ", "GET / HTTP", "GET / HTTP/1", "GET / HTTP/1.", "GET / HTTP/1.1 ",
          "GET / HTTP/1.1.1", "GET / HTTP/11", "GET / HTTP/a.b", "GET / http/1.1",
          "GET / HTTP/-1.1", "GET / HTTP/1,1", "GET / HTTP/1.1 HTTP", "GET /  HTTP/1.1x",
          "GET / HTTP/1.10"})
        EXPECT_EQ(readLine(line), kNoVersion) << line;
}

TEST(RequestHead, OtherVersionsAreNotSupported) {
    for (const char* const version : {"0.9", "1.2", "1.9", "2.0", "3.0", "9.9", "0.0"})
        EXPECT_EQ(readLine("GET / HTTP/"s + version), kOtherVersion) << version;
    EXPECT_EQ(readLine("GET /  HTTP/1.1"), kOtherVersion);
}

TEST(RequestHead, NamesOfFieldsAreTokensDirectlyBeforeTheColon) {
    for (const char* const field : {"Accept : a", "Accept\t: a", ": a", "Ac cept: a", "Accept",
                                    "Acc\xc3\xa9pt: a", "(a): b", "a@b: c", "\"a\": b"})
        EXPECT_EQ(readFields(field + "\r\n"s), kName) << field;
}

TEST(RequestHead, ValuesHoldNoControlCharacters) {
    for (const std::string& value : {"\0"s, "a\0b"s, "\x1b"s, "a\x7f"s, "a\nb"s})
        EXPECT_EQ(readFields("Accept: " + value + "\r\n"), kValue) << value;
    EXPECT_EQ(readFields("Accept: a\rb\r\n"), kMalformed);
    EXPECT_EQ(readFields("Connection: ,;\r\n"), kValue);
    EXPECT_EQ(readFields("Accept: \"\t\xff\"\r\n"), "GET / HTTP/1.1|Host: a|Accept: \"\t\xff\"");
}

TEST(RequestHead, AFieldIsNotContinued) {
    for (const char* const fields : {"Accept: a\r\n b\r\n", "Accept: a\r\n\tb\r\n", " a: b\r\n",
                                     "Accept:\r\n \r\n", "Accept: a\r\n \r\n"})
        EXPECT_EQ(readFields(fields), kContinued) << fields;
    EXPECT_EQ(read("GET / HTTP/1.1\r\n Host: a\r\n\r\n"), kContinued);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: a\r\n b\r\n\r\n"), kContinued);
}

TEST(RequestHead, ABodyIsAnnouncedByItsLengthOrACoding) {
    EXPECT_EQ(readFields("Content-Length: 0\r\n"), "GET / HTTP/1.1|Host: a|Content-Length: 0");
    EXPECT_EQ(readFields("content-length: 5\r\n"), "GET / HTTP/1.1|Host: a|content-length: 5|+");
    EXPECT_EQ(readFields("Content-Length: 18446744073709551615\r\n"),
              "GET / HTTP/1.1|Host: a|Content-Length: 18446744073709551615|+");
    EXPECT_EQ(readFields("Content-Length: 5\r\nContent-Length: 5\r\n"),
              "GET / HTTP/1.1|Host: a|Content-Length: 5|Content-Length: 5|+");
    EXPECT_EQ(readFields("Transfer-Encoding: chunked\r\n"),
              "GET / HTTP/1.1|Host: a|Transfer-Encoding: chunked|+");
    EXPECT_EQ(readFields("transfer-encoding: gzip, CHUNKED\r\n"),
              "GET / HTTP/1.1|Host: a|transfer-encoding: gzip, CHUNKED|+");
    EXPECT_EQ(readFields("Expect: 100-continue\r\nContent-Length: 5\r\n"),
              "GET / HTTP/1.1|Host: a|Expect: 100-continue|Content-Length: 5|+");
}

TEST(RequestHead, LengthsThatAreMalformedOrContradictEachOtherAreRefused) {
    for (const char* const fields :
         {"Content-Length:\r\n", "Content-Length: a\r\n", "Content-Length: -1\r\n",
          "Content-Length: +1\r\n", "Content-Length: 0x5\r\n", "Content-Length: 5 5\r\n",
          "Content-Length: 18446744073709551616\r\n", "Content-Length: 5\r\nContent-Length: 6\r\n",
          "Content-Length: 5, 6\r\n", "Content-Length: 1.0\r\n",
          "Transfer-Encoding: chunked\r\nContent-Length: 5\r\n"})
        EXPECT_EQ(readFields(fields), kLength) << fields;
}

TEST(RequestHead, CodingsThatContradictAreRefused) {
    for (const char* const fields :
         {"Content-Length: 5\r\nTransfer-Encoding: chunked\r\n",
          "Content-Length: 5\r\nTransfer-Encoding: gzip\r\n",
          "Transfer-Encoding: chunked\r\nTransfer-Encoding: chunked\r\n"})
        EXPECT_EQ(readFields(fields), kCoding) << fields;
}

TEST(RequestHead, ACodingWhoseEndNobodyCanTellIsRefused) {
    for (const char* const fields :
         {"Transfer-Encoding: gzip\r\n", "Transfer-Encoding: chunked, gzip\r\n",
          "Transfer-Encoding: xchunked\r\n", "Transfer-Encoding:\r\n",
          "Transfer-Encoding: gzip\r\nContent-Length: 5\r\n"})
        EXPECT_EQ(readFields(fields), kEndless) << fields;
}

TEST(RequestHead, NeedsExactlyOneHost) {
    EXPECT_EQ(read("GET / HTTP/1.1\r\n\r\n"), kNoHost);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHosts: a\r\n\r\n"), kNoHost);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: a\r\nHost: a\r\n\r\n"), kManyHosts);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: a\r\nhOST:\r\n\r\n"), kManyHosts);
    EXPECT_EQ(read("GET / HTTP/1.1\r\nhOST: a\r\n\r\n"), "GET / HTTP/1.1|hOST: a");
}

TEST(RequestHead, TheHostIsChecked) {
    for (const char* const host :
         {"", "a b", "a, b", "user@a", "a/b", "http://a", "a:x", "a:65536", "[::1", "\xc3\xbc"})
        EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: "s + host + "\r\n\r\n"), kBadHost) << host;
    for (const char* const host : {"a", "a:", "a:80", "192.0.2.7:65535", "[::1]:80"})
        EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: "s + host + "\r\n\r\n"),
                  "GET / HTTP/1.1|Host: "s + host);
}

TEST(RequestHead, AnOldRequestMayLackTheHost) {
    EXPECT_EQ(read("GET / HTTP/1.0\r\n\r\n"), "GET / HTTP/1.0");
    EXPECT_EQ(read("GET / HTTP/1.0\r\nHost: a\r\n\r\n"), "GET / HTTP/1.0|Host: a");
    EXPECT_EQ(read("GET / HTTP/1.0\r\nHost: a/b\r\n\r\n"), kBadHost);
    EXPECT_EQ(read("GET / HTTP/1.0\r\nHost: a\r\nHost: a\r\n\r\n"), kManyHosts);
}

TEST(RequestHead, TheAuthorityOfAnAbsoluteTargetTakesThePlaceOfTheHost) {
    EXPECT_EQ(read("GET http://b:80/c HTTP/1.1\r\nHost: a\r\nAccept: x\r\n\r\n"),
              "GET /c HTTP/1.1|Host: b:80|Accept: x");
    EXPECT_EQ(read("GET http://b/ HTTP/1.0\r\n\r\n"), "GET / HTTP/1.0|Host: b");
    EXPECT_EQ(read("GET http://b/ HTTP/1.1\r\n\r\n"), kNoHost);
    EXPECT_EQ(read("GET http://b/ HTTP/1.1\r\nHost: a/b\r\n\r\n"), kBadHost);
}

TEST(RequestHead, TheNumberOfFieldsHasALimit) {
    const RequestLimits limits{.mostFields = 3};
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: a\r\nb:\r\nc:\r\n\r\n", limits),
              "GET / HTTP/1.1|Host: a|b: |c: ");
    EXPECT_EQ(read("GET / HTTP/1.1\r\nHost: a\r\nb:\r\nc:\r\nd:\r\n\r\n", limits),
              "431: The request has more than 3 header fields.");
}

TEST(RequestHead, TheDefaultLimitOfFieldsIsAHundred) {
    std::string fields;
    std::string expected = "GET / HTTP/1.1|Host: a";
    for (int count = 0; count < 99; ++count) {
        fields += "b:\r\n";
        expected += "|b: ";
    }
    EXPECT_EQ(readFields(fields), expected);
    EXPECT_EQ(readFields(fields + "b:\r\n"), "431: The request has more than 100 header fields.");
}

TEST(RequestHead, AHeadThatIsCutShortIsRefused) {
    const std::string head = "GET /a HTTP/1.1\r\nHost: example.org\r\nContent-Length: 5\r\n\r\n";
    for (std::size_t length = 0; length < head.size(); ++length)
        EXPECT_EQ(read(head.substr(0, length)).substr(0, 5), "400: ") << length;
    EXPECT_EQ(read(head + "x"), kMalformed);
    EXPECT_EQ(read(head + head), kMalformed);
}

TEST(RequestHead, EveryByteAtEveryPlaceIsReadOrRefused) {
    const std::string head = "GET http://b/%41 HTTP/1.1\r\nHost: a\r\nContent-Length: 5\r\n\r\n";
    std::size_t read = 0;
    std::size_t refused = 0;
    for (std::size_t index = 0; index < head.size(); ++index) {
        for (int byte = 0; byte < 256; ++byte) {
            std::string changed = head;
            changed[index] = static_cast<char>(byte);
            const auto result = Http::parseRequestHead(changed, kLimits);
            const auto* request = std::get_if<RequestHead>(&result);
            ++(request == nullptr ? refused : read);
            if (request == nullptr)
                continue;
            const std::string path = textOf(request->request.getUri());
            EXPECT_EQ(path.find_first_of("\r\n\0"s), std::string::npos) << changed;
            EXPECT_EQ(path.substr(0, 1), "/") << changed;
        }
    }
    EXPECT_GT(read, head.size());
    EXPECT_GT(refused, head.size());
}

TEST(RequestHead, AFailedAllocationPasses) {
    const std::string head =
        "GET http://a.much.longer.example.org/a/much/longer/path HTTP/1.1\r\n"
        "Host: example.org\r\nAccept: application/xml, text/xml\r\n\r\n";
    std::string result;
    result.reserve(100);
    const std::size_t failures = AllocationProbe::failEachAllocation(
        [&] {
            result.clear();
            const auto parsed = Http::parseRequestHead(head, kLimits);
            result = std::get<RequestHead>(parsed).request.getHost()->data();
        },
        [&] { EXPECT_EQ(result, ""); });
    EXPECT_GT(failures, 5U);
    EXPECT_EQ(result, "a.much.longer.example.org");
}

}  // namespace

#include <boost/asio/ip/address.hpp>
#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Http/RequestTarget.h"

namespace {

using Http::Error;
using Http::isHostWithPort;
using Http::RequestTarget;

// "PATH", "AUTHORITY PATH" or "STATUS: TEXT".
std::string read(std::string_view target) {
    const auto result = Http::parseRequestTarget(target);
    if (const auto* error = std::get_if<Error>(&result))
        return std::to_string(error->status) + ": " + error->text;
    const auto& read = std::get<RequestTarget>(result);
    return read.authority.empty() ? read.path : read.authority + " " + read.path;
}

constexpr const char* kMalformedEncoding = "400: A percent-encoding in the path is malformed.";
constexpr const char* kHidden =
    "400: A percent-encoding in the path stands for a slash or a control character.";
constexpr const char* kDots = "400: The path contains a segment of one or two dots.";
constexpr const char* kForbidden =
    "400: The request target contains a character that must be percent-encoded.";
constexpr const char* kNeither = "400: The request target is neither a path nor an http URI.";
constexpr const char* kNoHost =
    "400: The request target does not name a host with an optional port.";

TEST(RequestTarget, APathIsTakenAsItIs) {
    EXPECT_EQ(read("/"), "/");
    EXPECT_EQ(read("/root/cimv2/CIM_Foo.wsdl"), "/root/cimv2/CIM_Foo.wsdl");
    EXPECT_EQ(read("//a///b/"), "//a///b/");
    EXPECT_EQ(read("/!$&'()*+,;=:@-._~"), "/!$&'()*+,;=:@-._~");
    EXPECT_EQ(read("/\"<>[]\\^`{|}"), "/\"<>[]\\^`{|}");
}

TEST(RequestTarget, AFragmentIsRefused) {
    for (const char* const target :
         {"#", "/#", "/a#b", "/a#b?c", "/a?b#c", "/.#a", "http://example.org#a", "*#"})
        EXPECT_EQ(read(target), "400: The request target contains a fragment.") << target;
}

TEST(RequestTarget, TheQueryIsNotPartOfThePath) {
    EXPECT_EQ(read("/a?b"), "/a");
    EXPECT_EQ(read("/a?/../%00%"), "/a");
    EXPECT_EQ(read("/?"), "/");
}

TEST(RequestTarget, PercentEncodingIsDecodedOnce) {
    EXPECT_EQ(read("/%41%7e%20b"), "/A~ b");
    EXPECT_EQ(read("/%c3%BC"), "/\xc3\xbc");
    EXPECT_EQ(read("/%ff"), "/\xff");
    EXPECT_EQ(read("/%2541"), "/%41");
    EXPECT_EQ(read("/%252e%252e/"), "/%2e%2e/");
    EXPECT_EQ(read("/a%3Fb%23c"), "/a?b#c");
}

TEST(RequestTarget, MalformedPercentEncodingIsRefused) {
    for (const char* const target :
         {"/%", "/%4", "/%4g", "/%g4", "/%%41", "/a%", "/a%2", "/%+1", "/%-1", "/%x1", "/%4?1"})
        EXPECT_EQ(read(target), kMalformedEncoding) << target;
}

TEST(RequestTarget, AnEncodedSlashIsRefused) {
    EXPECT_EQ(read("/a%2fb"), kHidden);
    EXPECT_EQ(read("/a%2Fb"), kHidden);
    EXPECT_EQ(read("/..%2f"), kHidden);
}

TEST(RequestTarget, AnEncodedControlCharacterIsRefused) {
    for (const char* const target : {"/%00", "/a%00.wsdl", "/%0a", "/%0D", "/%1f", "/%7f"})
        EXPECT_EQ(read(target), kHidden) << target;
    EXPECT_EQ(read("/%20%7e%80"), "/ ~\x80");
}

TEST(RequestTarget, DotSegmentsAreRefused) {
    for (const char* const target :
         {"/.", "/..", "/./", "/../", "/a/.", "/a/..", "/a/./b", "/a/../b", "/%2e", "/%2E%2e",
          "/.%2e", "/a/%2e./b", "//..", "/..?a"})
        EXPECT_EQ(read(target), kDots) << target;
}

TEST(RequestTarget, DotsWithinASegmentAreKept) {
    for (const char* const target : {"/...", "/a.", "/.a", "/..a", "/a..", "/a/.../b", "/.a/..b"})
        EXPECT_EQ(read(target), target);
}

TEST(RequestTarget, BytesThatAreNotAllowedInAUriAreRefused) {
    using std::string_literals::operator""s;
    for (const std::string& target : {"/a b"s, "/\0"s, "/a\0b"s, "/\n"s, "/\t"s, "/\x1f"s, "/\x7f"s,
                                      "/\x80"s, "/\xc3\xbc"s, "/a?\x01"s, "http://a/\xff"s})
        EXPECT_EQ(read(target), kForbidden) << target;
}

TEST(RequestTarget, AnAbsoluteTargetNamesAHost) {
    EXPECT_EQ(read("http://example.org/a"), "example.org /a");
    EXPECT_EQ(read("HTTP://Example.ORG:8080/a?b"), "Example.ORG:8080 /a");
    EXPECT_EQ(read("http://[::1]:80/"), "[::1]:80 /");
    EXPECT_EQ(read("http://example.org"), "example.org /");
    EXPECT_EQ(read("http://example.org?a"), "example.org /");
    EXPECT_EQ(read("http://example.org//a"), "example.org //a");
}

TEST(RequestTarget, AnAbsoluteTargetIsCheckedLikeAPath) {
    EXPECT_EQ(read("http://example.org/.."), kDots);
    EXPECT_EQ(read("http://example.org/%2f"), kHidden);
    EXPECT_EQ(read("http://example.org/%"), kMalformedEncoding);
}

TEST(RequestTarget, AnAbsoluteTargetWithoutAHostIsRefused) {
    for (const char* const target :
         {"http://", "http:///a", "http://a&b/", "http://?a", "http://:80/", "http://user@host/",
          "http://a:b/", "http://a:65536/", "http://[::1/"})
        EXPECT_EQ(read(target), kNoHost) << target;
}

TEST(RequestTarget, OtherFormsAreRefused) {
    for (const char* const target : {"", "*", "a", "a/b", "example.org:80", "http:/a", "http:a",
                                     "https://example.org/", "ftp://example.org/", "?a", "%2fa"})
        EXPECT_EQ(read(target), kNeither) << target;
}

TEST(HostWithPort, AHostOfEachFormIsAccepted) {
    for (const char* const value :
         {"localhost", "example.org", "EXAMPLE.org.", "a", "_sip-x~y", "a!$'()*+,;=b", "%41%c3%BC",
          "192.0.2.7", "999.1", "[::1]", "[::]", "[2001:DB8::7]", "[::ffff:192.0.2.7]",
          "[1:2:3:4:5:6:7:8]"})
        EXPECT_TRUE(isHostWithPort(value)) << value;
}

TEST(HostWithPort, APortMayFollow) {
    for (const char* const host : {"example.org", "192.0.2.7", "[::1]"}) {
        for (const char* const port : {"", ":", ":0", ":80", ":65535", ":00080"})
            EXPECT_TRUE(isHostWithPort(std::string(host) + port)) << host << port;
        for (const char* const port : {":65536", ":99999999999999999999", ":-1", ":+1", ":8a",
                                       ": 80", ":80:80", ":80 ", "::", ":0x50"})
            EXPECT_FALSE(isHostWithPort(std::string(host) + port)) << host << port;
    }
}

TEST(HostWithPort, OtherTextIsRefused) {
    using std::string_literals::operator""s;
    for (const std::string& value :
         {""s,      ":80"s,  " "s,     "a b"s,    "a/b"s,  "user@host"s, "a?b"s,
          "a#b"s,   "<a>"s,  "\"a\""s, "a\\b"s,   "a^b"s,  "a|b"s,       "a`b"s,
          "{a}"s,   "%"s,    "%4"s,    "%4g"s,    "%%41"s, "a%"s,        "a&b"s,
          "&amp;"s, "a\0b"s, "\0"s,    "a\r\nb"s, "\x7f"s, "\xc3\xbc"s})
        EXPECT_FALSE(isHostWithPort(value)) << value;
}

TEST(HostWithPort, OnlyAnIPv6AddressStandsInBrackets) {
    using std::string_literals::operator""s;
    for (const std::string& value :
         {"["s, "]"s, "[]"s, "[::1"s, "::1"s, "::1]"s, "[::1]]"s, "[::1]a"s, "a[::1]"s, "[:::1]"s,
          "[12345::]"s, "[1:2:3:4:5:6:7:8:9]"s, "[192.0.2.7]"s, "[example.org]"s, "[v1.a]"s,
          "[fe80::1%25eth0]"s, "[fe80::1%eth0]"s, "[::1\0]"s, "[ ::1]"s})
        EXPECT_FALSE(isHostWithPort(value)) << value;
}

std::string hostOf(const char* address) {
    return Http::toUriHost(boost::asio::ip::make_address(address));
}

TEST(UriHost, AnIPv4AddressIsWrittenAsItIs) {
    EXPECT_EQ(hostOf("192.0.2.7"), "192.0.2.7");
}

TEST(UriHost, AnIPv6AddressStandsInBrackets) {
    EXPECT_EQ(hostOf("::1"), "[::1]");
    EXPECT_EQ(hostOf("2001:db8::7"), "[2001:db8::7]");
}

TEST(UriHost, AMappedIPv4AddressIsWrittenAsIPv4) {
    EXPECT_EQ(hostOf("::ffff:192.0.2.7"), "192.0.2.7");
}

TEST(UriHost, AZoneIsLeftOut) {
    EXPECT_EQ(hostOf("fe80::1%1"), "[fe80::1]");
}

TEST(RequestTarget, MayBeAnHttpsUriIfTheClientUsesTls) {
    for (const char* const target : {"https://example.org/a", "HTTPS://example.org/a?b"}) {
        const auto result = Http::parseRequestTarget(target, true);
        ASSERT_TRUE(std::holds_alternative<Http::RequestTarget>(result)) << target;
        EXPECT_EQ(std::get<Http::RequestTarget>(result).path, "/a");
        EXPECT_EQ(std::get<Http::RequestTarget>(result).authority, "example.org");
        EXPECT_TRUE(std::holds_alternative<Http::Error>(Http::parseRequestTarget(target)));
    }
    EXPECT_TRUE(std::holds_alternative<Http::Error>(Http::parseRequestTarget("httpx://a/", true)));
}

}  // namespace

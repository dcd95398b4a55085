#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Http/RequestTarget.h"

namespace {

using Http::Refusal;
using Http::RequestTarget;

// "PATH", "AUTHORITY PATH" or "STATUS: TEXT".
std::string read(std::string_view target) {
    const auto result = Http::parseRequestTarget(target);
    if (const auto* refusal = std::get_if<Refusal>(&result))
        return std::to_string(refusal->status) + ": " + refusal->text;
    const auto& read = std::get<RequestTarget>(result);
    return read.authority.empty() ? read.path : read.authority + " " + read.path;
}

constexpr const char* kMalformedEncoding = "400: A percent-encoding in the path is malformed.";
constexpr const char* kHidden =
    "400: A percent-encoding in the path stands for a slash or a control character.";
constexpr const char* kDots = "400: The path holds a segment of one or two dots.";
constexpr const char* kForbidden =
    "400: The request target holds a character that must be percent-encoded.";
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

TEST(RequestTarget, QueryAndFragmentAreNoPartOfThePath) {
    EXPECT_EQ(read("/a?b"), "/a");
    EXPECT_EQ(read("/a?/../%00%"), "/a");
    EXPECT_EQ(read("/a#b?c"), "/a");
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
          "/.%2e", "/a/%2e./b", "//..", "/..?a", "/.#a"})
        EXPECT_EQ(read(target), kDots) << target;
}

TEST(RequestTarget, DotsWithinASegmentAreKept) {
    for (const char* const target : {"/...", "/a.", "/.a", "/..a", "/a..", "/a/.../b", "/.a/..b"})
        EXPECT_EQ(read(target), target);
}

TEST(RequestTarget, BytesThatNoUriHasAreRefused) {
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
    EXPECT_EQ(read("http://example.org#a"), "example.org /");
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
    for (const char* const target :
         {"", "*", "a", "a/b", "example.org:80", "http:/a", "http:a", "https://example.org/",
          "ftp://example.org/", "?a", "#", "%2fa"})
        EXPECT_EQ(read(target), kNeither) << target;
}

}  // namespace

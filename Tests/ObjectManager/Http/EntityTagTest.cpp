#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/Http/EntityTag.h"

namespace {

using Http::Precondition;
using Fields = std::vector<std::pair<const char*, const char*>>;

constexpr const char* kTag = "\"a,b\"";

Precondition evaluate(const Fields& fields, const char* tag = kTag) {
    TSKHTTPRequest request("GET", "/", "HTTP/1.1");
    for (const auto& [name, value] : fields)
        request.setHeaderField(name, value, true);
    return Http::evaluatePreconditions(request, tag);
}

// The begin of the SHA-256 digests, as sha256sum prints them.
TEST(EntityTag, IsADigestOfTheBody) {
    EXPECT_EQ(Http::entityTag(""), "\"e3b0c44298fc1c149afbf4c8996fb924\"");
    EXPECT_EQ(Http::entityTag("hello"), "\"2cf24dba5fb0a30e26e83b2ac5b9e29e\"");
}

TEST(EntityTag, EveryByteCounts) {
    const std::string body(1000, 'x');
    std::string other = body;
    other.back() = 'y';
    EXPECT_EQ(Http::entityTag(body), Http::entityTag(std::string(body)));
    EXPECT_NE(Http::entityTag(body), Http::entityTag(other));
    EXPECT_NE(Http::entityTag(body), Http::entityTag(body + "x"));
}

TEST(Preconditions, ARequestWithoutThemIsMet) {
    EXPECT_EQ(evaluate({}), Precondition::kMet);
    EXPECT_EQ(evaluate({{"If-Range", kTag}, {"ETag", kTag}}), Precondition::kMet);
}

TEST(Preconditions, IfNoneMatchAvoidsABodyThatTheClientHas) {
    for (const char* const list : {"\"a,b\"", "*", "W/\"a,b\"", "\"c\", \"a,b\"", "\"c\",W/\"a,b\"",
                                   "W/\"\" ,, \"a,b\" ,\"d\"", "\"a,b\"garbage"})
        EXPECT_EQ(evaluate({{"if-none-match", list}}), Precondition::kNotModified) << list;
    for (const char* const list :
         {"\"a\"", "", "a,b", "\"a,b", "a,b\"", "\"a,b \"", "'a,b'", "**", "w/\"a,b\"", "W/a,b",
          "\"A,B\"", "\"c\" garbage \"a,b\"", "\"c\", *"})
        EXPECT_EQ(evaluate({{"If-None-Match", list}}), Precondition::kMet) << list;
}

TEST(Preconditions, IfMatchFailsForAnotherBody) {
    for (const char* const list : {"\"a,b\"", "*", "\"c\", \"a,b\"", "W/\"a,b\", \"a,b\""})
        EXPECT_EQ(evaluate({{"if-match", list}}), Precondition::kMet) << list;
    for (const char* const list : {"\"c\"", "", "W/\"a,b\"", "a,b", "\"a,b"})
        EXPECT_EQ(evaluate({{"If-Match", list}}), Precondition::kFailed) << list;
}

TEST(Preconditions, IfMatchComesFirst) {
    EXPECT_EQ(evaluate({{"If-None-Match", "*"}, {"If-Match", "\"c\""}}), Precondition::kFailed);
    EXPECT_EQ(evaluate({{"If-None-Match", "*"}, {"If-Match", "*"}}), Precondition::kNotModified);
}

TEST(Preconditions, FieldsOfOneNameAreOneList) {
    EXPECT_EQ(evaluate({{"If-None-Match", "\"c\""}, {"IF-NONE-MATCH", kTag}}),
              Precondition::kNotModified);
    EXPECT_EQ(evaluate({{"If-Match", "\"c\""}, {"If-Match", kTag}}), Precondition::kMet);
}

TEST(Preconditions, ConditionsOnDatesAreIgnored) {
    constexpr const char* kFuture = "Fri, 31 Dec 9999 23:59:59 GMT";
    constexpr const char* kPast = "Thu, 01 Jan 1970 00:00:00 GMT";
    EXPECT_EQ(evaluate({{"If-Modified-Since", kFuture}}), Precondition::kMet);
    EXPECT_EQ(evaluate({{"If-Unmodified-Since", kPast}}), Precondition::kMet);
}

TEST(Preconditions, AWeakTagOfAProviderNeverMatchesStrongly) {
    EXPECT_EQ(evaluate({{"If-Match", "W/\"a\""}}, "W/\"a\""), Precondition::kFailed);
    EXPECT_EQ(evaluate({{"If-None-Match", "\"a\""}}, "W/\"a\""), Precondition::kNotModified);
}

}  // namespace

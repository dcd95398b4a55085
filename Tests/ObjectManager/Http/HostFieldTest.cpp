#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Http/HostField.h"

namespace {

using Http::isHostField;

TEST(HostField, HostsOfEachFormAreAccepted) {
    for (const char* const value :
         {"localhost", "example.org", "EXAMPLE.org.", "a", "_sip-x~y", "a!$'()*+,;=b", "%41%c3%BC",
          "192.0.2.7", "999.1", "[::1]", "[::]", "[2001:DB8::7]", "[::ffff:192.0.2.7]",
          "[1:2:3:4:5:6:7:8]"})
        EXPECT_TRUE(isHostField(value)) << value;
}

TEST(HostField, APortMayFollow) {
    for (const char* const host : {"example.org", "192.0.2.7", "[::1]"}) {
        for (const char* const port : {"", ":", ":0", ":80", ":65535", ":00080"})
            EXPECT_TRUE(isHostField(std::string(host) + port)) << host << port;
        for (const char* const port : {":65536", ":99999999999999999999", ":-1", ":+1", ":8a",
                                       ": 80", ":80:80", ":80 ", "::", ":0x50"})
            EXPECT_FALSE(isHostField(std::string(host) + port)) << host << port;
    }
}

TEST(HostField, WhatIsNoHostIsRefused) {
    using std::string_literals::operator""s;
    for (const std::string& value :
         {""s,      ":80"s,  " "s,     "a b"s,    "a/b"s,  "user@host"s, "a?b"s,
          "a#b"s,   "<a>"s,  "\"a\""s, "a\\b"s,   "a^b"s,  "a|b"s,       "a`b"s,
          "{a}"s,   "%"s,    "%4"s,    "%4g"s,    "%%41"s, "a%"s,        "a&b"s,
          "&amp;"s, "a\0b"s, "\0"s,    "a\r\nb"s, "\x7f"s, "\xc3\xbc"s})
        EXPECT_FALSE(isHostField(value)) << value;
}

TEST(HostField, OnlyAnIPv6AddressStandsInBrackets) {
    using std::string_literals::operator""s;
    for (const std::string& value :
         {"["s, "]"s, "[]"s, "[::1"s, "::1"s, "::1]"s, "[::1]]"s, "[::1]a"s, "a[::1]"s, "[:::1]"s,
          "[12345::]"s, "[1:2:3:4:5:6:7:8:9]"s, "[192.0.2.7]"s, "[example.org]"s, "[v1.a]"s,
          "[fe80::1%25eth0]"s, "[fe80::1%eth0]"s, "[::1\0]"s, "[ ::1]"s})
        EXPECT_FALSE(isHostField(value)) << value;
}

}  // namespace

#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Configuration/Endpoint.h"
#include "Platform/Util/TeskBaseException.h"

namespace {

using Configuration::Endpoint;
using Configuration::parseEndpoint;

std::string failureOf(std::string_view text) {
    try {
        return "read as " + parseEndpoint(text).toString();
    } catch (const TeskBaseException& exception) {
        return exception.getMessage().data();
    }
}

TEST(Endpoint, IsReadAndWritten) {
    EXPECT_EQ(parseEndpoint("127.0.0.1:5985"), (Endpoint{.address = "127.0.0.1", .port = 5985}));
    EXPECT_EQ(parseEndpoint("0.0.0.0:0"), (Endpoint{.address = "0.0.0.0", .port = 0}));
    EXPECT_EQ(parseEndpoint("[::1]:65535"), (Endpoint{.address = "::1", .port = 65535}));
    EXPECT_EQ(parseEndpoint("[::]:1"), (Endpoint{.address = "::", .port = 1}));
    for (const char* text : {"127.0.0.1:5985", "[::1]:5985", "[2001:db8::7]:80"})
        EXPECT_EQ(parseEndpoint(text).toString(), text);
}

TEST(Endpoint, EverythingElseIsRefused) {
    for (const char* text : {"",
                             ":",
                             "5985",
                             ":5985",
                             "127.0.0.1",
                             "127.0.0.1:",
                             "127.0.0.1:x",
                             "127.0.0.1:5985x",
                             "127.0.0.1:-1",
                             "127.0.0.1:+1",
                             "127.0.0.1: 1",
                             "127.0.0.1:65536",
                             "127.0.0.1:99999999999",
                             "127.0.0:1",
                             "127.0.0.256:1",
                             " 127.0.0.1:1",
                             "localhost:5985",
                             "*:5985",
                             "::1:5985",
                             "[::1]",
                             "[::1]:",
                             "[::1:5985",
                             "::1]:5985",
                             "[127.0.0.1]:5985",
                             "[]:5985",
                             "[:::]:1",
                             "[::1]]:1",
                             "[fe80::1%lo]:1"}) {
        EXPECT_EQ(failureOf(text), "\"" + std::string(text) +
                                       "\" is no address with a port, such as \"127.0.0.1:5985\", "
                                       "\"0.0.0.0:5985\" or \"[::1]:5985\"");
    }
    EXPECT_EQ(failureOf(std::string_view("127.0.0.1\0:1", 12)).substr(0, 11), "\"127.0.0.1");
}

}  // namespace

#include <gtest/gtest.h>
#include <netinet/in.h>
#include <set>
#include <string>
#include <vector>

#include "ObjectManager/Http/ClientAddress.h"
#include "Platform/Util/TeskBaseException.h"

namespace {

using Http::ClientAddress;
using Http::ClientKey;
using Http::Network;

ClientAddress address(std::string_view text) {
    const auto parsed = ClientAddress::parse(text);
    EXPECT_TRUE(parsed) << text;
    return parsed.value_or(ClientAddress());
}

ClientKey keyOf(std::string_view text) {
    return ClientKey::of(address(text));
}

std::vector<Network> networks(const std::vector<const char*>& texts) {
    std::vector<Network> result;
    for (const char* text : texts)
        result.push_back(Network::parse(text));
    return result;
}

TEST(ClientAddress, IsShownAsPeopleWriteIt) {
    for (const char* text : {"0.0.0.0", "192.0.2.1", "255.255.255.255", "::", "::1", "2001:db8::1",
                             "fe80::1:2:3:4", "1:2:3:4:5:6:7:8"})
        EXPECT_EQ(address(text).toString(), text);
    EXPECT_EQ(address("2001:DB8:0:0::0:1").toString(), "2001:db8::1");
    EXPECT_EQ(ClientAddress().toString(), "::");
}

TEST(ClientAddress, IsTheSameWhenItIsMappedIntoIPv6) {
    EXPECT_EQ(address("::ffff:192.0.2.1"), address("192.0.2.1"));
    EXPECT_EQ(address("::ffff:c000:201").toString(), "192.0.2.1");
    EXPECT_TRUE(address("::ffff:192.0.2.1").isIPv4());
    EXPECT_FALSE(address("::192.0.2.1").isIPv4());
}

TEST(ClientAddress, EverythingElseIsNone) {
    for (const char* text :
         {"", " ", "localhost", "192.0.2", "192.0.2.256", "192.0.2.1 ", " 192.0.2.1", "192.0.2.1:1",
          "[::1]", "fe80::1%lo", ":::", "1:2:3:4:5:6:7:8:9", "unknown",
          "1111:2222:3333:4444:5555:6666:7777:8888:9999:aaaa:bbbb:cccc"})
        EXPECT_FALSE(ClientAddress::parse(text)) << text;
    EXPECT_FALSE(ClientAddress::parse(std::string_view("::1\0", 4)));
}

TEST(ClientAddress, IsReadFromTheAddressOfASocket) {
    sockaddr_storage storage = {};
    auto& ipv4 = reinterpret_cast<sockaddr_in&>(storage);
    ipv4 = {.sin_family = AF_INET, .sin_port = 80, .sin_addr = {htonl(0x7F000001)}, .sin_zero = {}};
    EXPECT_EQ(ClientAddress::of(reinterpret_cast<sockaddr&>(storage)), address("127.0.0.1"));
    auto& ipv6 = reinterpret_cast<sockaddr_in6&>(storage);
    ipv6 = {.sin6_family = AF_INET6,
            .sin6_port = 80,
            .sin6_flowinfo = 1,
            .sin6_addr = in6addr_loopback,
            .sin6_scope_id = 1};
    EXPECT_EQ(ClientAddress::of(reinterpret_cast<sockaddr&>(storage)), address("::1"));
    storage = {};
    EXPECT_EQ(ClientAddress::of(reinterpret_cast<sockaddr&>(storage)), ClientAddress());
}

TEST(ClientKey, IsTheAddressInIPv4AndTheNetworkOf64BitsInIPv6) {
    EXPECT_EQ(keyOf("192.0.2.1"), keyOf("192.0.2.1"));
    EXPECT_EQ(keyOf("::ffff:192.0.2.1"), keyOf("192.0.2.1"));
    EXPECT_NE(keyOf("192.0.2.1"), keyOf("192.0.2.2"));
    EXPECT_EQ(keyOf("2001:db8:0:1::1"), keyOf("2001:db8:0:1:ffff:ffff:ffff:ffff"));
    EXPECT_NE(keyOf("2001:db8:0:1::1"), keyOf("2001:db8:0:2::1"));
    EXPECT_NE(keyOf("::"), keyOf("0.0.0.0"));
    EXPECT_EQ((std::set{keyOf("192.0.2.1"), keyOf("::ffff:192.0.2.1"), keyOf("2001:db8::1"),
                        keyOf("2001:db8::2")})
                  .size(),
              2U);
}

TEST(Network, ContainsTheAddressesThatBeginWithItsPrefix) {
    const struct {
        const char* network;
        std::vector<const char*> in;
        std::vector<const char*> out;
    } cases[] = {
        {"10.0.0.0/8",
         {"10.0.0.0", "10.255.255.255", "::ffff:10.1.2.3"},
         {"9.255.255.255", "11.0.0.0", "::10.0.0.1", "a00::"}},
        {"192.0.2.128/25", {"192.0.2.128", "192.0.2.255"}, {"192.0.2.127", "192.0.3.128"}},
        {"192.0.2.1/32", {"192.0.2.1"}, {"192.0.2.0", "192.0.2.2"}},
        {"192.0.2.1", {"192.0.2.1"}, {"192.0.2.0", "192.0.2.2"}},
        {"0.0.0.0/0", {"0.0.0.0", "255.255.255.255"}, {"::", "::1"}},
        {"::1", {"::1"}, {"::", "::2", "127.0.0.1"}},
        {"2001:db8::/33", {"2001:db8:7fff:ffff::"}, {"2001:db8:8000::", "2001:db7::"}},
        {"::/0", {"::", "ffff::", "192.0.2.1"}, {}},
        {"::ffff:10.0.0.0/104", {"10.1.2.3"}, {"11.0.0.0"}},
    };
    for (const auto& [text, in, out] : cases) {
        const Network network = Network::parse(text);
        for (const char* inner : in)
            EXPECT_TRUE(network.contains(address(inner))) << text << " " << inner;
        for (const char* outer : out)
            EXPECT_FALSE(network.contains(address(outer))) << text << " " << outer;
    }
}

TEST(Network, IsShownWithItsPrefix) {
    for (const char* text :
         {"10.0.0.0/8", "0.0.0.0/0", "192.0.2.1/32", "::/0", "fd00::/8", "::1/128"})
        EXPECT_EQ(Network::parse(text).toString(), text);
    EXPECT_EQ(Network::parse("192.0.2.1").toString(), "192.0.2.1/32");
    EXPECT_EQ(Network::parse("::ffff:10.0.0.0/104").toString(), "10.0.0.0/8");
}

std::string failureOf(std::string_view text) {
    try {
        return Network::parse(text).toString();
    } catch (const TeskBaseException& exception) {
        return exception.getMessage().data();
    }
}

TEST(Network, EverythingElseIsRefused) {
    for (const char* text :
         {"", "/", "/8", "10.0.0.0/", "10.0.0.0/33", "10.0.0.0/-1", "10.0.0.0/+8", "10.0.0.0/8 ",
          "10.0.0.0/8/8", "10.0.0.0/255.0.0.0", "10/8", "::/129", "[::1]", "localhost", "*",
          "10.0.0.0/99999999999", "10.0.0.0:80"}) {
        EXPECT_EQ(failureOf(text), "\"" + std::string(text) +
                                       "\" is not a network or an address, such as \"10.0.0.0/8\", "
                                       "\"fd00::/8\" or \"::1\"");
    }
}

TEST(Network, AnAddressWithinItIsRefusedWithTheNetwork) {
    EXPECT_EQ(
        failureOf("10.0.0.1/8"),
        "\"10.0.0.1/8\" is not the first address of a network; the network is \"10.0.0.0/8\"");
    EXPECT_EQ(failureOf("2001:db8::1/64"),
              "\"2001:db8::1/64\" is not the first address of a network; the network is "
              "\"2001:db8::/64\"");
}

// The client of a request from `peer` with these fields "X-Forwarded-For".
std::string client(const char* peer, const std::vector<const char*>& fields,
                   const std::vector<const char*>& proxies) {
    TSKHTTPRequest request("GET", "/", "HTTP/1.1");
    request.setHeaderField("Host", "example.com", true);
    for (const char* field : fields)
        request.setHeaderField("X-Forwarded-For", field, true);
    return Http::clientOf(request, address(peer), networks(proxies)).toString();
}

TEST(ClientOfARequest, IsThePeerUnlessThatIsATrustedProxy) {
    EXPECT_EQ(client("192.0.2.1", {}, {}), "192.0.2.1");
    EXPECT_EQ(client("192.0.2.1", {"198.51.100.7"}, {}), "192.0.2.1");
    EXPECT_EQ(client("192.0.2.1", {"198.51.100.7"}, {"10.0.0.0/8"}), "192.0.2.1");
    EXPECT_EQ(client("10.0.0.1", {}, {"10.0.0.0/8"}), "10.0.0.1");
    EXPECT_EQ(client("10.0.0.1", {"198.51.100.7"}, {"10.0.0.0/8"}), "198.51.100.7");
    EXPECT_EQ(client("::1", {"198.51.100.7"}, {"10.0.0.0/8", "::1"}), "198.51.100.7");
}

TEST(ClientOfARequest, IsTheLastAddressThatIsNotATrustedProxy) {
    const std::vector<const char*> proxies = {"10.0.0.0/8", "fd00::/8"};
    const struct {
        std::vector<const char*> fields;
        const char* client;
    } cases[] = {
        {{"203.0.113.9, 198.51.100.7"}, "198.51.100.7"},
        {{"203.0.113.9, 198.51.100.7, 10.0.0.2"}, "198.51.100.7"},
        {{"203.0.113.9,198.51.100.7 \t,\tfd00::2,10.0.0.2"}, "198.51.100.7"},
        {{"203.0.113.9", "198.51.100.7", "10.0.0.2, 10.0.0.3"}, "198.51.100.7"},
        {{"198.51.100.7", ""}, "198.51.100.7"},
        {{", 198.51.100.7,, ,"}, "198.51.100.7"},
        // All are proxies: the request began at the first one.
        {{"10.0.0.3, 10.0.0.2"}, "10.0.0.3"},
        {{""}, "10.0.0.1"},
    };
    for (const auto& [fields, expected] : cases)
        EXPECT_EQ(client("10.0.0.1", fields, proxies), expected);
}

TEST(ClientOfARequest, PortsAndBracketsDoNotCount) {
    for (const char* field :
         {"2001:db8::1", "[2001:db8::1]", "[2001:db8::1]:80", "9.9.9.9, [2001:db8::1]:65535"})
        EXPECT_EQ(client("10.0.0.1", {field}, {"10.0.0.1"}), "2001:db8::1") << field;
    EXPECT_EQ(client("10.0.0.1", {"198.51.100.7:1234"}, {"10.0.0.1"}), "198.51.100.7");
}

TEST(ClientOfARequest, WhatIsNoAddressEndsTheSearch) {
    for (const char* field : {"unknown",
                              "_hidden",
                              "198.51.100.7 x",
                              "198.51.100.7;",
                              "\"198.51.100.7\"",
                              "[",
                              "]",
                              "[]",
                              "[::1",
                              "::1]",
                              "[198.51.100.7]",
                              "[::1]80",
                              "[::1]:",
                              "[::1]:x",
                              "198.51.100.7:",
                              "198.51.100.7:x",
                              ":",
                              "fe80::1%lo",
                              "198.51.100.7\n",
                              "\xFF"}) {
        EXPECT_EQ(client("10.0.0.1", {field}, {"10.0.0.0/8"}), "10.0.0.1") << field;
        const std::string list = "198.51.100.7, " + std::string(field) + ", 10.0.0.2";
        EXPECT_EQ(client("10.0.0.1", {list.c_str()}, {"10.0.0.0/8"}), "10.0.0.2") << list;
        EXPECT_EQ(client("10.0.0.1", {"198.51.100.7", field}, {"10.0.0.0/8"}), "10.0.0.1") << field;
    }
}

}  // namespace

#include <boost/asio/ip/address.hpp>
#include <gtest/gtest.h>

#include "ObjectManager/Http/UriHost.h"

namespace {

std::string hostOf(const char* address) {
    return Http::toUriHost(boost::asio::ip::make_address(address));
}

TEST(UriHost, IPv4IsWrittenAsItIs) {
    EXPECT_EQ(hostOf("192.0.2.7"), "192.0.2.7");
}

TEST(UriHost, IPv6StandsInBrackets) {
    EXPECT_EQ(hostOf("::1"), "[::1]");
    EXPECT_EQ(hostOf("2001:db8::7"), "[2001:db8::7]");
}

TEST(UriHost, AMappedIPv4AddressIsWrittenAsIPv4) {
    EXPECT_EQ(hostOf("::ffff:192.0.2.7"), "192.0.2.7");
}

TEST(UriHost, AZoneIsLeftOut) {
    EXPECT_EQ(hostOf("fe80::1%1"), "[fe80::1]");
}

}  // namespace

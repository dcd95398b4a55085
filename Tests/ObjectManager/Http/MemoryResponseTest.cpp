#include <boost/asio/ip/address.hpp>
#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Http/MemoryResponse.h"

namespace {

using Http::MemoryResponse;

boost::asio::ip::tcp::endpoint endpoint(const char* address, unsigned short port) {
    return {boost::asio::ip::make_address(address), port};
}

TEST(MemoryResponse, KeepsWhatIsWritten) {
    using std::string_literals::operator""s;
    MemoryResponse response(endpoint("192.0.2.7", 50000));
    EXPECT_EQ(response.take(), "");
    response.write("a\0b", 3);
    response.write(nullptr, 0);
    response.write("cd", 1);
    EXPECT_EQ(response.take(), "a\0bc"s);
    EXPECT_EQ(response.take(), "");
}

TEST(MemoryResponse, TellsTheAddressOfTheClient) {
    TSKString host;
    TSKString port;
    MemoryResponse(endpoint("192.0.2.7", 50000)).getPeerAddressString(host, port);
    EXPECT_EQ(host, "192.0.2.7");
    EXPECT_EQ(port, "50000");
    MemoryResponse(endpoint("2001:db8::7", 1)).getPeerAddressString(host, port);
    EXPECT_EQ(host, "[2001:db8::7]");
    EXPECT_EQ(port, "1");
    MemoryResponse(endpoint("::ffff:192.0.2.7", 65535)).getPeerAddressString(host, port);
    EXPECT_EQ(host, "192.0.2.7");
    EXPECT_EQ(port, "65535");
}

}  // namespace

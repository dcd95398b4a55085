#include <gtest/gtest.h>

#include "Platform/Http/TSKHTTPRequest.h"

namespace {

TEST(TSKHTTPRequest, TellsMethodUriAndHost) {
    TSKHTTPRequest request("GET", "/root/cimv2/CIM_Foo.wsdl", "HTTP/1.0");
    EXPECT_EQ(request.getMethod(), "GET");
    EXPECT_EQ(request.getUri(), "/root/cimv2/CIM_Foo.wsdl");
    EXPECT_EQ(request.getProtocol(), "HTTP/1.0");
    EXPECT_EQ(request.getHost(), nullptr);
    request.setHeaderField("HOST", "example.com:5985", false);
    ASSERT_NE(request.getHost(), nullptr);
    EXPECT_EQ(*request.getHost(), "example.com:5985");
}

}  // namespace

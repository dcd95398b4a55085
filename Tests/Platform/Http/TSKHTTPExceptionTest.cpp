#include <gtest/gtest.h>

#include "Platform/Http/TSKHTTPException.h"

namespace {

TEST(TSKHTTPException, CarriesPlaceMessageAndCode) {
    try {
        throw TSKHTTPException("Provider::processHTTPRequest", "Authentication failed",
                               TSKHTTPException::kAuthenticationFailed);
    } catch (const TeskBaseException& exception) {
        EXPECT_EQ(exception.getWhere(), "Provider::processHTTPRequest");
        EXPECT_EQ(exception.getMessage(), "Authentication failed");
        EXPECT_EQ(exception.getErrorCode(), 4);
    }
}

}  // namespace

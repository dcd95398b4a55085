#include <gtest/gtest.h>

#include "Platform/Util/TeskStatusCode.h"

namespace {

TEST(TeskStatusCode, HasTheNumbersOfTheStandard) {
    EXPECT_EQ(CIM_ERR_FAILED, 1);
    EXPECT_EQ(CIM_ERR_INVALID_NAMESPACE, 3);
    EXPECT_EQ(CIM_ERR_NOT_FOUND, 6);
    EXPECT_EQ(CIM_ERR_NOT_SUPPORTED, 7);
    EXPECT_EQ(CIM_ERR_METHOD_NOT_FOUND, 17);
    EXPECT_EQ(CIM_ERR_NAMESPACE_NOT_EMPTY, 20);
    EXPECT_EQ(CIM_ERR_SERVER_IS_SHUTTING_DOWN, 28);
}

}  // namespace

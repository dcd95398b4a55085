#include <gtest/gtest.h>

#include "Platform/Util/TSKNullPointerException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace {

TEST(TSKNullPointerException, TellsWhereTheNullPointerWas) {
    try {
        TSKNullPointerException::raise("Some::operation");
    } catch (const TeskBaseException& exception) {
        EXPECT_EQ(exception.getWhere(), "Some::operation");
        EXPECT_EQ(exception.getMessage(), "There is no object behind the pointer");
        EXPECT_EQ(exception.getErrorCode(), CIM_ERR_FAILED);
    }
}

}  // namespace

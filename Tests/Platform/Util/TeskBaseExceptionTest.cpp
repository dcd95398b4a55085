#include <gtest/gtest.h>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace {

TEST(TeskBaseException, TellsWhereWhatAndCode) {
    const TeskBaseException exception("Repository::getClass", "No such namespace",
                                      CIM_ERR_INVALID_NAMESPACE);
    EXPECT_EQ(exception.getWhere(), "Repository::getClass");
    EXPECT_EQ(exception.getMessage(), "No such namespace");
    EXPECT_EQ(exception.getErrorCode(), 3);
    EXPECT_STREQ(exception.what(), "Repository::getClass: No such namespace (3)");
}

TEST(TeskBaseException, IsAStandardException) {
    try {
        throw TeskBaseException("here", "message", -7);
    } catch (const std::exception& exception) {
        EXPECT_STREQ(exception.what(), "here: message (-7)");
    }
}

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

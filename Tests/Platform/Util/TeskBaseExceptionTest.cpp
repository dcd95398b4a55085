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

}  // namespace

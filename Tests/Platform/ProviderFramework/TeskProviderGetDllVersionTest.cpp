#include <gtest/gtest.h>

#include "Platform/ProviderFramework/TeskProviderGetDllVersion.h"

namespace {

TEST(TeskProviderGetDllVersion, GivesTheVersionOfTheProject) {
    TSKString version;
    EXPECT_TRUE(TeskProviderGetDllVersion(version));
    EXPECT_EQ(version, TESK_VERSION);
}

}  // namespace

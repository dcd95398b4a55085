#include <gtest/gtest.h>

#include "Platform/ProviderFramework/URMAConfigManager.h"
#include "Platform/Util/TeskBaseException.h"

namespace {

class Installation : public ITeskInstallation {
  public:
    [[nodiscard]] TSKString getInstallationDirectory() const override { return "/opt/tesk"; }
};

class URMAConfigManagerTest : public testing::Test {
  protected:
    ~URMAConfigManagerTest() override { URMAConfigManager::setInstallation(nullptr); }
};

TEST_F(URMAConfigManagerTest, MakesRelativePathsAbsolute) {
    URMAConfigManager::setInstallation(TSKSmrPtr<Installation>::make());
    TSKString path = "providers";
    URMAConfigManager::cvtToAbsolutePath(path);
    EXPECT_EQ(path, "/opt/tesk/providers");
}

TEST_F(URMAConfigManagerTest, LeavesAbsolutePaths) {
    TSKString path = "/etc/tesk";
    URMAConfigManager::cvtToAbsolutePath(path);
    EXPECT_EQ(path, "/etc/tesk");
}

TEST_F(URMAConfigManagerTest, FailsWithoutAnInstallation) {
    TSKString path = "providers";
    try {
        URMAConfigManager::cvtToAbsolutePath(path);
        ADD_FAILURE() << "no exception";
    } catch (const TeskBaseException& exception) {
        EXPECT_EQ(exception.getMessage(), "The installation directory is not known");
    }
    EXPECT_EQ(path, "providers");
}

TEST_F(URMAConfigManagerTest, SetInstallationReturnsThePreviousOne) {
    const auto installation = TSKSmrPtr<Installation>::make();
    EXPECT_EQ(URMAConfigManager::setInstallation(installation), nullptr);
    EXPECT_EQ(URMAConfigManager::setInstallation(nullptr), installation);
}

}  // namespace

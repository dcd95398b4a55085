#include <gtest/gtest.h>

#include "ObjectManager/Configuration/SettingsError.h"

namespace {

using Configuration::SettingsError;

TEST(SettingsError, IsShownWithItsPlace) {
    const SettingsError error = {.file = "a.toml", .line = 12, .column = 7, .message = "odd"};
    EXPECT_EQ(error.toString(), "a.toml:12:7: error: odd\n");
}

TEST(SettingsError, AFileThatCannotBeReadHasNoPlace) {
    const SettingsError error = {.file = "a.toml", .message = "cannot be read"};
    EXPECT_EQ(error.toString(), "a.toml: error: cannot be read\n");
}

}  // namespace

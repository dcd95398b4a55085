#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Configuration/Settings.h"
#include "ObjectManager/Configuration/SettingsError.h"

namespace Configuration {

/// What a configuration file says, and all that is wrong with it, in the order of the lines. Where
/// there are errors, the settings that they are about have their defaults.
struct SettingsReading {
    Settings settings;
    std::vector<SettingsError> errors;
};

/// Reads a configuration file (TOML 1.0; Docs/configuration.md names the keys). Paths in it are
/// relative to its folder. A file that cannot be read is an error like those in its text.
[[nodiscard]] SettingsReading readSettings(const std::string& path);

/// The same with the text of the file at `path`, which is not read.
[[nodiscard]] SettingsReading parseSettings(const std::string& path, std::string_view text);

}  // namespace Configuration

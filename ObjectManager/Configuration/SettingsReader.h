#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Configuration/Settings.h"

namespace Configuration {

/// Something that is wrong in a configuration file.
struct SettingsError {
    std::string file;
    std::size_t line = 0;  ///< counted from 1; 0 for a file that could not be read
    std::size_t column = 0;
    std::string message;

    /// As it is shown, with a newline at the end:
    ///
    ///     tesk.toml:3:1: error: unknown key "lisen" in [server]; did you mean "listen"?
    [[nodiscard]] std::string toString() const;
};

/// What a configuration file says, and all that is wrong with it, in the order of the lines. A
/// setting with an error has its default.
struct SettingsReading {
    Settings settings;
    std::vector<SettingsError> errors;
};

/// Reads a configuration file (TOML 1.0; Docs/configuration.md names the keys). Paths in it are
/// relative to its directory. A file that cannot be read is an error like those in its text.
[[nodiscard]] SettingsReading readSettings(const std::string& path);

/// The same with the text of the file at `path`, which is not read.
[[nodiscard]] SettingsReading parseSettings(const std::string& path, std::string_view text);

}  // namespace Configuration

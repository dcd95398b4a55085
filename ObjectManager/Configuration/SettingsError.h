#pragma once

#include <cstddef>
#include <string>

namespace Configuration {

/// Something that a person should mend in a configuration file.
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

}  // namespace Configuration

#pragma once

#include <filesystem>

namespace Host {

/// The directories in which the program finds what is installed with it. They are relative to the
/// program file, so that an installation can be moved; the build directory has the same layout.
///
/// Thread safety: immutable, may be used by several threads at once.
struct InstallationPaths {
    std::filesystem::path installation;  ///< holds "providers" and what they read
    std::filesystem::path models;        ///< the sample model

    /// The paths for the running program.
    /// Errors: std::system_error if the system does not tell the path of the program file.
    [[nodiscard]] static InstallationPaths ofThisProgram();
};

}  // namespace Host

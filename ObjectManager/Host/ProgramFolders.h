#pragma once

#include <filesystem>

namespace Host {

/// Where the program finds what is installed with it. Found from where the program file lies, so
/// that an installation can be moved, and the build folder has the same layout.
///
/// Thread safety: immutable, may be used by several threads at once.
struct ProgramFolders {
    std::filesystem::path installation;  ///< holds "providers" and what they read
    std::filesystem::path models;        ///< the sample model

    /// Those of the running program.
    /// Errors: std::system_error when the system does not say which file that is.
    [[nodiscard]] static ProgramFolders ofThisProgram();
};

}  // namespace Host

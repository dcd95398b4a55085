#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Base/Files.h"

namespace Mof {

/// A file in a directory.
struct DirectoryFile {
    std::string path;
    Base::FileIdentity identity;  ///< none if the file does not exist: a link without a target
};

/// The files in a directory and in those below it whose name ends with ".mof" in any case, in the
/// order of their paths. Links to directories are followed; a directory that is reached by several
/// paths is read once, by one without links if there is one. Files are listed whether or not they
/// can be read.
/// Errors: std::filesystem::filesystem_error, which names the directory that cannot be read.
[[nodiscard]] std::vector<DirectoryFile> mofFilesIn(const std::string& directory);

}  // namespace Mof

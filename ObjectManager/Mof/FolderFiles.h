#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Mof/InputFile.h"

namespace Mof {

/// A file of a folder.
struct FolderFile {
    std::string path;
    InputFile::Identity identity;  ///< none for what is not there, such as the target of a link
};

/// The files of a folder, and of the folders below it, whose name ends with ".mof" in any case, in
/// the order of their paths. Links to folders are followed; a folder that is reached in two ways is
/// looked into once, by the way without links where there is one. What has such a name is listed
/// whether or not it can be read.
/// Errors: std::filesystem::filesystem_error, which names the folder that cannot be read.
[[nodiscard]] std::vector<FolderFile> filesOfFolder(const std::string& path);

}  // namespace Mof

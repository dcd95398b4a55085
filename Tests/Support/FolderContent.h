#pragma once

#include <filesystem>
#include <map>
#include <string>

/// What is in a folder and in those below it: each file's path from there and its content, of a
/// folder "(folder)", of a symbolic link "-> TARGET".
using FolderContent = std::map<std::string, std::string>;

[[nodiscard]] FolderContent contentOf(const std::filesystem::path& folder);

/// What is in a file.
[[nodiscard]] std::string contentOfFile(const std::filesystem::path& file);

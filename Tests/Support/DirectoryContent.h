#pragma once

#include <filesystem>
#include <map>
#include <string>

/// What is in a directory and in those below it: each file's path from there and its content, of a
/// directory "(directory)", of a symbolic link "-> TARGET".
using DirectoryContent = std::map<std::string, std::string>;

[[nodiscard]] DirectoryContent contentOf(const std::filesystem::path& directory);

/// What is in a file.
[[nodiscard]] std::string contentOfFile(const std::filesystem::path& file);

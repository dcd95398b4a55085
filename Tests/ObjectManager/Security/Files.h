#pragma once

#include <algorithm>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "Tests/Support/TemporaryDirectory.h"

/// The permissions of a file, as chmod takes them.
inline unsigned modeOf(const std::filesystem::path& file) {
    return static_cast<unsigned>(std::filesystem::status(file).permissions());
}

/// The names in a directory, in their order.
inline std::vector<std::string> namesIn(const TemporaryDirectory& directory) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory.path()))
        names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
}

/// Writes a file that only its owner may read and write.
inline std::string writePrivate(const TemporaryDirectory& directory, std::string_view name,
                                std::string_view content) {
    const std::filesystem::path file = directory.write(name, content);
    std::filesystem::permissions(
        file, std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    return file;
}

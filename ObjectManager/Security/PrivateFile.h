#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>

// Files with secrets, or with what decides who may log in: nobody else than their owner may read
// or replace them. All functions may be called by several threads at once.

namespace Security {

/// Who reads a file, and so whose file it may be.
enum class FileReader : std::uint8_t {
    kService,        ///< for which the owner of the file decides who may log in
    kAdministrator,  ///< who, being root, also changes the files of services of other users
};

/// Reads a file that is safe: it belongs to root or to the user of the process; nobody else can
/// read it but its group, where that is the group of the process; and nobody else can replace it,
/// see requireSafeDirectory().
/// Errors: TeskBaseException when the file cannot be read, is not a regular file, has more than
/// `maxSize` bytes, or is not safe. Its message says how to correct that.
[[nodiscard]] std::string readPrivateFile(const std::string& path, std::size_t maxSize,
                                          FileReader reader = FileReader::kService);

/// Throws a TeskBaseException unless the directory of a file is safe: it belongs to root or to the
/// user of the process, and others cannot write to it unless it is sticky. Who can replace the
/// files of a directory decides what is in them.
void requireSafeDirectory(const std::filesystem::path& file, FileReader reader);

/// The file itself; `path` where there is none. Who replaces that leaves symbolic links as they
/// are.
[[nodiscard]] std::filesystem::path withoutLinks(const std::string& path);

}  // namespace Security

#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Base/Files.h"

namespace Commands {

/// A directory into which documents are put, each of them whole: a file appears under its name by
/// rename, once all of it is written.
///
/// Files are not forced to the disk one by one, which would take minutes for thousands of them:
/// after a power failure export again. A process that ends, however it does, leaves no part of a
/// document under its name.
///
/// Symbolic links are not followed, except those on the way to the directory that create() is
/// given.
///
/// Errors: std::system_error that names the file or the directory.
///
/// Thread safety: may be used by several threads at once.
class OutputDirectory {
  public:
    enum class Outcome : std::uint8_t {
        kWritten,
        kUnchanged,  ///< the file had the same bytes already, and keeps its time stamp
    };

    /// What is wrong with the name of a file or a directory: "is empty", "is \"..\"", "has a
    /// \"/\"", "has a zero byte", "is longer than 255 bytes". Empty when nothing is. Names come
    /// from MOF files; all functions below take only names that are right.
    [[nodiscard]] static std::string_view validateName(std::string_view name) noexcept;

    /// Opens a directory; makes it, and those above it, where they are missing.
    [[nodiscard]] static OutputDirectory create(const std::filesystem::path& path);

    /// Opens a directory in this one; makes it where it is missing.
    [[nodiscard]] OutputDirectory createBelow(std::string_view name) const;

    /// Makes `content` the content of a file. After an error the file is as it was.
    Outcome put(std::string_view name, std::string_view content) const;

    /// Removes a file.
    void remove(std::string_view name) const;

    /// Keeps other exports out, whatever machine or container of this machine they run in, until
    /// this object is gone. Does nothing where the file system has no locks.
    /// Errors: as above, when another export is at work here.
    void lock();

    /// Removes the temporary files of processes that were killed while they wrote here. Returns how
    /// many there were. Removes none unless the directory is locked: they may be those of a process
    /// that runs.
    std::size_t removeUnfinishedFiles() const;

    /// The names of the regular files, in ascending order.
    [[nodiscard]] std::vector<std::string> files() const;

    /// The content of a file; empty when there is none.
    /// Errors: std::system_error of Base::readAll, and when it is not a regular file.
    [[nodiscard]] std::string contentOf(std::string_view name, std::size_t maxBytes) const;

    /// Whether a file of that name may be a temporary one, now or later.
    [[nodiscard]] static bool isTemporaryName(std::string_view name) noexcept;

    /// As in messages.
    [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }

  private:
    OutputDirectory(Base::FileDescriptor descriptor, std::filesystem::path path);

    [[nodiscard]] bool contains(std::string_view name, std::string_view content) const;

    Base::FileDescriptor descriptor_;
    Base::FileDescriptor lock_;
    std::filesystem::path path_;
};

}  // namespace Commands

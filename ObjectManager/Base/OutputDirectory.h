#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Base/Files.h"

namespace Base {

/// A directory into which a command puts files that it can make anew, each of them whole: a file
/// appears under its name by rename, once all of it is written.
///
/// Files are not forced to the disk one by one, which would take minutes for thousands of them:
/// after a power failure run the command again. A process that ends, however it does, leaves no
/// part of a file under its name.
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

    /// Opens a directory; makes it, and those above it, where they are missing. The names of
    /// temporary files tell the command, such as "export".
    [[nodiscard]] static OutputDirectory create(const std::filesystem::path& path,
                                                std::string_view command);

    /// Opens a directory in this one, for the same command; makes it where it is missing.
    [[nodiscard]] OutputDirectory createBelow(std::string_view name) const;

    /// The same for a path of names: "root/cimv2".
    [[nodiscard]] OutputDirectory createPath(std::string_view path) const;

    /// The names in a path, with slashes between them.
    [[nodiscard]] static std::vector<std::string> namesIn(std::string_view path);

    /// Makes `content` the content of a file. After an error the file is as it was.
    Outcome put(std::string_view name, std::string_view content) const;

    /// A file that is written, but does not have its name yet. It is removed again unless it is
    /// published.
    ///
    /// Thread safety: belongs to one thread.
    class StagedFile {
      public:
        /// `directory` must outlive this.
        StagedFile(const OutputDirectory& directory, std::string_view name,
                   std::string_view content);

        /// Makes it the file of its name. To be called once.
        void publish();

      private:
        std::filesystem::path path_;
        PreparedFile file_;
    };

    /// Writes what put() would write, for many files that are to change at the same time. Null when
    /// the file has the same bytes already. This directory must outlive the result.
    [[nodiscard]] std::unique_ptr<StagedFile> stage(std::string_view name,
                                                    std::string_view content) const;

    /// Removes a file.
    void remove(std::string_view name) const;

    /// Keeps other exports and imports out, whatever machine or container of this machine they run
    /// in, until this object is gone. Does nothing where the file system has no locks. Errors: as
    /// above, when another one is at work here.
    void lock();

    /// Removes the temporary files of processes that were killed while they wrote here. Returns how
    /// many there were. Removes none unless the directory is locked: they may be those of a process
    /// that runs.
    std::size_t removeUnfinishedFiles() const;

    /// The names of the regular files, in ascending order.
    [[nodiscard]] std::vector<std::string> files() const;

    /// The content of a file; empty when there is none.
    /// Errors: std::system_error of readAll, and when it is not a regular file.
    [[nodiscard]] std::string contentOf(std::string_view name, std::size_t maxBytes) const;

    /// Whether a file of that name may be a temporary one, now or later.
    [[nodiscard]] bool isTemporaryName(std::string_view name) const noexcept;

    /// As in messages.
    [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }

  private:
    OutputDirectory(FileDescriptor descriptor, std::filesystem::path path,
                    std::string temporaryPrefix);

    [[nodiscard]] bool contains(std::string_view name, std::string_view content) const;

    FileDescriptor descriptor_;
    FileDescriptor lock_;
    std::filesystem::path path_;
    std::string temporaryPrefix_;
};

}  // namespace Base

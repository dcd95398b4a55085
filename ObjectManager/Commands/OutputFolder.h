#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace Commands {

/// A folder into which documents are put, each of them whole: a file appears under its name by
/// rename, once all of it is written.
///
/// Files are not forced to the disk one by one, which would take minutes for thousands of them:
/// after a power failure export again. A process that ends, however it does, leaves no part of a
/// document under its name.
///
/// Names of files and of folders below are free of what faultOfFileName tells. Symbolic links are
/// not followed, but for those on the way to the folder that create() is given.
///
/// Errors: std::system_error that names the file or the folder.
///
/// Thread safety: may be used by several threads at once.
class OutputFolder {
  public:
    enum class Outcome : std::uint8_t {
        kWritten,
        kUnchanged,  ///< the file held the very bytes already, and keeps its time stamp
    };

    /// Opens a folder; makes it, and those above it, where they are missing.
    [[nodiscard]] static OutputFolder create(const std::filesystem::path& path);

    OutputFolder(OutputFolder&& other) noexcept;
    OutputFolder& operator=(OutputFolder&& other) noexcept;
    ~OutputFolder();

    /// Opens a folder in this one; makes it where it is missing.
    [[nodiscard]] OutputFolder createBelow(std::string_view name) const;

    /// Makes `content` the content of a file. After an error the file is as it was.
    Outcome put(std::string_view name, std::string_view content) const;

    /// Removes a file.
    void remove(std::string_view name) const;

    /// The names of the files proper: no folders, symbolic links or devices.
    [[nodiscard]] std::vector<std::string> files() const;

    /// Up to `length` bytes from the begin of a file; none where it cannot be read or is no file
    /// proper.
    [[nodiscard]] std::string head(std::string_view name, std::size_t length) const;

    /// As in messages.
    [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }

  private:
    OutputFolder(int descriptor, std::filesystem::path path);

    [[nodiscard]] bool holds(std::string_view name, std::string_view content) const;

    int descriptor_;
    std::filesystem::path path_;
};

}  // namespace Commands

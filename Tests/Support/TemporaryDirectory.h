#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// A new, empty directory that is removed with everything in it.
class TemporaryDirectory {
  public:
    TemporaryDirectory();
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory();

    [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const {
        return path_ / name;
    }

    /// Writes a file; returns its path.
    std::filesystem::path write(std::string_view name, std::string_view content) const;

    /// Copies a file into the directory under the given name; returns the copy's path.
    std::filesystem::path copy(const std::filesystem::path& file, std::string_view name) const;

  private:
    std::filesystem::path path_;
};

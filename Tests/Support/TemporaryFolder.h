#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// A new, empty folder that is removed with everything in it.
class TemporaryFolder {
  public:
    TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;
    ~TemporaryFolder();

    [[nodiscard]] const std::filesystem::path& path() const noexcept { return path_; }
    [[nodiscard]] std::filesystem::path operator/(std::string_view name) const {
        return path_ / name;
    }

    /// Writes a file; returns its path.
    std::filesystem::path write(std::string_view name, std::string_view content) const;

    /// Copies a file into the folder under the given name; returns the copy's path.
    std::filesystem::path copy(const std::filesystem::path& file, std::string_view name) const;

  private:
    std::filesystem::path path_;
};

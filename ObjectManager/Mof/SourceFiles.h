#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>
#include <tuple>
#include <vector>

namespace Mof {

/// A file that is open for reading. A schema may have more than a thousand of them, for which the
/// streams and the paths of the standard library take too long.
///
/// Thread safety: belongs to one thread.
class InputFile {
  public:
    /// Tells files apart, by whatever path they are reached.
    struct Identity {
        dev_t device = 0;
        ino_t number = 0;

        friend bool operator==(const Identity& left, const Identity& right) noexcept {
            return left.device == right.device && left.number == right.number;
        }
        friend bool operator<(const Identity& left, const Identity& right) noexcept {
            return std::tie(left.device, left.number) < std::tie(right.device, right.number);
        }
    };

    /// What may be opened. Opening a pipe waits until another process opens it for writing, perhaps
    /// for ever; only a user who names a pipe on the command line wants that.
    enum class Kind : std::uint8_t {
        kAny,
        kRegular,
    };

    /// Opens a file; none if no file has that path.
    /// Errors: std::system_error if it exists and cannot be read; with std::errc::not_supported if
    /// it is not of that kind.
    [[nodiscard]] static std::optional<InputFile> openIfExists(const std::string& path, Kind kind);

    InputFile(InputFile&& other) noexcept;
    InputFile& operator=(InputFile&& other) noexcept;
    ~InputFile();

    [[nodiscard]] const Identity& identity() const noexcept { return identity_; }

    /// Reads up to the end of the file, `maxBytes` at most: some devices have no end.
    /// Errors: std::system_error; with std::errc::file_too_large if there are more.
    [[nodiscard]] std::string readAll(std::size_t maxBytes) const;

  private:
    explicit InputFile(int descriptor) noexcept : descriptor_(descriptor) {}

    // How many bytes were read; 0 at the end.
    std::size_t read(char* buffer, std::size_t length) const;

    int descriptor_;
    Identity identity_;
    std::size_t expectedSize_ = 0;  // what the file system says; 0 for a pipe
};

/// A file in a directory.
struct DirectoryFile {
    std::string path;
    InputFile::Identity identity;  ///< none if the file does not exist: a link without a target
};

/// The files in a directory and in those below it whose name ends with ".mof" in any case, in the
/// order of their paths. Links to directories are followed; a directory that is reached by several
/// paths is read once, by one without links if there is one. Files are listed whether or not they
/// can be read.
/// Errors: std::filesystem::filesystem_error, which names the directory that cannot be read.
[[nodiscard]] std::vector<DirectoryFile> mofFilesIn(const std::string& directory);

}  // namespace Mof

#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <sys/types.h>
#include <tuple>

namespace Mof {

/// A file that is open for reading. There may be more than a thousand of them, for which the
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

    /// What may be opened. Of a pipe it is known only whether somebody is going to write to it when
    /// somebody does, so only who names one on purpose can wait for that.
    enum class Kind : std::uint8_t {
        kAny,      ///< waits for the writer of a pipe
        kRegular,  ///< waits for nothing
    };

    /// Opens a file; none where no file has that path.
    /// Errors: std::system_error when it is there and cannot be read; with std::errc::not_supported
    /// when it is not of that kind.
    [[nodiscard]] static std::optional<InputFile> openIfThere(const std::string& path, Kind kind);

    InputFile(InputFile&& other) noexcept;
    InputFile& operator=(InputFile&& other) noexcept;
    ~InputFile();

    [[nodiscard]] const Identity& identity() const noexcept { return identity_; }

    /// The bytes from where the file stands up to its end, `mostBytes` at most.
    /// Errors: std::system_error; with std::errc::file_too_large when there are more. Some devices
    /// have no end.
    [[nodiscard]] std::string readAll(std::size_t mostBytes) const;

  private:
    explicit InputFile(int descriptor) noexcept : descriptor_(descriptor) {}

    // How many bytes were read; 0 at the end.
    std::size_t read(char* buffer, std::size_t length) const;

    int descriptor_;
    Identity identity_;
    std::size_t expectedSize_ = 0;  // what the file system says; 0 for a pipe
};

}  // namespace Mof

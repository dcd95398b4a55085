#pragma once

#include <cstdint>
#include <string>
#include <sys/types.h>

namespace Commands {

/// By which it shows that a file has changed: another file has taken its name, or it was written
/// to. A change of its permissions does not count.
class FileStamp {
  public:
    /// Of no file.
    FileStamp() = default;

    /// Of the file at `path`; of no file where there is none, or it cannot be looked at.
    [[nodiscard]] static FileStamp of(const std::string& path) noexcept;

    friend bool operator==(const FileStamp&, const FileStamp&) = default;

  private:
    dev_t device_ = 0;
    ino_t number_ = 0;
    off_t size_ = -1;
    std::int64_t seconds_ = 0;  // of the last change
    std::int64_t nanoseconds_ = 0;
};

}  // namespace Commands

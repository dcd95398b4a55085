#pragma once

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>

#include "ObjectManager/Base/Files.h"

namespace Base {

/// A file that lines of a log are appended to, each by one call of write(2), so that lines of
/// several threads and processes do not mix.
///
/// When a line cannot be written, as on a full disk, it is lost. Standard error tells so once,
/// until a line can be written again.
///
/// Thread safety: may be used by several threads at once.
class LogFile {
  public:
    /// Opens the file at `path`, to which symbolic links are followed, and creates it if there is
    /// none, with the permissions 0640: lines name users and clients. "/dev/stdout" and
    /// "/dev/stderr" are the standard output and standard error of this process, whatever these are
    /// connected to; "/dev/null" takes all lines. Pipes, other devices and directories are refused
    /// at once: opening a pipe would wait until another process reads it.
    /// Errors: TeskBaseException that names the path and the reason.
    explicit LogFile(std::string path);

    /// Opens the path again, after a log rotation has renamed the file.
    /// Errors: as the constructor; lines go where they went then.
    void reopen();

    /// Appends `line`, which has its line end. Returns how many lines were lost since the last one
    /// that was written: 0 unless writing was not possible and now is again.
    [[nodiscard]] std::uint64_t write(std::string_view line) noexcept;

  private:
    [[nodiscard]] bool writeWhole(std::string_view line) noexcept;

    std::string path_;
    FileDescriptor file_;  // its number stays the same when the file is opened again
    std::atomic<std::uint64_t> lost_ = 0;
    std::atomic<bool> isCut_ = false;  // the file ends with a part of a line
};

}  // namespace Base

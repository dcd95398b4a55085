#pragma once

#include <string>

namespace Security {

/// Keeps others from changing a file, as long as they hold a lock before they do. The lock is an
/// empty file beside it, named after it with ".lock" behind, that is removed with the lock; one
/// that stayed behind after a crash keeps nobody out.
///
/// Thread safety: belongs to one thread. Locks of several threads and processes exclude each other.
class FileLock {
  public:
    /// Waits until nobody else holds a lock for the file at `path`, which need not exist.
    /// Errors: TeskBaseException when the lock cannot be made.
    explicit FileLock(const std::string& path);
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock();

  private:
    [[nodiscard]] bool tryLock();

    std::string lockPath_;
    int descriptor_ = -1;
};

}  // namespace Security

#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <system_error>
#include <tuple>
#include <vector>

// Files as the system knows them: by descriptor, for what streams and std::filesystem cannot do or
// do too slowly for thousands of files.
//
// Errors: unless it is said otherwise, std::system_error, whose code() is the reason that the
// system gives. Its what() names no file; the callers know how a message names theirs.
//
// Thread safety: functions may be called by several threads at once.

namespace Base {

/// Owns an open file or directory, and closes it at its end. Can be moved, not copied.
///
/// Thread safety: belongs to one thread; get() may be used by several at once.
class FileDescriptor {
  public:
    /// None.
    FileDescriptor() noexcept = default;
    /// Takes over the result of open(2) and the like; none when it is negative.
    explicit FileDescriptor(int number) noexcept : number_(number) {}
    FileDescriptor(FileDescriptor&& other) noexcept : number_(other.release()) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    /// Closes the file; leaves errno as it is.
    ~FileDescriptor();

    [[nodiscard]] bool isOpen() const noexcept { return number_ >= 0; }
    /// Negative when there is none.
    [[nodiscard]] int get() const noexcept { return number_; }
    /// Hands the descriptor over to the caller.
    [[nodiscard]] int release() noexcept;

    /// Closes the file now. After writing call this rather than the destructor: some file systems
    /// report only here that a write failed.
    void close();

  private:
    int number_ = -1;
};

/// Tells files apart, by whatever path they are reached.
struct FileIdentity {
    dev_t device = 0;
    ino_t number = 0;

    friend bool operator==(const FileIdentity&, const FileIdentity&) = default;
    friend bool operator<(const FileIdentity& left, const FileIdentity& right) noexcept {
        return std::tie(left.device, left.number) < std::tie(right.device, right.number);
    }
};

/// Changes when a file does: when another one takes its place, when it is written to, and when its
/// owner or its permissions change. Two changes within the resolution of the file system's clock
/// that leave the size as it is can look like one.
struct FileVersion {
    FileIdentity identity;
    off_t size = -1;                       ///< in bytes
    std::int64_t modifiedNanoseconds = 0;  ///< of the content, since 1970
    std::int64_t changedNanoseconds = 0;   ///< of the content, owner or permissions, since 1970
    mode_t mode = 0;                       ///< the type and the permissions, as of stat(2)

    /// Of the file at `path`, to which symbolic links are followed; equal to FileVersion() when
    /// there is none or it cannot be examined.
    [[nodiscard]] static FileVersion of(const std::string& path) noexcept;
    [[nodiscard]] static FileVersion of(const FileDescriptor& file);

    [[nodiscard]] bool isRegular() const noexcept;
    [[nodiscard]] bool isDirectory() const noexcept;

    friend bool operator==(const FileVersion&, const FileVersion&) = default;
};

/// Opens a regular file for reading, and never waits; none when no file has that path.
/// Errors: as above; std::errc::is_a_directory, and std::errc::not_supported for pipes, devices and
/// sockets.
[[nodiscard]] std::optional<FileDescriptor> openIfThere(const std::string& path);

/// The same; std::errc::no_such_file_or_directory when no file has that path.
[[nodiscard]] FileDescriptor openForReading(const std::string& path);

/// Why a file cannot be opened or read, as a message says it. `error` comes from the functions
/// here.
[[nodiscard]] std::string readFailure(const std::system_error& error);

/// Where an open file or directory is: an absolute path without links and "..". Right for this very
/// file, whatever has happened to the path by which it was opened.
[[nodiscard]] std::string locationOf(const FileDescriptor& file);

/// Opens a directory, for the functions that take one.
[[nodiscard]] FileDescriptor openDirectory(const std::string& path);

/// A name in a directory and what it stands for; links are not followed.
struct DirectoryEntry {
    enum class Kind : std::uint8_t { kRegular, kDirectory, kLink, kOther };

    std::string name;
    Kind kind = Kind::kOther;
};

/// What is in a directory, apart from "." and "..", in no order.
[[nodiscard]] std::vector<DirectoryEntry> entriesOf(const FileDescriptor& directory);

/// Fills `buffer` from where the file stands. Returns how many bytes were read, fewer than fit only
/// at the end of the file. For secrets, and for files that are read in parts.
[[nodiscard]] std::size_t readUpTo(const FileDescriptor& file, std::span<char> buffer);

/// The bytes from where the file stands to its end.
/// Errors: as above; std::errc::file_too_large when there are more than `maxBytes`, as in devices
/// that have no end.
[[nodiscard]] std::string readAll(const FileDescriptor& file, std::size_t maxBytes);

/// Opens a file and reads all of it.
[[nodiscard]] std::string readFile(const std::string& path, std::size_t maxBytes);

/// Writes all of `bytes` where the file stands. After an error part of them may be written.
void writeAll(const FileDescriptor& file, std::string_view bytes);

/// How a file is replaced.
struct ReplaceOptions {
    /// Permissions of the new file, less those that the umask of the process takes away.
    mode_t mode = 0666;
    /// Whether the new file gets the owner and group of the old one. Only root can do that; for
    /// other users the option does nothing.
    bool keepsOwner = false;
    /// Whether the call returns only when the file is safe on the disk. That takes milliseconds a
    /// file, so a set of thousands of files that can be made anew goes without it.
    bool isDurable = false;
    /// The content is written to a file whose name is this and then "PROCESS-NUMBER", in the same
    /// directory; a process that is killed leaves it there. Empty: the name of the file and a dot.
    std::string_view temporaryPrefix = {};
};

/// A file that has its content, but not its name yet: it is a temporary one until then.
///
/// Thread safety: belongs to one thread.
class PreparedFile {
  public:
    /// For the file `name` of `directory`, which must stay open as long as this lives.
    PreparedFile(const FileDescriptor& directory, std::string name, std::string_view content,
                 const ReplaceOptions& options = {});
    PreparedFile(const PreparedFile&) = delete;
    PreparedFile& operator=(const PreparedFile&) = delete;
    /// Removes the temporary file unless it was moved.
    ~PreparedFile();

    /// To be called once.
    void moveIntoPlace();

  private:
    int directory_;
    std::string name_;
    std::string temporaryName_;  // empty once it is moved
};

/// Makes `content` the content of the file `name` in `directory`: it is written to a temporary
/// file, which is then renamed. Others find the old file or the new one, never a part, and a reader
/// that has the old one open goes on reading that. A symbolic link is replaced, not followed.
///
/// After an error the old file is as it was and the temporary one is gone. The one exception: that
/// the directory cannot be written to the disk is reported after the file was replaced.
void replaceFile(const FileDescriptor& directory, const std::string& name, std::string_view content,
                 const ReplaceOptions& options = {});

/// The same by path.
void replaceFile(const std::string& path, std::string_view content,
                 const ReplaceOptions& options = {});

}  // namespace Base

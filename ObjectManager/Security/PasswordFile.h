#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Security/UserTable.h"

namespace Security {

/// How PasswordFile::change() waits for another process that changes a file of the same directory.
///
/// Thread safety: belongs to one thread.
struct LockWait {
    /// A change takes milliseconds; what holds the lock for longer hangs, or is not of tesk.
    std::chrono::milliseconds timeout = std::chrono::seconds(10);

    /// Called with the directory when there is something to wait for; may be empty.
    std::function<void(const std::string& directory)> tell = nullptr;
};

/// A file with a line "NAME:HASH" for each user, where HASH is the hash of the password. Empty
/// lines and lines that begin with "#" are comments; changes keep them.
///
/// No message shows the content of a wrong line: it may be a hash, or a password.
///
/// Thread safety: belongs to one thread. change() may be called by several threads and processes at
/// once.
class PasswordFile {
  public:
    /// A file with that text. `name` stands for it in messages.
    /// Errors: TeskBaseException for a wrong line; its message says which one and why.
    PasswordFile(std::string name, std::string_view text);

    /// Reads a file, as a service does whose users it has.
    /// Errors: TeskBaseException when the file cannot be read, is not a regular file, is larger
    /// than 16 MB, is not safe, or has a wrong line. Its message says how to correct that. A file
    /// is safe if it belongs to root or to the user of the process, if nobody else can read it but
    /// its group, where that is the group of the process, and if nobody else can replace it: its
    /// directory belongs to the same users, and others cannot write to it unless it is sticky.
    [[nodiscard]] static PasswordFile read(const std::string& path);

    /// Reads a file as change() does: if there is none, the result is empty; and root may read
    /// those of all users. Errors: as read().
    [[nodiscard]] static PasswordFile readForChange(const std::string& path);

    /// Reads a file (an empty one if there is none), lets `change` change it, and replaces it by
    /// the result, which keeps owner and permissions; a new file can only be read by its owner.
    /// Calls for files of the same directory wait for each other. If `change` throws, the file
    /// stays as it was. Errors: TeskBaseException as read(), and when the directory cannot be
    /// locked in time or the file cannot be written; it stays as it was then.
    static void change(const std::string& path, const std::function<void(PasswordFile&)>& change,
                       const LockWait& wait = {});

    [[nodiscard]] UserTable users() const;

    /// Sets the hash of a user, and adds the user if there is none of that name. Returns whether
    /// the user was added. Both must be valid, see validateUserName() and isPasswordHash().
    bool set(std::string_view user, const std::string& passwordHash);

    /// Removes a user. Returns whether there was one.
    bool remove(std::string_view user);

    /// The text of the file.
    [[nodiscard]] std::string text() const;

  private:
    struct Line {
        std::string text;
        std::size_t nameLength = 0;  // 0 for a line without a user

        [[nodiscard]] std::string_view user() const {
            return std::string_view(text).substr(0, nameLength);
        }
    };

    [[nodiscard]] Line parseLine(std::string_view text) const;
    [[nodiscard]] std::vector<Line>::iterator find(std::string_view user);
    [[noreturn]] void failAtNextLine(std::string_view message) const;

    std::string name_;
    std::vector<Line> lines_;
};

}  // namespace Security

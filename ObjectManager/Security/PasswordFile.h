#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Security/UserTable.h"

namespace Security {

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

    /// Reads a file.
    /// Errors: TeskBaseException when the file cannot be read, is not a regular file, can be read
    /// or written by others than its owner, or has a wrong line. Its message says how to correct
    /// that.
    [[nodiscard]] static PasswordFile read(const std::string& path);

    /// Reads a file (an empty one if there is none), lets `change` change it, and replaces it by
    /// the result, which only the owner of the file can read. Calls for files of the same directory
    /// wait for each other. If `change` throws, the file stays as it was.
    /// Errors: TeskBaseException as read(), and when the directory cannot be locked or the file
    /// cannot be written; it stays as it was then.
    static void change(const std::string& path, const std::function<void(PasswordFile&)>& change);

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

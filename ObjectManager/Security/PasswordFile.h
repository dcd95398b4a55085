#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Security/UserTable.h"

namespace Security {

/// The users and the hashes of their passwords as a file keeps them, one "NAME:HASH" a line. Empty
/// lines and lines that begin with "#" are kept and mean nothing.
///
/// No message shows what stands in a line that is wrong: it may be a hash, or a password.
///
/// Thread safety: one object belongs to one thread.
class PasswordFile {
  public:
    /// The file of the given text. `name` stands for it in messages.
    /// Errors: TeskBaseException for a wrong line; its message says which and why.
    PasswordFile(std::string name, std::string_view text);

    /// Reads a file.
    /// Errors: TeskBaseException when it cannot be read, is no regular file, may be read or written
    /// by others than its owner, or has a wrong line. Its message says how to mend that.
    [[nodiscard]] static PasswordFile read(const std::string& path);

    /// Reads a file, an empty one if there is none, lets `change` change it, and writes it back,
    /// for its owner alone to read. Nobody else changes it this way meanwhile. What `change` throws
    /// leaves the file as it was.
    /// Errors: TeskBaseException as read, and when the file cannot be written; it is as before
    /// then.
    static void change(const std::string& path, const std::function<void(PasswordFile&)>& change);

    [[nodiscard]] UserTable users() const;

    /// Sets the hash of a user, who is added when there is none of that name. Returns whether one
    /// was added. Both must be valid, see faultOfUserName and isPasswordHash.
    bool set(std::string_view user, const std::string& passwordHash);

    /// Removes a user. Returns whether there was one.
    bool remove(std::string_view user);

    /// As it is written.
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

#pragma once

#include <string>

#include "ObjectManager/Security/Options.h"
#include "ObjectManager/Security/SecretText.h"
#include "ObjectManager/Security/UserTable.h"

namespace Commands {

/// The users of the service.
struct ServiceUsers {
    Security::UserTable users;

    /// The temporary password of kTemporaryUser; empty if there is a password file.
    Security::SecretText generatedPassword;
};

/// The only user if there is no password file.
constexpr const char* kTemporaryUser = "tesk";

/// Reads the users of the password file, with a warning in the log if there are none. Without a
/// password file, generates a password for kTemporaryUser.
/// Errors: TeskBaseException when the file cannot be read or others than its owner can.
[[nodiscard]] ServiceUsers loadUsers(const Security::Options& options);

/// A file with the generated password, "USER:PASSWORD" in one line, for the case that standard
/// output is not a terminal: what is printed then goes to a journal or a file, which others read,
/// too. Only the owner of the file can read it.
///
/// Thread safety: belongs to one thread.
class PasswordNote {
  public:
    /// Makes a new file in the directory that XDG_RUNTIME_DIR names, else in that of TMPDIR, else
    /// in
    /// "/tmp".
    /// Errors: TeskBaseException when it cannot be written in any of them.
    explicit PasswordNote(const Security::SecretText& password);
    PasswordNote(const PasswordNote&) = delete;
    PasswordNote& operator=(const PasswordNote&) = delete;
    /// Removes the file.
    ~PasswordNote();

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

  private:
    std::string path_;
};

}  // namespace Commands

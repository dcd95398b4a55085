#pragma once

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

}  // namespace Commands

#pragma once

#include <string>

#include "ObjectManager/Configuration/Settings.h"
#include "ObjectManager/Security/SecretText.h"
#include "ObjectManager/Security/UserTable.h"

namespace Commands {

/// Who may use the service.
struct ServiceUsers {
    Security::UserTable users;

    /// The password that was made for the user kMadeUser; empty where there is a password file.
    Security::SecretText madePassword;
};

/// The user for whom a password is made where there is no password file.
constexpr const char* kMadeUser = "tesk";

/// Those of the password file, with a warning in the log when there are none, or one with a random
/// password, which is kept as a hash alone.
/// Errors: TeskBaseException when the file cannot be read or is not safe.
[[nodiscard]] ServiceUsers loadUsers(const Configuration::SecuritySettings& settings);

}  // namespace Commands

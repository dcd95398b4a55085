#pragma once

#include <functional>
#include <iosfwd>
#include <string>

#include "ObjectManager/Security/Options.h"
#include "ObjectManager/Security/SecretText.h"

namespace Commands {

/// What `tesk passwd` is asked to do.
struct PasswdRequest {
    std::string file;  ///< the password file; created if it is missing
    std::string user;
    bool isRemoval = false;  ///< removes the user instead of setting the password
    Security::PasswordHashOptions hashing = {};
};

/// Reads the new password; called only when the password file can be read.
/// Errors: TeskBaseException.
using PasswordSource = std::function<Security::SecretText()>;

/// Sets a user's password or removes the user, and writes to `messages` what was done or what
/// failed. Returns the exit status.
[[nodiscard]] int runPasswd(const PasswdRequest& request, const PasswordSource& readPassword,
                            std::ostream& messages);

}  // namespace Commands

#pragma once

#include <functional>
#include <iosfwd>
#include <string>

#include "ObjectManager/Security/PasswordHash.h"
#include "ObjectManager/Security/SecretText.h"

namespace Commands {

/// What `tesk passwd` is asked to do.
struct PasswdRequest {
    std::string file;  ///< the password file; made when it is missing
    std::string user;
    bool isRemoval = false;  ///< removes the user instead of setting the password
    Security::PasswordHashOptions hashing = {};
};

/// Where a new password comes from; asked only when all else is in order. Fails by a
/// TeskBaseException.
using PasswordSource = std::function<Security::SecretText()>;

/// Sets a user's password or removes the user; says so, or why not, on `messages`. Returns the exit
/// status.
[[nodiscard]] int runPasswd(const PasswdRequest& request, const PasswordSource& readPassword,
                            std::ostream& messages);

}  // namespace Commands

#pragma once

#include <string>
#include <string_view>

#include "ObjectManager/Security/Options.h"
#include "ObjectManager/Security/SecretText.h"

// Hashes of passwords as crypt(3) makes them: texts that hold method, cost, salt and digest. All
// functions may be used by several threads at once.

namespace Security {

/// A new hash of `password`, with a salt of its own.
/// Errors: TeskBaseException for an invalid password, a method or a cost that crypt(3) does not
/// know, or without memory.
[[nodiscard]] std::string hashPassword(const SecretText& password,
                                       const PasswordHashOptions& options = {});

/// Whether `hash` was made of `password`. Takes as long as making it, whatever the result is.
/// Errors: TeskBaseException without memory.
[[nodiscard]] bool verifyPassword(const SecretText& password, const std::string& hash);

/// Whether `text` looks like a hash that this system can verify: a complete hash of a method of
/// crypt(3), beginning with "$". The oldest methods have no "$" and are refused, because any word
/// of 13 letters would pass for such a hash.
[[nodiscard]] bool isPasswordHash(std::string_view text);

}  // namespace Security

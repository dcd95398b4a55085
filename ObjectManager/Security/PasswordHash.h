#pragma once

#include <string>
#include <string_view>

#include "ObjectManager/Security/SecretText.h"

// Hashes of passwords as crypt(3) makes them: texts that hold method, cost, salt and digest.

namespace Security {

struct PasswordHashOptions {
    /// The method, by the prefix that crypt(5) gives it. yescrypt needs so much memory that trying
    /// out passwords on many processors at once is expensive.
    std::string method = "$y$";

    /// How costly a hash is, in the measure of the method; 0 for the method's own default, which is
    /// 15 ms and 16 MiB for yescrypt.
    unsigned long cost = 0;
};

/// A new hash of `password`, with a salt of its own.
/// Errors: TeskBaseException for a password that is no valid one, a method or a cost that crypt(3)
/// does not know, or without memory.
[[nodiscard]] std::string hashPassword(const SecretText& password,
                                       const PasswordHashOptions& options = {});

/// Whether `hash` was made of `password`. Takes as long as making it, whatever the answer is.
/// Errors: TeskBaseException without memory.
[[nodiscard]] bool verifyPassword(const SecretText& password, const std::string& hash);

/// Whether `text` looks like a hash that can be verified here: a complete one of a method of
/// crypt(3) that begins with "$". The oldest ones do not, and are refused because any word of 13
/// letters would pass for one.
[[nodiscard]] bool isPasswordHash(std::string_view text);

}  // namespace Security

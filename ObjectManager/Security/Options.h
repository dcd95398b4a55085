#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace Security {

/// Whom the object manager lets in.
enum class Scheme {
    kBasic,  ///< who sends the name and the password of a user (RFC 7617)
    kNone,   ///< everybody
};

/// How the object manager authenticates its users.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several threads at
/// once.
struct Options {
    /// Passwords by default: what is published is nobody's business until somebody decides that it
    /// is everybody's.
    Scheme scheme = Scheme::kBasic;

    /// The path of the password file, see `tesk passwd`. Empty for none: then a temporary password
    /// is generated and printed at start.
    std::string passwordFile = {};

    /// For how long a verified password is remembered; 0 for not at all. Hashing a password takes
    /// 15 ms, too long for each request; a password that was changed elsewhere must not stay valid
    /// for long.
    std::chrono::milliseconds credentialLifetime = std::chrono::minutes(5);

    /// How many verified passwords are remembered, 128 bytes each. More than an object manager has
    /// users.
    std::size_t maxRememberedCredentials = 1024;

    friend bool operator==(const Options&, const Options&) = default;
};

/// How new password hashes are made.
///
/// Thread safety: as Options.
struct PasswordHashOptions {
    /// The method, by its prefix in crypt(5). yescrypt needs so much memory that trying out
    /// passwords on many processors at once is expensive.
    std::string method = "$y$";

    /// How costly a hash is, in the measure of the method; 0 for the method's own default, which is
    /// 15 ms and 16 MiB for yescrypt.
    unsigned long cost = 0;
};

}  // namespace Security

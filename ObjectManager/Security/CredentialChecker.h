#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>

#include "ObjectManager/Security/CredentialCache.h"
#include "ObjectManager/Security/Credentials.h"
#include "ObjectManager/Security/KeyedDigest.h"
#include "ObjectManager/Security/Options.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "ObjectManager/Security/SecretText.h"
#include "ObjectManager/Security/UserTable.h"

namespace Security {

/// What a CredentialChecker calls; replaced in tests.
struct CheckerHooks {
    /// Whether `passwordHash` was made of `password`.
    std::function<bool(const SecretText& password, const std::string& passwordHash)> verify =
        verifyPassword;

    Clock clock = std::chrono::steady_clock::now;
};

/// Tells whether a password is that of a user.
///
/// An unknown user costs the same as a wrong password: the password is checked against the hash of
/// another user, always the same one for a name, and the result is dropped. So neither the result
/// nor the time tells which users exist.
///
/// Equal credentials that are asked about at the same time cost one hash: their claims share its
/// result, right or wrong, as long as one of them lives.
///
/// Thread safety: may be used by several threads at once.
class CredentialChecker {
    class Check;

  public:
    /// What is checked for a user name and a password. Valid as long as the checker that made it.
    struct Claim {
        /// The hash that the password must have; null if there are no users.
        const std::string* passwordHash = nullptr;
        bool isOfUser = false;  ///< the hash is that of the user, not of another one
        KeyedDigest digest = {};
        std::shared_ptr<Check> check = nullptr;  ///< null if the password was remembered
    };

    /// Errors: TeskBaseException when the system has no random bytes.
    explicit CredentialChecker(UserTable users, const Options& options = {},
                               CheckerHooks hooks = {});

    /// Checks against other users, with the options of `former`. Each password is verified again,
    /// but those that `former` verified need no queue, see needsPasswordHash(). This holds only for
    /// users whose hash is the same, since the digests depend on it.
    /// Errors: std::bad_alloc.
    CredentialChecker(UserTable users, const CredentialChecker& former);

    /// To be made once for credentials that are asked about more than once.
    /// Errors: TeskBaseException without memory.
    [[nodiscard]] Claim claim(const Credentials& credentials) const;

    /// Whether the password is that of the user. `claim` must be made of `credentials`.
    /// Errors: TeskBaseException when there is no memory to compute a hash.
    [[nodiscard]] bool check(const Credentials& credentials, const Claim& claim);
    [[nodiscard]] bool check(const Credentials& credentials);

    /// Whether check() must hash a password that was never verified, and that is not known to be
    /// wrong. A verified one that is no longer remembered costs a hash, too, but its user must not
    /// queue with clients that send wrong passwords. Never waits for a hash.
    [[nodiscard]] bool needsPasswordHash(const Claim& claim) const;

  private:
    [[nodiscard]] const User& standInFor(std::string_view name) const;
    [[nodiscard]] std::shared_ptr<Check> checkOf(const KeyedDigest& digest) const;

    const UserTable users_;
    const Options options_;
    const CheckerHooks hooks_;
    const std::shared_ptr<const DigestKey> key_;
    CredentialCache cache_;
    mutable std::mutex checksMutex_;
    mutable std::map<KeyedDigest, std::weak_ptr<Check>> checks_;  // guarded by checksMutex_
};

}  // namespace Security

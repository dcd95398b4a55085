#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <semaphore>
#include <string>
#include <string_view>

#include "ObjectManager/Security/CredentialCache.h"
#include "ObjectManager/Security/CredentialKey.h"
#include "ObjectManager/Security/JoinedChecks.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "ObjectManager/Security/SecretText.h"
#include "ObjectManager/Security/UserTable.h"

namespace Security {

struct CredentialCheckerOptions {
    /// For how long a verified credential is remembered, so that hashing is not paid on each
    /// request; 0 for not at all.
    std::chrono::milliseconds credentialLifetime = std::chrono::minutes(5);

    /// How many credentials are remembered: more than an object manager has users. 128 bytes each.
    std::size_t mostRemembered = 1024;

    /// How many hashes are computed at once. One takes a processor for 15 ms and 16 MiB of memory
    /// by default; who sends wrong passwords shall not get more than this.
    std::ptrdiff_t mostHashesAtOnce = 4;

    /// Whether a hash was made of a password. Replaced in tests.
    std::function<bool(const SecretText& password, const std::string& passwordHash)> verify =
        verifyPassword;

    /// Replaced in tests.
    Clock clock = std::chrono::steady_clock::now;
};

/// Tells whether a password is that of a user.
///
/// An unknown user costs the same as a wrong password: the hash of another user is tried, always
/// the same for a name, and the result dropped. So neither answer nor time tells which names exist.
///
/// Thread safety: may be used by several threads at once.
class CredentialChecker {
  public:
    /// Errors: TeskBaseException when the system gives no random bytes.
    explicit CredentialChecker(UserTable users, CredentialCheckerOptions options = {});

    /// Checks against other users, with the options of `former`. What that remembered must be
    /// verified again, but is still known to have been right: see decidesQuickly(). The digests
    /// that say so are of the hashes, too, so that they hold for users who are the same.
    /// Errors: std::bad_alloc.
    CredentialChecker(UserTable users, const CredentialChecker& former);

    /// Errors: TeskBaseException when there is no memory to compute a hash.
    [[nodiscard]] bool check(std::string_view user, const SecretText& password);

    /// Whether check() will compute no hash, or only that of a credential that was right before.
    /// Costs the same for every user and password that is not.
    /// Errors: TeskBaseException without memory.
    [[nodiscard]] bool decidesQuickly(std::string_view user, const SecretText& password) const;

  private:
    // What is checked for a name and a password.
    struct Claim {
        const std::string& passwordHash;
        bool isOfUser;
        CredentialDigest digest;
    };

    // Where there are users.
    [[nodiscard]] Claim claimOf(std::string_view user, const SecretText& password) const;
    [[nodiscard]] bool verify(const SecretText& password, const std::string& passwordHash);

    const UserTable users_;
    const CredentialCheckerOptions options_;
    const std::shared_ptr<const CredentialKey> key_;
    CredentialCache remembered_;
    JoinedChecks checks_;
    std::counting_semaphore<> freeHashes_;
};

}  // namespace Security

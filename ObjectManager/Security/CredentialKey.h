#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <openssl/types.h>
#include <string_view>

namespace Security {

/// Stands for a name, a password and a hash together; tells nothing of them to who has not the key.
using CredentialDigest = std::array<unsigned char, 32>;

/// Makes digests of credentials with a random key that never leaves the process (HMAC-SHA-256).
///
/// Thread safety: immutable, may be used by several threads at once.
class CredentialKey {
  public:
    /// A key of its own.
    /// Errors: TeskBaseException when the system gives no random bytes.
    CredentialKey();

    /// Errors: TeskBaseException without memory.
    [[nodiscard]] CredentialDigest digest(std::string_view user, std::string_view password,
                                          std::string_view passwordHash) const;

    /// One of the numbers below `count`, which must not be 0: always the same for a name, as if it
    /// were drawn for each.
    /// Errors: as digest.
    [[nodiscard]] std::size_t choose(std::string_view name, std::size_t count) const;

  private:
    struct Release {
        void operator()(EVP_MAC_CTX* context) const noexcept;
    };
    using Context = std::unique_ptr<EVP_MAC_CTX, Release>;

    [[nodiscard]] Context start() const;

    Context keyed_;  // copied for each digest, which is cheaper than to set the key each time
};

}  // namespace Security

#pragma once

#include <array>
#include <initializer_list>
#include <memory>
#include <openssl/types.h>
#include <string_view>

namespace Security {

/// A keyed digest (HMAC-SHA-256) of some texts; reveals nothing without the key.
using KeyedDigest = std::array<unsigned char, 32>;

/// A random key that never leaves the process.
///
/// Thread safety: immutable, may be used by several threads at once.
class DigestKey {
  public:
    /// Errors: TeskBaseException when the system has no random bytes.
    DigestKey();

    /// The digest of `texts`. It depends on each text and on where each ends.
    /// Errors: TeskBaseException without memory.
    [[nodiscard]] KeyedDigest digest(std::initializer_list<std::string_view> texts) const;

  private:
    struct Release {
        void operator()(EVP_MAC_CTX* context) const noexcept;
    };
    using Context = std::unique_ptr<EVP_MAC_CTX, Release>;

    Context keyed_;  // copied for each digest, which is faster than setting the key each time
};

}  // namespace Security

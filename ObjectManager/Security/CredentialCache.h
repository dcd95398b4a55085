#pragma once

#include <chrono>
#include <cstddef>
#include <cstring>
#include <deque>
#include <functional>
#include <shared_mutex>
#include <unordered_map>

#include "ObjectManager/Security/CredentialKey.h"

namespace Security {

/// What tells the time; replaced in tests.
using Clock = std::function<std::chrono::steady_clock::time_point()>;

/// Remembers credentials that were verified, by their digests, for a while. That one was verified
/// once is known for longer, until others take its place.
///
/// Thread safety: may be used by several threads at once.
class CredentialCache {
  public:
    /// Holds at most `capacity` credentials, each remembered for `lifetime` after it was verified.
    CredentialCache(std::chrono::milliseconds lifetime, std::size_t capacity, Clock clock);

    /// Holds what `former` holds, and remembers nothing of it.
    /// Errors: std::bad_alloc.
    explicit CredentialCache(const CredentialCache& former);
    CredentialCache& operator=(const CredentialCache&) = delete;
    ~CredentialCache() = default;

    [[nodiscard]] bool contains(const CredentialDigest& digest) const;

    /// Whether the credential was remembered at some time. Not to let anybody in.
    [[nodiscard]] bool hasHeld(const CredentialDigest& digest) const;

    /// Remembers a credential. When there are too many, the one goes that was verified first.
    void remember(const CredentialDigest& digest);

  private:
    using TimePoint = std::chrono::steady_clock::time_point;

    // A digest is as good as random: a part of it is a good hash.
    struct DigestHash {
        std::size_t operator()(const CredentialDigest& digest) const noexcept {
            std::size_t hash = 0;
            std::memcpy(&hash, digest.data(), sizeof hash);
            return hash;
        }
    };

    void forgetFirst();

    const std::chrono::milliseconds lifetime_;
    const std::size_t capacity_;
    const Clock clock_;
    mutable std::shared_mutex mutex_;
    std::unordered_map<CredentialDigest, TimePoint, DigestHash> expiry_;  // guarded by mutex_
    std::deque<CredentialDigest> order_;  // first verified first; guarded by mutex_
};

}  // namespace Security

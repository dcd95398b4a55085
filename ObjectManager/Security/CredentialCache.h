#pragma once

#include <chrono>
#include <cstddef>
#include <cstring>
#include <deque>
#include <functional>
#include <shared_mutex>
#include <unordered_map>

#include "ObjectManager/Security/KeyedDigest.h"

namespace Security {

/// Tells the time; replaced in tests.
using Clock = std::function<std::chrono::steady_clock::time_point()>;

/// Remembers verified credentials by their digests for a lifetime. After it, the cache still knows
/// that they were verified once, until newer ones take their place.
///
/// Thread safety: may be used by several threads at once.
class CredentialCache {
  public:
    /// Holds at most `capacity` credentials, each remembered for `lifetime` after it was verified.
    CredentialCache(std::chrono::milliseconds lifetime, std::size_t capacity, Clock clock);

    /// Knows what was verified in `former`, but every lifetime has passed.
    /// Errors: std::bad_alloc.
    explicit CredentialCache(const CredentialCache& former);
    CredentialCache& operator=(const CredentialCache&) = delete;
    ~CredentialCache() = default;

    /// Whether the credential is remembered.
    [[nodiscard]] bool contains(const KeyedDigest& digest) const;

    /// Whether the credential was verified once, however long ago. Does not authenticate anybody.
    [[nodiscard]] bool wasVerified(const KeyedDigest& digest) const;

    /// Remembers a credential that was just verified. If the cache is full, the one that was
    /// verified first is forgotten.
    /// Errors: std::bad_alloc; the cache stays usable.
    void remember(const KeyedDigest& digest);

  private:
    using TimePoint = std::chrono::steady_clock::time_point;

    // A digest is as good as random: a part of it is a good hash.
    struct DigestHash {
        std::size_t operator()(const KeyedDigest& digest) const noexcept {
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
    std::unordered_map<KeyedDigest, TimePoint, DigestHash> expiry_;  // guarded by mutex_
    std::deque<KeyedDigest> order_;  // first verified first; guarded by mutex_
};

}  // namespace Security

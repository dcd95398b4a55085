#include "ObjectManager/Security/CredentialCache.h"

#include <mutex>
#include <utility>

namespace Security {

CredentialCache::CredentialCache(std::chrono::milliseconds lifetime, std::size_t capacity,
                                 Clock clock)
    : lifetime_(lifetime), capacity_(capacity), clock_(std::move(clock)) {}

bool CredentialCache::contains(const CredentialDigest& digest) const {
    const std::shared_lock lock(mutex_);
    const auto entry = expiry_.find(digest);
    return entry != expiry_.end() && clock_() < entry->second;
}

void CredentialCache::remember(const CredentialDigest& digest) {
    if (capacity_ == 0)
        return;
    const TimePoint now = clock_();
    const std::unique_lock lock(mutex_);
    while (!order_.empty() && order_.front().expiry <= now)
        forgetFirst();
    if (expiry_.contains(digest))
        return;
    if (order_.size() == capacity_)
        forgetFirst();
    order_.push_back({digest, now + lifetime_});
    expiry_.emplace(digest, now + lifetime_);
}

void CredentialCache::forgetFirst() {
    expiry_.erase(order_.front().digest);
    order_.pop_front();
}

}  // namespace Security

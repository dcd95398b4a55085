#include "ObjectManager/Security/CredentialCache.h"

#include <mutex>
#include <utility>

namespace Security {

CredentialCache::CredentialCache(std::chrono::milliseconds lifetime, std::size_t capacity,
                                 Clock clock)
    : lifetime_(lifetime), capacity_(capacity), clock_(std::move(clock)) {}

CredentialCache::CredentialCache(const CredentialCache& former)
    : lifetime_(former.lifetime_), capacity_(former.capacity_), clock_(former.clock_) {
    const TimePoint now = clock_();
    const std::shared_lock lock(former.mutex_);
    order_ = former.order_;
    for (const KeyedDigest& digest : order_)
        expiry_.emplace(digest, now);
}

bool CredentialCache::contains(const KeyedDigest& digest) const {
    const std::shared_lock lock(mutex_);
    const auto entry = expiry_.find(digest);
    return entry != expiry_.end() && clock_() < entry->second;
}

bool CredentialCache::wasVerified(const KeyedDigest& digest) const {
    const std::shared_lock lock(mutex_);
    return expiry_.contains(digest);
}

void CredentialCache::remember(const KeyedDigest& digest) {
    if (capacity_ == 0)
        return;
    const TimePoint now = clock_();
    const std::unique_lock lock(mutex_);
    if (const auto entry = expiry_.find(digest); entry != expiry_.end()) {
        if (now < entry->second)
            return;
        std::erase(order_, digest);
        expiry_.erase(entry);
    }
    if (order_.size() == capacity_)
        forgetFirst();
    order_.push_back(digest);
    try {
        expiry_.emplace(digest, now + lifetime_);
    } catch (...) {
        order_.pop_back();  // or the digest would stand there twice when it is remembered later
        throw;
    }
}

void CredentialCache::forgetFirst() {
    expiry_.erase(order_.front());
    order_.pop_front();
}

}  // namespace Security

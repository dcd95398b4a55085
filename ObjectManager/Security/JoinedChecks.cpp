#include "ObjectManager/Security/JoinedChecks.h"

namespace Security {

bool JoinedChecks::run(const CredentialDigest& digest, const std::function<bool()>& check) {
    std::packaged_task<bool()> work(check);
    std::shared_future<bool> result = work.get_future().share();
    std::unique_lock lock(mutex_);
    const auto [entry, isFirst] = underWay_.try_emplace(digest, result);
    if (!isFirst) {
        result = entry->second;
        lock.unlock();
        return result.get();
    }
    lock.unlock();
    work();
    lock.lock();
    underWay_.erase(digest);
    lock.unlock();
    return result.get();
}

}  // namespace Security

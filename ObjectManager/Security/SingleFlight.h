#pragma once

#include <functional>
#include <future>
#include <map>
#include <mutex>

namespace Security {

/// Joins concurrent calls with the same key: one caller does the work, all get its result.
///
/// Thread safety: may be used by several threads at once.
template <typename Key, typename Result>
class SingleFlight {
  public:
    /// Returns the result of `work`, or that of a call with the same key that is running. What the
    /// work throws is thrown to all callers that waited for it.
    [[nodiscard]] Result run(const Key& key, const std::function<Result()>& work) {
        std::packaged_task<Result()> task(work);
        std::shared_future<Result> result = task.get_future().share();
        std::unique_lock lock(mutex_);
        const auto [entry, isFirst] = running_.try_emplace(key, result);
        if (!isFirst) {
            result = entry->second;
            lock.unlock();
            return result.get();
        }
        lock.unlock();
        task();
        lock.lock();
        running_.erase(key);
        lock.unlock();
        return result.get();
    }

  private:
    std::mutex mutex_;
    std::map<Key, std::shared_future<Result>> running_;  // guarded by mutex_
};

}  // namespace Security

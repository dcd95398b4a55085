#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <memory>
#include <mutex>
#include <unordered_set>
#include <vector>

namespace Http {

class Connection;

/// The connections that are open.
///
/// Thread safety: may be used by several threads at once.
class ConnectionSet {
  public:
    /// `connection` must be removed before it is destroyed.
    /// Errors: std::bad_alloc.
    void add(Connection& connection);

    /// Does nothing for one that is not there.
    void remove(Connection& connection) noexcept;

    [[nodiscard]] std::size_t size() const;

    /// Those that are open now.
    [[nodiscard]] std::vector<std::shared_ptr<Connection>> all() const;

    /// Returns true as soon as none is open, false if one is at the deadline.
    [[nodiscard]] bool waitUntilEmpty(std::chrono::steady_clock::time_point deadline) const;

  private:
    mutable std::mutex mutex_;
    mutable std::condition_variable empty_;
    std::unordered_set<Connection*> connections_;  // guarded by mutex_
};

}  // namespace Http

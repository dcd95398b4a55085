#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <unordered_map>
#include <vector>

#include "ObjectManager/Http/ClientAddress.h"

namespace Http {

class Connection;

/// The open connections of a server. It knows how many each client has, and which of them still
/// read the header section of their request.
///
/// Thread safety: may be used by several threads at once.
class ConnectionSet {
  public:
    /// Adds a connection of `client` that begins to read. It must be removed before it is
    /// destroyed.
    /// Errors: std::bad_alloc; the set stays as it was.
    void add(Connection& connection, const ClientKey& client);

    /// `connection` does not read its header section any more. Does nothing if it is not in the
    /// set.
    void endReading(Connection& connection) noexcept;

    /// Does nothing if `connection` is not in the set.
    void remove(Connection& connection) noexcept;

    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] std::size_t sizeOf(const ClientKey& client) const;

    /// The connection that was added first of those that still read; null if none does.
    [[nodiscard]] std::shared_ptr<Connection> oldestReading() const;

    /// The connections that are open now.
    /// Errors: std::bad_alloc.
    [[nodiscard]] std::vector<std::shared_ptr<Connection>> all() const;

    /// Returns true as soon as the set is empty, false if it is not at the deadline.
    [[nodiscard]] bool waitUntilEmpty(std::chrono::steady_clock::time_point deadline) const;

    /// The same for the connections that still read.
    [[nodiscard]] bool waitUntilNoneReads(std::chrono::steady_clock::time_point deadline) const;

  private:
    struct Entry {
        std::map<ClientKey, std::size_t>::iterator client;
        std::optional<std::list<Connection*>::iterator> reading;  // null once it has read
    };

    // To be called with mutex_ locked.
    void endReading(Entry& entry) noexcept;

    mutable std::mutex mutex_;
    mutable std::condition_variable empty_;
    mutable std::condition_variable noneReads_;
    std::unordered_map<Connection*, Entry> connections_;  // guarded by mutex_
    std::map<ClientKey, std::size_t> perClient_;          // guarded by mutex_
    std::list<Connection*> reading_;                      // oldest first; guarded by mutex_
};

}  // namespace Http

#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <vector>

#include "ObjectManager/Http/ClientAddress.h"

namespace Http {

class Connection;

/// The open connections of a server. It knows how many each client has, which of them still read
/// the header section of their request, and which linger after their response.
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

    /// `connection` has sent its response and may be closed when its place is needed. It does not
    /// count for its client any more. Does nothing if it is not in the set.
    void beginLingering(Connection& connection) noexcept;

    /// Does nothing if `connection` is not in the set.
    void remove(Connection& connection) noexcept;

    [[nodiscard]] std::size_t size() const;
    /// The number of connections of `client` that do not linger.
    [[nodiscard]] std::size_t sizeOf(const ClientKey& client) const;

    /// The connection that was added first of those that still read; null if none does.
    [[nodiscard]] std::shared_ptr<Connection> oldestReading() const;

    /// The connection that has lingered for longest; null if none does.
    [[nodiscard]] std::shared_ptr<Connection> oldestLingering() const;

    /// The connections that are open now.
    /// Errors: std::bad_alloc.
    [[nodiscard]] std::vector<std::shared_ptr<Connection>> all() const;

    /// Returns true as soon as all connections linger, false if one does not at the deadline.
    [[nodiscard]] bool waitUntilServed(std::chrono::steady_clock::time_point deadline) const;

    /// The same for the connections that still read.
    [[nodiscard]] bool waitUntilNoneReads(std::chrono::steady_clock::time_point deadline) const;

  private:
    struct Entry {
        std::map<ClientKey, std::size_t>::iterator client;  // not while it lingers
        std::list<Connection*>* list;                       // one of those below
        std::list<Connection*>::iterator place;             // in the list
    };

    // To be called with mutex_ locked.
    void move(Entry& entry, std::list<Connection*>& to) noexcept;
    void endCounting(Entry& entry) noexcept;
    void notify() noexcept;

    mutable std::mutex mutex_;
    mutable std::condition_variable served_;
    mutable std::condition_variable noneReads_;
    std::unordered_map<Connection*, Entry> connections_;  // guarded by mutex_
    std::map<ClientKey, std::size_t> perClient_;          // guarded by mutex_
    std::list<Connection*> reading_;                      // oldest first; guarded by mutex_
    std::list<Connection*> serving_;                      // guarded by mutex_
    std::list<Connection*> lingering_;                    // oldest first; guarded by mutex_
};

}  // namespace Http

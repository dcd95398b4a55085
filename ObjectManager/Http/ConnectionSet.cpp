#include "ObjectManager/Http/ConnectionSet.h"

#include "ObjectManager/Http/Connection.h"

namespace Http {

void ConnectionSet::add(Connection& connection) {
    const std::lock_guard lock(mutex_);
    connections_.insert(&connection);
}

void ConnectionSet::remove(Connection& connection) noexcept {
    const std::lock_guard lock(mutex_);
    connections_.erase(&connection);
    if (connections_.empty())
        empty_.notify_all();
}

std::size_t ConnectionSet::size() const {
    const std::lock_guard lock(mutex_);
    return connections_.size();
}

std::vector<std::shared_ptr<Connection>> ConnectionSet::all() const {
    std::vector<std::shared_ptr<Connection>> connections;
    const std::lock_guard lock(mutex_);
    connections.reserve(connections_.size());
    for (Connection* const connection : connections_) {
        // Null for one that is just being destroyed.
        if (auto owned = connection->weak_from_this().lock())
            connections.push_back(std::move(owned));
    }
    return connections;
}

bool ConnectionSet::waitUntilEmpty(std::chrono::steady_clock::time_point deadline) const {
    std::unique_lock lock(mutex_);
    return empty_.wait_until(lock, deadline, [this] { return connections_.empty(); });
}

}  // namespace Http

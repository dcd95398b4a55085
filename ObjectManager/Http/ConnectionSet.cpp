#include "ObjectManager/Http/ConnectionSet.h"

#include <utility>

#include "ObjectManager/Http/Connection.h"

namespace Http {

void ConnectionSet::add(Connection& connection, const ClientKey& client) {
    std::list<Connection*> reading = {&connection};
    const std::lock_guard lock(mutex_);
    const auto [entry, isNew] = connections_.try_emplace(&connection);
    try {
        entry->second.client = perClient_.try_emplace(client, 0).first;
    } catch (...) {
        connections_.erase(entry);
        throw;
    }
    ++entry->second.client->second;
    entry->second.reading = reading.begin();
    reading_.splice(reading_.end(), reading);
}

void ConnectionSet::endReading(Connection& connection) noexcept {
    const std::lock_guard lock(mutex_);
    if (const auto entry = connections_.find(&connection); entry != connections_.end())
        endReading(entry->second);
}

void ConnectionSet::endReading(Entry& entry) noexcept {
    if (!entry.reading)
        return;
    reading_.erase(*entry.reading);
    entry.reading.reset();
    if (reading_.empty())
        noneReads_.notify_all();
}

void ConnectionSet::remove(Connection& connection) noexcept {
    const std::lock_guard lock(mutex_);
    const auto entry = connections_.find(&connection);
    if (entry == connections_.end())
        return;
    endReading(entry->second);
    const auto client = entry->second.client;
    if (--client->second == 0)
        perClient_.erase(client);
    connections_.erase(entry);
    if (connections_.empty())
        empty_.notify_all();
}

std::size_t ConnectionSet::size() const {
    const std::lock_guard lock(mutex_);
    return connections_.size();
}

std::size_t ConnectionSet::sizeOf(const ClientKey& client) const {
    const std::lock_guard lock(mutex_);
    const auto count = perClient_.find(client);
    return count == perClient_.end() ? 0 : count->second;
}

std::shared_ptr<Connection> ConnectionSet::oldestReading() const {
    const std::lock_guard lock(mutex_);
    return reading_.empty() ? nullptr : reading_.front()->weak_from_this().lock();
}

std::vector<std::shared_ptr<Connection>> ConnectionSet::all() const {
    std::vector<std::shared_ptr<Connection>> connections;
    const std::lock_guard lock(mutex_);
    connections.reserve(connections_.size());
    for (const auto& [connection, entry] : connections_) {
        // Null for a connection that is being destroyed.
        if (auto owned = connection->weak_from_this().lock())
            connections.push_back(std::move(owned));
    }
    return connections;
}

bool ConnectionSet::waitUntilEmpty(std::chrono::steady_clock::time_point deadline) const {
    std::unique_lock lock(mutex_);
    return empty_.wait_until(lock, deadline, [this] { return connections_.empty(); });
}

bool ConnectionSet::waitUntilNoneReads(std::chrono::steady_clock::time_point deadline) const {
    std::unique_lock lock(mutex_);
    return noneReads_.wait_until(lock, deadline, [this] { return reading_.empty(); });
}

}  // namespace Http

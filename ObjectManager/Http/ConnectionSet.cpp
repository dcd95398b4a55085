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
    entry->second.list = &reading_;
    entry->second.place = reading.begin();
    reading_.splice(reading_.end(), reading);
}

void ConnectionSet::endReading(Connection& connection) noexcept {
    const std::lock_guard lock(mutex_);
    const auto entry = connections_.find(&connection);
    if (entry != connections_.end() && entry->second.list == &reading_)
        move(entry->second, serving_);
}

void ConnectionSet::beginLingering(Connection& connection) noexcept {
    const std::lock_guard lock(mutex_);
    const auto entry = connections_.find(&connection);
    if (entry == connections_.end() || entry->second.list == &lingering_)
        return;
    endCounting(entry->second);
    move(entry->second, lingering_);
}

void ConnectionSet::remove(Connection& connection) noexcept {
    const std::lock_guard lock(mutex_);
    const auto found = connections_.find(&connection);
    if (found == connections_.end())
        return;
    Entry& entry = found->second;
    if (entry.list != &lingering_)
        endCounting(entry);
    entry.list->erase(entry.place);
    connections_.erase(found);
    notify();
}

void ConnectionSet::move(Entry& entry, std::list<Connection*>& to) noexcept {
    to.splice(to.end(), *entry.list, entry.place);
    entry.list = &to;
    notify();
}

void ConnectionSet::endCounting(Entry& entry) noexcept {
    if (--entry.client->second == 0)
        perClient_.erase(entry.client);
}

void ConnectionSet::notify() noexcept {
    if (!reading_.empty())
        return;
    noneReads_.notify_all();
    if (serving_.empty())
        served_.notify_all();
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

std::shared_ptr<Connection> ConnectionSet::oldestLingering() const {
    const std::lock_guard lock(mutex_);
    return lingering_.empty() ? nullptr : lingering_.front()->weak_from_this().lock();
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

bool ConnectionSet::waitUntilServed(std::chrono::steady_clock::time_point deadline) const {
    std::unique_lock lock(mutex_);
    return served_.wait_until(lock, deadline,
                              [this] { return reading_.empty() && serving_.empty(); });
}

bool ConnectionSet::waitUntilNoneReads(std::chrono::steady_clock::time_point deadline) const {
    std::unique_lock lock(mutex_);
    return noneReads_.wait_until(lock, deadline, [this] { return reading_.empty(); });
}

}  // namespace Http

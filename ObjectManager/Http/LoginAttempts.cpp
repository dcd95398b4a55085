#include "ObjectManager/Http/LoginAttempts.h"

#include <algorithm>
#include <cmath>

namespace Http {

namespace {

LoginAttempts::Duration delayAfter(double failures) {
    if (failures < LoginAttempts::kFreeFailures)
        return {};
    const double factor = std::exp2(std::min(failures - LoginAttempts::kFreeFailures, 30.0));
    const std::chrono::duration<double> delay = LoginAttempts::kFirstDelay * factor;
    return std::min(std::chrono::duration_cast<LoginAttempts::Duration>(delay),
                    LoginAttempts::kMaxDelay);
}

}  // namespace

double LoginAttempts::Failures::at(TimePoint now) const {
    const std::chrono::duration<double> age = now - counted;
    const std::chrono::duration<double> halfLife = kHalfLife;
    return number * std::exp2(-age / halfLife);
}

bool LoginAttempts::isKnown(const ClientKey& client, const std::string& user) const {
    const auto clients = known_.find(user);
    return clients != known_.end() &&
           std::ranges::find(clients->second, client) != clients->second.end();
}

LoginAttempts::Duration LoginAttempts::delay(const ClientKey& client, TimePoint now) const {
    const auto failures = failures_.find(client);
    return failures == failures_.end() ? Duration() : delayAfter(failures->second.at(now));
}

LoginAttempts::TimePoint LoginAttempts::nextTry(const ClientKey& client) const {
    const auto failures = failures_.find(client);
    return failures == failures_.end() ? TimePoint() : failures->second.nextTry;
}

void LoginAttempts::begin(const ClientKey& client, TimePoint now) {
    if (const auto failures = failures_.find(client); failures != failures_.end())
        failures->second.nextTry = now + delayAfter(failures->second.at(now));
}

void LoginAttempts::addRight(const ClientKey& client, const std::string& user) {
    if (isKnown(client, user))
        return;
    std::deque<ClientKey>& clients = known_[user];
    clients.push_back(client);
    if (clients.size() > kMaxClientsPerUser)
        clients.pop_front();
}

void LoginAttempts::addWrong(const ClientKey& client, TimePoint now) {
    if (!failures_.contains(client))
        makeRoom();
    Failures& failures = failures_[client];
    failures.number = failures.at(now) + 1;
    failures.counted = now;
    // The number halves in a half-life, so its logarithm and the moment together order clients.
    const std::chrono::duration<double> age = now.time_since_epoch();
    const std::chrono::duration<double> halfLife = kHalfLife;
    failures.rank = std::log2(failures.number) + age / halfLife;
    failures.nextTry = std::max(failures.nextTry, now + delayAfter(failures.number));
}

void LoginAttempts::makeRoom() {
    if (failures_.size() < kMaxClients)
        return;
    failures_.erase(std::ranges::min_element(failures_, {},
                                             [](const auto& entry) { return entry.second.rank; }));
}

}  // namespace Http

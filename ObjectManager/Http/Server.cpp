#include "ObjectManager/Http/Server.h"

#include <algorithm>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include "ObjectManager/Http/Connection.h"
#include "ObjectManager/Http/ConnectionSet.h"
#include "ObjectManager/Http/Dispatcher.h"
#include "ObjectManager/Http/IoThread.h"
#include "ObjectManager/Http/Listener.h"
#include "ObjectManager/Http/UriHost.h"
#include "ObjectManager/Http/WorkerPool.h"

namespace Http {

namespace {

using boost::asio::ip::tcp;
using std::chrono::steady_clock;

// What a worker does after the provider has returned takes much less.
constexpr std::chrono::seconds kSettlingTime{1};

}  // namespace

// The members stand in an order in which the threads end before what they use.
class Server::Implementation {
  public:
    Implementation(const ServerOptions& options, const TeskProviderPluginManager& manager)
        : options_(options), dispatcher_(manager) {
        for (const auto& [address, port] : options.listen) {
            const auto& listener = listeners_.emplace_back(
                std::make_unique<Listener>(ioThread_.context(), address, port));
            addresses_.push_back({.address = toUriHost(listener->endpoint().address()),
                                  .port = listener->endpoint().port()});
        }
    }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    ~Implementation() {
        ioThread_.stop();
        closeListeners();
    }

    [[nodiscard]] const std::vector<ListenAddress>& addresses() const noexcept {
        return addresses_;
    }

    void start() {
        workers_.emplace(options_.workers, options_.mostSlowWaiting);
        context_.emplace(contextOf(connections_));
        turnedAwayContext_.emplace(contextOf(turnedAway_));
        for (const std::unique_ptr<Listener>& listener : listeners_) {
            listener->start([this](tcp::socket socket, const tcp::endpoint& client) {
                accept(std::move(socket), client);
            });
        }
        ioThread_.start();
    }

    bool stop(std::chrono::milliseconds gracePeriod) {
        const steady_clock::time_point deadline = steady_clock::now() + gracePeriod;
        if (!ioThread_.isRunning()) {
            closeListeners();
            return true;
        }
        ioThread_.call([this] {
            closeListeners();
            for (const auto& connection : connections_.all())
                connection->closeIfReading();
            for (const auto& connection : turnedAway_.all())
                connection->abandon();
        });
        if (!connections_.waitUntilEmpty(deadline)) {
            workers_->dropWaiting();
            ioThread_.call([this] {
                for (const auto& connection : connections_.all())
                    connection->abandon();
            });
        }
        return workers_->waitUntilIdle(std::max(deadline, steady_clock::now() + kSettlingTime));
    }

  private:
    [[nodiscard]] ConnectionContext contextOf(ConnectionSet& connections) {
        return {.options = options_,
                .dispatcher = dispatcher_,
                .workers = *workers_,
                .connections = connections};
    }

    void closeListeners() {
        for (const std::unique_ptr<Listener>& listener : listeners_)
            listener->close();
    }

    void accept(tcp::socket socket, const tcp::endpoint& client) {
        if (connections_.size() < options_.mostConnections)
            std::make_shared<Connection>(*context_, std::move(socket), client)->start();
        else
            turnAway(std::move(socket), client);
    }

    void turnAway(tcp::socket socket, const tcp::endpoint& client) {
        const bool mayStay = turnedAway_.size() < options_.mostTurnedAway;
        const auto connection =
            std::make_shared<Connection>(*turnedAwayContext_, std::move(socket), client);
        connection->turnAway(
            {.status = 503, .text = "The server has too many connections. Try again later."});
        if (!mayStay)
            connection->abandon();
    }

    ServerOptions options_;
    Dispatcher dispatcher_;
    ConnectionSet connections_;
    ConnectionSet turnedAway_;  // answered, but they may still send
    std::optional<ConnectionContext> context_;
    std::optional<ConnectionContext> turnedAwayContext_;
    IoThread ioThread_;
    std::vector<std::unique_ptr<Listener>> listeners_;
    std::vector<ListenAddress> addresses_;
    std::optional<WorkerPool> workers_;
};

Server::Server(const ServerOptions& options, const TeskProviderPluginManager& manager)
    : implementation_(std::make_unique<Implementation>(options, manager)) {}

Server::~Server() = default;

const std::vector<ListenAddress>& Server::addresses() const noexcept {
    return implementation_->addresses();
}

void Server::start() {
    implementation_->start();
}

bool Server::stop(std::chrono::milliseconds gracePeriod) {
    return implementation_->stop(gracePeriod);
}

}  // namespace Http

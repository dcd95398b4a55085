#include "ObjectManager/Http/Server.h"

#include <algorithm>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <optional>
#include <thread>
#include <utility>

#include "ObjectManager/Http/Connection.h"
#include "ObjectManager/Http/Dispatcher.h"
#include "ObjectManager/Http/IoThread.h"
#include "ObjectManager/Http/Listener.h"
#include "ObjectManager/Http/RequestTarget.h"
#include "ObjectManager/Http/ResponseMemory.h"
#include "ObjectManager/Http/WorkerPool.h"

namespace Http {

namespace {

using boost::asio::ip::tcp;
using std::chrono::steady_clock;

// More than a worker needs to finish after the provider has returned.
constexpr std::chrono::seconds kSettlingTime{1};

unsigned workerCount(const Options& options) {
    return options.workers > 0 ? options.workers
                               : std::max(1U, std::thread::hardware_concurrency());
}

}  // namespace

// The order of the members ends the threads before what they use.
class Server::Implementation {
  public:
    Implementation(const Options& options, const TeskProviderPluginManager& manager,
                   NeedsPasswordHash needsPasswordHash, Prepare prepare)
        : options_(options),
          needsPasswordHash_(std::move(needsPasswordHash)),
          prepare_(std::move(prepare)),
          dispatcher_(manager),
          memory_(options.maxResponseMemory) {
        for (const ListenAddress& address : options.listen) {
            const auto& listener =
                listeners_.emplace_back(std::make_unique<Listener>(ioThread_.context(), address));
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
        workers_.emplace(workerCount(options_), options_.maxWaitingHashes);
        context_.emplace(contextOf(connections_));
        refusedContext_.emplace(contextOf(refused_));
        for (const std::unique_ptr<Listener>& listener : listeners_) {
            listener->start([this](tcp::socket socket, const tcp::endpoint& client) {
                accept(std::move(socket), client);
            });
        }
        ioThread_.start();
    }

    bool stop() {
        const steady_clock::time_point deadline = steady_clock::now() + options_.shutdownTimeout;
        if (!ioThread_.isRunning()) {
            closeListeners();
            return true;
        }
        ioThread_.call([this] {
            closeListeners();
            for (const auto& connection : connections_.all())
                connection->closeIfReading();
            for (const auto& connection : refused_.all())
                connection->abandon();
        });
        if (!connections_.waitUntilServed(deadline)) {
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
                .connections = connections,
                .memory = memory_,
                .needsPasswordHash = needsPasswordHash_,
                .prepare = prepare_};
    }

    void closeListeners() {
        for (const std::unique_ptr<Listener>& listener : listeners_)
            listener->close();
    }

    void accept(tcp::socket socket, const tcp::endpoint& client) {
        if (connections_.size() >= options_.maxConnections) {
            if (const std::shared_ptr<Connection> oldest = connections_.oldestLingering())
                oldest->abandon();
        }
        if (connections_.size() < options_.maxConnections)
            std::make_shared<Connection>(*context_, std::move(socket), client)->start();
        else
            refuse(std::move(socket), client);
    }

    void refuse(tcp::socket socket, const tcp::endpoint& client) {
        const bool mayLinger = refused_.size() < options_.maxRefusedConnections;
        const auto connection =
            std::make_shared<Connection>(*refusedContext_, std::move(socket), client);
        connection->refuse(
            {.status = 503, .text = "The server has too many connections. Try again later."});
        if (!mayLinger)
            connection->abandon();
    }

    Options options_;
    NeedsPasswordHash needsPasswordHash_;
    Prepare prepare_;
    Dispatcher dispatcher_;
    ResponseMemory memory_;
    ConnectionSet connections_;
    ConnectionSet refused_;  // beyond the limit; they have their response, but may still send
    std::optional<ConnectionContext> context_;
    std::optional<ConnectionContext> refusedContext_;
    IoThread ioThread_;
    std::vector<std::unique_ptr<Listener>> listeners_;
    std::vector<ListenAddress> addresses_;
    std::optional<WorkerPool> workers_;
};

Server::Server(const Options& options, const TeskProviderPluginManager& manager,
               NeedsPasswordHash needsPasswordHash, Prepare prepare)
    : implementation_(std::make_unique<Implementation>(
          options, manager, std::move(needsPasswordHash), std::move(prepare))) {}

Server::~Server() = default;

const std::vector<ListenAddress>& Server::addresses() const noexcept {
    return implementation_->addresses();
}

void Server::start() {
    implementation_->start();
}

bool Server::stop() {
    return implementation_->stop();
}

}  // namespace Http

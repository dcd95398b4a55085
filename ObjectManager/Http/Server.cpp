#include "ObjectManager/Http/Server.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <chrono>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "ObjectManager/Http/Connection.h"
#include "ObjectManager/Http/ConnectionSet.h"
#include "ObjectManager/Http/Dispatcher.h"
#include "ObjectManager/Http/IoThread.h"
#include "ObjectManager/Http/Listener.h"
#include "ObjectManager/Http/OwnAnswers.h"
#include "ObjectManager/Http/UriHost.h"
#include "ObjectManager/Http/WorkerPool.h"

namespace Http {

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;
using std::chrono::steady_clock;

// What a worker does after the provider has returned takes much less.
constexpr std::chrono::seconds kSettlingTime{1};

}  // namespace

// The members stand in an order in which the threads end before what they use.
class Server::Implementation {
  public:
    Implementation(const ServerOptions& options, const TeskProviderPluginManager& manager,
                   RequestHandler* handler)
        : options_(options),
          dispatcher_(manager, handler),
          listener_(ioThread_.context(), options.address, options.port),
          address_(toUriHost(listener_.endpoint().address())) {}
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    ~Implementation() {
        ioThread_.stop();
        listener_.close();
    }

    [[nodiscard]] const std::string& address() const noexcept { return address_; }
    [[nodiscard]] std::uint16_t port() const noexcept { return listener_.endpoint().port(); }

    void start() {
        workers_.emplace(options_.workers);
        context_.emplace(ConnectionContext{.options = options_,
                                           .dispatcher = dispatcher_,
                                           .workers = *workers_,
                                           .connections = connections_});
        listener_.start([this](tcp::socket socket, const tcp::endpoint& client) {
            accept(std::move(socket), client);
        });
        ioThread_.start();
    }

    bool stop(std::chrono::milliseconds gracePeriod) {
        const steady_clock::time_point deadline = steady_clock::now() + gracePeriod;
        if (!ioThread_.isRunning()) {
            listener_.close();
            return true;
        }
        ioThread_.call([this] {
            listener_.close();
            for (const auto& connection : connections_.all())
                connection->closeIfReading();
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
    void accept(tcp::socket socket, const tcp::endpoint& client) {
        if (connections_.size() < options_.mostConnections)
            std::make_shared<Connection>(*context_, std::move(socket), client)->start();
        else
            turnAway(std::move(socket));
    }

    // One who has sent a request already, and gets the answer although it is not read to its end.
    void turnAway(tcp::socket socket) {
        error_code error;  // whatever goes wrong, the connection is closed
        socket.non_blocking(true, error);
        std::vector<char>& buffer = context_->readBuffer;
        const std::size_t length = socket.read_some(boost::asio::buffer(buffer), error);
        const bool isHead = std::string_view(buffer.data(), length).starts_with("HEAD ");
        const Answer answer = answerOf(
            {.status = 503, .text = "The server has too many connections. Try again later."},
            isHead);
        socket.write_some(answer.unsent(), error);
    }

    ServerOptions options_;
    Dispatcher dispatcher_;
    ConnectionSet connections_;
    std::optional<ConnectionContext> context_;
    IoThread ioThread_;
    Listener listener_;
    std::string address_;
    std::optional<WorkerPool> workers_;
};

Server::Server(const ServerOptions& options, const TeskProviderPluginManager& manager,
               RequestHandler* handler)
    : implementation_(std::make_unique<Implementation>(options, manager, handler)) {}

Server::~Server() = default;

const std::string& Server::address() const noexcept {
    return implementation_->address();
}

std::uint16_t Server::port() const noexcept {
    return implementation_->port();
}

void Server::start() {
    implementation_->start();
}

bool Server::stop(std::chrono::milliseconds gracePeriod) {
    return implementation_->stop(gracePeriod);
}

}  // namespace Http

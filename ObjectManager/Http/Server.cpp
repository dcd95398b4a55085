#include "ObjectManager/Http/Server.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/executor_work_guard.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <exception>
#include <future>
#include <optional>
#include <string_view>
#include <thread>
#include <utility>

#include "ObjectManager/Http/Connection.h"
#include "ObjectManager/Http/ConnectionSet.h"
#include "ObjectManager/Http/Dispatcher.h"
#include "ObjectManager/Http/Listener.h"
#include "ObjectManager/Http/OwnAnswers.h"
#include "ObjectManager/Http/UriHost.h"
#include "ObjectManager/Http/WorkerPool.h"
#include "Platform/Util/TSKLog.h"

namespace Http {

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;
using std::chrono::steady_clock;

// What a worker does after the provider has returned takes much less.
constexpr std::chrono::seconds kSettlingTime{1};

void logFailure(std::string_view reason) {
    TSKLog::log("HttpFrontEnd", "A connection failed: " + TSKString(reason),
                TeskTraceLog::SeverityError, TeskTraceLog::VerbosityNormal, 0, TSKLog::CIMOMLOG);
}

}  // namespace

// The members stand in an order in which the threads end before what they use.
class Server::Implementation {
  public:
    Implementation(const ServerOptions& options, const TeskProviderPluginManager& manager,
                   RequestHandler* handler)
        : options_(options),
          dispatcher_(manager, handler),
          listener_(ioContext_, options.address, options.port),
          address_(toUriHost(listener_.endpoint().address())) {}
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    ~Implementation() {
        (void)stop(std::chrono::milliseconds(0));
        ioContext_.stop();
        if (ioThread_.joinable())
            ioThread_.join();
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
        ioThread_ = std::thread([this] { runIo(); });
    }

    bool stop(std::chrono::milliseconds gracePeriod) {
        const steady_clock::time_point deadline = steady_clock::now() + gracePeriod;
        if (!ioThread_.joinable()) {
            listener_.close();
            return true;
        }
        runOnIoThread([this] {
            listener_.close();
            for (const auto& connection : connections_.all())
                connection->closeIfReading();
        });
        if (!connections_.waitUntilEmpty(deadline)) {
            workers_->dropWaiting();
            runOnIoThread([this] {
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

    // What a connection throws when there is no memory ends that connection.
    void runIo() noexcept {
        for (;;) {
            try {
                ioContext_.run();
                return;
            } catch (const std::exception& exception) {
                logFailure(exception.what());
            }
        }
    }

    template <typename Task>
    void runOnIoThread(const Task& task) {
        std::packaged_task<void()> waited(task);
        boost::asio::post(ioContext_, [&waited] { waited(); });
        waited.get_future().get();
    }

    ServerOptions options_;
    Dispatcher dispatcher_;
    ConnectionSet connections_;
    std::optional<ConnectionContext> context_;
    boost::asio::io_context ioContext_{1};
    boost::asio::executor_work_guard<boost::asio::io_context::executor_type> keepsRunning_ =
        boost::asio::make_work_guard(ioContext_);
    Listener listener_;
    std::string address_;
    std::optional<WorkerPool> workers_;
    std::thread ioThread_;
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

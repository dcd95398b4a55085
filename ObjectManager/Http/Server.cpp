#include "ObjectManager/Http/Server.h"

#include <algorithm>
#include <atomic>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/system/error_code.hpp>
#include <chrono>
#include <limits>
#include <new>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <thread>
#include <utility>

#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Http/ClientAddress.h"
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
using std::chrono::milliseconds;
using std::chrono::steady_clock;

// How long the handshake of a connection takes, even to a distant client.
constexpr std::chrono::milliseconds kHandshakeTime{100};

// More than a worker needs to finish after the provider has returned.
constexpr std::chrono::seconds kSettlingTime{1};

unsigned workerCount(const Options& options) {
    return options.workers > 0 ? options.workers
                               : std::max(1U, std::thread::hardware_concurrency());
}

// The options with the numbers of connections that the process may have file descriptors for. A
// warning in the log says so when these are fewer than configured.
Options withinDescriptors(Options options) {
    rlimit limit{};
    if (getrlimit(RLIMIT_NOFILE, &limit) != 0 || limit.rlim_cur == RLIM_INFINITY)
        return options;
    const std::size_t reserve =
        std::min<std::size_t>(options.reservedDescriptors, limit.rlim_cur / 2);
    const std::size_t available = limit.rlim_cur - reserve;
    if (available >= options.maxConnections + options.maxRefusedConnections)
        return options;
    options.maxRefusedConnections = std::min(options.maxRefusedConnections, available / 8);
    const std::size_t configured = std::exchange(
        options.maxConnections, std::clamp<std::size_t>(available - options.maxRefusedConnections,
                                                        1, options.maxConnections));
    if (options.maxConnections < configured) {
        Base::log(kLogComponent, TeskTraceLog::SeverityWarning,
                  "The process may open " + std::to_string(limit.rlim_cur) +
                      " files, too few for " + std::to_string(configured) +
                      " connections (max_connections); it serves " +
                      std::to_string(options.maxConnections) +
                      " at once. Raise the limit, which ulimit -n shows, or lower "
                      "max_connections");
    }
    return options;
}

// The number of connections that one client may have.
std::size_t clientLimit(const Options& options) {
    const std::size_t limit = options.maxConnectionsPerClient.value_or(
        std::max<std::size_t>(1, options.maxConnections / 4));
    return limit == 0 ? std::numeric_limits<std::size_t>::max() : limit;
}

}  // namespace

// The order of the members ends the threads before what they use.
class Server::Implementation {
  public:
    Implementation(const Options& options, const TeskProviderPluginManager& manager,
                   Authentication authentication, Report report)
        : options_(withinDescriptors(options)),
          maxConnectionsPerClient_(clientLimit(options_)),
          authentication_(std::move(authentication)),
          report_(std::move(report)),
          dispatcher_(manager, options.publishedAddress),
          memory_(options.maxResponseMemory) {
        if (!options.tlsListen.empty())
            tls_.emplace(options.tls);
        for (const ListenAddress& address : options.listen)
            addresses_.push_back(listen(address));
        for (const ListenAddress& address : options.tlsListen)
            tlsAddresses_.push_back(listen(address));
    }
    Implementation(const Implementation&) = delete;
    Implementation& operator=(const Implementation&) = delete;

    ~Implementation() {
        hasEnded_ = true;
        ioThread_.stop();
        closeListeners();
    }

    [[nodiscard]] const std::vector<ListenAddress>& addresses() const noexcept {
        return addresses_;
    }
    [[nodiscard]] const std::vector<ListenAddress>& tlsAddresses() const noexcept {
        return tlsAddresses_;
    }
    [[nodiscard]] State state() const {
        return {.connections = connections_.size(),
                .acceptedConnections = accepted_,
                .refusedConnections = refusals_,
                .failedHandshakes = failedHandshakes_,
                .responseMemory = memory_.used()};
    }
    [[nodiscard]] TlsContext* tls() noexcept { return tls_ ? &*tls_ : nullptr; }

    void start() {
        workers_.emplace(
            workerCount(options_),
            WorkerPool::Limits{.maxRunningHashes = options_.maxRunningHashes,
                               .hashes = {.places = options_.maxWaitingHashes,
                                          .placesPerClient = options_.maxWaitingHashesPerClient}});
        context_.emplace(contextOf(connections_));
        refusedContext_.emplace(contextOf(refused_));
        for (std::size_t index = 0; index < listeners_.size(); ++index) {
            const bool usesTls = index >= addresses_.size();
            listeners_[index]->start(
                [this, usesTls](tcp::socket socket, const tcp::endpoint& client) {
                    accept(std::move(socket), client, usesTls);
                },
                options_.descriptorTimeout);
        }
        if (options_.requestTimeout.count() > 0)
            findOverdueRequests();
        ioThread_.start();
    }

    bool stop() {
        const steady_clock::time_point deadline = steady_clock::now() + options_.shutdownTimeout;
        if (!ioThread_.isRunning()) {
            closeListeners();
            return true;
        }
        receiveLastRequests(deadline);
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
    [[nodiscard]] ListenAddress listen(const ListenAddress& address) {
        const auto& listener =
            listeners_.emplace_back(std::make_unique<Listener>(ioThread_.context(), address));
        return {.address = toUriHost(listener->endpoint().address()),
                .port = listener->endpoint().port()};
    }

    [[nodiscard]] ConnectionContext contextOf(ConnectionSet& connections) {
        return {.options = options_,
                .dispatcher = dispatcher_,
                .workers = *workers_,
                .connections = connections,
                .memory = memory_,
                .authentication = authentication_,
                .onClosed = [this] { onClosed(); },
                .lacksDescriptors = [this] { return lacksDescriptors(); },
                .onFailedHandshake = [this] { ++failedHandshakes_; },
                .report = report_};
    }

    // A client that is connected when the server stops gets its response: first those that are
    // connecting complete that, then all of them have some time to send their request.
    void receiveLastRequests(steady_clock::time_point deadline) {
        ioThread_.call([this] {
            for (const std::unique_ptr<Listener>& listener : listeners_)
                listener->refuseNewClients();
        });
        if (!std::exchange(isStopping_, true))
            std::this_thread::sleep_until(std::min(deadline, steady_clock::now() + kHandshakeTime));
        ioThread_.call([this] {
            for (const std::unique_ptr<Listener>& listener : listeners_)
                listener->acceptRestAndClose();
        });
        (void)connections_.waitUntilNoneReads(
            std::min(deadline, steady_clock::now() + options_.stopGrace));
        ioThread_.call([this] {
            for (const auto& connection : connections_.all())
                connection->closeIfReading();
            for (const auto& connection : refused_.all())
                connection->abandon();
        });
    }

    void closeListeners() {
        for (const std::unique_ptr<Listener>& listener : listeners_)
            listener->close();
    }

    // A client that uses TLS is refused by closing the connection: a handshake would cost more than
    // what it asks for.
    void accept(tcp::socket socket, const tcp::endpoint& client, bool usesTls) {
        const char* const refusal = refusalOf(client);
        ++(refusal == nullptr ? accepted_ : refusals_);
        if (refusal == nullptr) {
            Stream stream = usesTls ? Stream(std::move(socket), tls_->makeSession())
                                    : Stream(std::move(socket));
            std::make_shared<Connection>(*context_, std::move(stream), client)->start();
        } else if (!usesTls) {
            refuse(std::move(socket), client, refusal);
        }
    }

    // Why there is no place for one more connection of a client; null if there is.
    [[nodiscard]] const char* refusalOf(const tcp::endpoint& client) {
        if (hasTooMany(client))
            return "Too many connections come from your address. Try again later.";
        return makeRoom() ? nullptr : kTooManyConnections;
    }

    [[nodiscard]] bool hasTooMany(const tcp::endpoint& client) const {
        const ClientAddress address = ClientAddress::of(*client.data());
        return connections_.sizeOf(ClientKey::of(address)) >= maxConnectionsPerClient_ &&
               !isIn(options_.trustedProxies, address);
    }

    // Returns whether there is a place for one more connection.
    [[nodiscard]] bool makeRoom() {
        if (connections_.size() < options_.maxConnections)
            return true;
        if (const std::shared_ptr<Connection> oldest = connections_.oldestLingering())
            oldest->abandon();
        else if (const std::shared_ptr<Connection> reading = connections_.oldestReading())
            reading->makeRoom();
        return connections_.size() < options_.maxConnections;
    }

    void refuse(tcp::socket socket, const tcp::endpoint& client, const char* reason) {
        const bool mayLinger = refused_.size() < options_.maxRefusedConnections;
        const auto connection =
            std::make_shared<Connection>(*refusedContext_, std::move(socket), client);
        connection->refuse({.status = 503, .text = reason});
        if (!mayLinger)
            connection->abandon();
    }

    // Looks again and again for requests that take too long.
    void findOverdueRequests() {
        overdueTimer_.expires_after(std::clamp<milliseconds>(
            options_.requestTimeout / 8, milliseconds(1), std::chrono::seconds(1)));
        overdueTimer_.async_wait([this](const boost::system::error_code& error) {
            if (error)
                return;
            findOverdueRequests();
            endOverdueRequests();
        });
    }

    void endOverdueRequests() {
        const auto overdue =
            workers_->replaceOverdue(steady_clock::now() - options_.requestTimeout);
        for (const WorkerPool::Overdue& request : overdue) {
            request.whenOverdue();
            const std::string limit = std::to_string(workerCount(options_));
            const std::string text =
                request.isReplaced
                    ? "A worker that waits for a provider is replaced by another one, " +
                          std::to_string(request.replacements) + " of at most " + limit + " times"
                    : "A worker that waits for a provider cannot be replaced; " +
                          std::to_string(request.replacements) + " of at most " + limit +
                          " have been";
            Base::log(kLogComponent, TeskTraceLog::SeverityError, text);
        }
    }

    [[nodiscard]] bool lacksDescriptors() const noexcept {
        return std::ranges::any_of(listeners_, [](const std::unique_ptr<Listener>& listener) {
            return listener->isOutOfDescriptors();
        });
    }

    // Lets listeners go on that have run out of file descriptors. Called by all threads.
    void onClosed() noexcept {
        if (hasEnded_ || !lacksDescriptors())
            return;
        try {
            boost::asio::post(ioThread_.context(), [this] {
                for (const std::unique_ptr<Listener>& listener : listeners_)
                    listener->goOnWithDescriptors();
            });
        } catch (const std::bad_alloc&) {
            // They go on after Options::descriptorTimeout.
        }
    }

    const Options options_;
    const std::size_t maxConnectionsPerClient_;
    const Authentication authentication_;
    const Report report_;
    Dispatcher dispatcher_;
    ResponseMemory memory_;
    ConnectionSet connections_;
    ConnectionSet refused_;  // beyond the limit; they have their response, but may still send
    std::optional<ConnectionContext> context_;
    std::optional<ConnectionContext> refusedContext_;
    IoThread ioThread_;
    std::vector<std::unique_ptr<Listener>> listeners_;
    std::vector<ListenAddress> addresses_;     // of the first listeners
    std::vector<ListenAddress> tlsAddresses_;  // of the others
    std::optional<TlsContext> tls_;            // if there are any
    boost::asio::steady_timer overdueTimer_{ioThread_.context()};
    std::atomic<std::uint64_t> accepted_ = 0;
    std::atomic<std::uint64_t> refusals_ = 0;
    std::atomic<std::uint64_t> failedHandshakes_ = 0;
    bool isStopping_ = false;
    std::atomic<bool> hasEnded_ = false;  // the listeners may be gone
    std::optional<WorkerPool> workers_;
};

Server::Server(const Options& options, const TeskProviderPluginManager& manager,
               Authentication authentication, Report report)
    : implementation_(std::make_unique<Implementation>(options, manager, std::move(authentication),
                                                       std::move(report))) {}

Server::~Server() = default;

const std::vector<ListenAddress>& Server::addresses() const noexcept {
    return implementation_->addresses();
}

const std::vector<ListenAddress>& Server::tlsAddresses() const noexcept {
    return implementation_->tlsAddresses();
}

Server::State Server::state() const {
    return implementation_->state();
}

TlsContext* Server::tls() noexcept {
    return implementation_->tls();
}

void Server::start() {
    implementation_->start();
}

bool Server::stop() {
    return implementation_->stop();
}

}  // namespace Http

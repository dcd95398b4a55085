#pragma once

#include <atomic>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "ObjectManager/Http/Answer.h"
#include "ObjectManager/Http/ConnectionSet.h"
#include "ObjectManager/Http/Dispatcher.h"
#include "ObjectManager/Http/Refusal.h"
#include "ObjectManager/Http/RequestHead.h"
#include "ObjectManager/Http/RequestHeadScanner.h"
#include "ObjectManager/Http/ServerOptions.h"
#include "ObjectManager/Http/WorkerPool.h"

namespace Http {

/// What the connections of a server share.
///
/// Thread safety: the read buffer belongs to the I/O thread; the rest is as safe as its types say.
struct ConnectionContext {
    const ServerOptions& options;
    const Dispatcher& dispatcher;
    WorkerPool& workers;
    ConnectionSet& connections;

    /// Bytes stay here only during one call, so that a connection that waits takes no buffer.
    std::vector<char> readBuffer = std::vector<char>(64UL * 1024);
};

/// One client: reads the head of its request, has a worker make the answer, sends it, closes. There
/// is one request a connection. As long as something is to come of it, it keeps itself alive.
///
/// A connection goes through these phases, some of which it may skip:
///
/// - reading: the I/O thread waits for the head. When there are too many slow requests already, it
///   goes on with writing.
/// - answering: a worker runs the provider and sends what the socket takes at once. If that is all,
///   and the client sends nothing more, the worker closes the connection.
/// - writing: the I/O thread sends the rest as the client takes it.
/// - draining: the client has the answer but still sends. To close now would make the client's
///   system drop what the client has not read, so what comes is read and thrown away.
///
/// Thread safety: belongs to the I/O thread, but for what stands under "answering".
class Connection : public std::enable_shared_from_this<Connection> {
  public:
    /// `socket` is open and belongs to the I/O thread's io_context; `context` must outlive the
    /// connection.
    Connection(ConnectionContext& context, boost::asio::ip::tcp::socket socket,
               const boost::asio::ip::tcp::endpoint& client);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    /// Closes the connection.
    ~Connection();

    /// Enters the connection into the context's set, where it stays while it is open, and begins to
    /// read.
    /// Errors: std::bad_alloc, boost::system::system_error; the connection is closed then. The
    /// same passes out of the io_context's run later on.
    void start();

    /// In place of start(): answers `refusal` at once, whatever the client has sent or will send.
    /// Errors: as start().
    void turnAway(const Refusal& refusal);

    /// Closes if the head of the request has not come in yet.
    void closeIfReading();

    /// Closes; if a worker has the connection, as soon as the provider has returned.
    void abandon();

  private:
    enum class Phase { kReading, kAnswering, kWriting, kDraining, kClosed };
    enum class Sending { kDone, kBlocked, kFailed };

    using Step = void (Connection::*)();

    void take(Step step);
    void readHead();
    void takeRequest();
    [[nodiscard]] bool postToWorkers();
    void refuse(const Refusal& refusal);
    void answerWith(const Refusal& refusal);
    void answerRequest();
    void beginWriting();
    void write();
    [[nodiscard]] Sending send();
    [[nodiscard]] bool clientSendsMore() const;
    void beginDraining();
    void drain();
    void close() noexcept;
    void closeSocket() noexcept;

    void waitFor(boost::asio::ip::tcp::socket::wait_type type, Step next);
    void continueOnIoThread(Step next);
    void limitPhase(std::chrono::milliseconds most);
    void onTimeout();

    ConnectionContext& context_;
    boost::asio::ip::tcp::socket socket_;
    boost::asio::ip::tcp::endpoint client_;
    boost::asio::steady_timer timer_;
    Phase phase_ = Phase::kReading;          // read and changed by the I/O thread alone
    bool isLimited_ = false;                 // the time for a phase is running
    std::atomic<bool> isAbandoned_ = false;  // set by the I/O thread, read by the worker

    std::string received_;
    RequestHeadScanner scanner_;
    std::optional<RequestHead> request_;
    bool hasMoreToCome_ = false;  // the client has sent or announced more than a head
    std::optional<Answer> answer_;
    std::size_t drainedBytes_ = 0;
};

}  // namespace Http

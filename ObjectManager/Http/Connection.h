#pragma once

#include <atomic>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Http/AccessLog.h"
#include "ObjectManager/Http/Authentication.h"
#include "ObjectManager/Http/ConnectionSet.h"
#include "ObjectManager/Http/Dispatcher.h"
#include "ObjectManager/Http/ErrorResponses.h"
#include "ObjectManager/Http/Options.h"
#include "ObjectManager/Http/RequestParser.h"
#include "ObjectManager/Http/Response.h"
#include "ObjectManager/Http/ResponseMemory.h"
#include "ObjectManager/Http/Stream.h"
#include "ObjectManager/Http/WorkerPool.h"

namespace Http {

/// Why a client gets 503 when there is no place for its connection.
inline constexpr const char* kTooManyConnections =
    "The server has too many connections. Try again later.";

/// What the connections of a server share.
///
/// Thread safety: the read buffer belongs to the I/O thread; the rest is as safe as its types say.
struct ConnectionContext {
    const Options& options;
    const Dispatcher& dispatcher;
    WorkerPool& workers;
    ConnectionSet& connections;
    ResponseMemory& memory;

    Authentication authentication = {};

    /// Called after a connection has given its file descriptor back; may be empty. Called by
    /// several threads at once; must not throw.
    std::function<void()> onClosed = nullptr;

    /// Whether clients wait for a file descriptor: no connection lingers then. Called by the I/O
    /// thread; may be empty.
    std::function<bool()> lacksDescriptors = nullptr;

    /// Called when a handshake of TLS has failed or has not ended in time. Called by the I/O
    /// thread; may be empty.
    std::function<void()> onFailedHandshake = nullptr;

    /// Called with each response that has been sent, or that could not be sent to its end, by the
    /// thread that has sent it, before the client sees the end of the connection. May be empty.
    std::function<void(const Exchange&)> report = nullptr;

    /// Bytes stay here only during one call, so an idle connection takes no buffer.
    std::vector<char> readBuffer = std::vector<char>(64UL * 1024);
};

/// A connection of one client: reads the header section of a request, has a worker make the
/// response, sends it, closes. There is one request per connection. A connection keeps itself alive
/// while it has something to do.
///
/// A connection goes through these phases, some of which it may skip:
///
/// - reading: the I/O thread makes the handshake of TLS, if the connection uses that, and waits for
///   the header section; both together have the time of a header section. A request that cannot be
///   read, or for which there is no worker, gets an error; the next phase is writing.
/// - processing: a worker hashes the password if that is needed. Then a worker runs the provider
///   and sends what the socket takes at once. If the provider takes too long, the I/O thread sends
///   an error, and what the provider writes later is dropped.
/// - waiting: there is no room in memory for the response, which is dropped. When there is room,
///   the next phase is processing again; if that takes too long, the client gets 503.
/// - writing: the I/O thread sends the rest as the client reads it.
/// - lingering: the response is sent, and the client is told that nothing follows. The server reads
///   and drops what the client sends until the client closes the connection (RFC 9112, section
///   9.6): to close it first, with bytes of the client unread or on their way, would discard what
///   the client has not read yet. A client that has sent nothing at all within the time for a
///   header section is not waited for.
///
/// Thread safety: belongs to the I/O thread, except for what a worker does while processing.
class Connection : public std::enable_shared_from_this<Connection> {
  public:
    /// The socket of `stream` is open and belongs to the I/O thread's io_context; `context` must
    /// outlive the connection.
    Connection(ConnectionContext& context, Stream stream,
               const boost::asio::ip::tcp::endpoint& client);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    /// Closes the connection.
    ~Connection();

    /// Adds the connection to the context's set, where it stays while it is open, and begins to
    /// read.
    /// Errors: std::bad_alloc, boost::system::system_error; the connection is closed then. Later
    /// ones are thrown out of the io_context's run.
    void start();

    /// Instead of start(): sends `error` at once, whatever the client has sent or will send.
    /// Errors: as start().
    void refuse(const Error& error);

    /// Closes the connection unless the header section has come in by now.
    void closeIfReading() noexcept;

    /// Closes the connection if the header section has not come in yet, since the server needs its
    /// place. A client that has sent a part of it gets 503 if it can be sent at once.
    /// Errors: std::bad_alloc; the connection is closed.
    void makeRoom();

    /// Closes the connection; if a worker processes the request, as soon as the provider has
    /// returned.
    void abandon();

  private:
    enum class Phase { kReading, kProcessing, kWaiting, kWriting, kLingering, kClosed };
    using Step = void (Connection::*)();

    void take(Step step);
    template <typename Work>
    void attempt(const Work& work);
    void readHeader();
    void waitForHeader(Stream::Status status);
    void refusePlainText();
    void queueRequest();
    void postToWorkers();
    void postProcessing();
    void endHash(bool isHashed) noexcept;
    void refuseForLackOfPlaces();
    [[nodiscard]] ClientKey clientKey() const noexcept;
    [[nodiscard]] std::string_view requestLine() const;
    [[nodiscard]] TSKHTTPRequest& request();
    void sendError(const Error& error);
    void processRequest();
    void waitForRoom();
    void repeatRequest();
    void endOverdue();
    void endUnread() noexcept;
    void beginWriting();
    void write();
    [[nodiscard]] Stream::Status send();
    void report() noexcept;
    void beginLingering();
    void linger();
    void close() noexcept;
    void closeSocket() noexcept;

    void waitFor(Stream::Status status, Step next);
    void continueOnIoThread(Step next);
    void limitPhase(std::chrono::milliseconds timeout);
    void onTimeout();

    ConnectionContext& context_;
    Stream stream_;
    const bool usesTls_;  // for workers, who must not touch the stream
    boost::asio::ip::tcp::endpoint client_;
    boost::asio::steady_timer timer_;
    Phase phase_ = Phase::kReading;          // used by the I/O thread only
    bool isLimited_ = false;                 // whether the timeout of a phase has begun
    std::atomic<bool> isAbandoned_ = false;  // set by the I/O thread, read by the worker
    // Set by the thread that responds, the worker or the I/O thread, whichever is first.
    std::atomic<bool> isAnswered_ = false;
    bool hasQueuedAgain_ = false;  // for another hash
    bool isOverdue_ = false;       // the provider is late; used by the I/O thread only

    std::chrono::steady_clock::time_point requestTime_;  // the whole header section
    std::string received_;
    RequestParser parser_;
    std::unique_ptr<TSKHTTPRequest> prepared_;  // null without Authentication::prepare
    bool lingers_ = true;                       // after the response
    bool hasRequest_ = false;                   // the header section has come in
    std::optional<std::chrono::steady_clock::time_point> roomDeadline_;  // once it has waited
    ResponseMemory::Share memory_;  // of response_, which is destroyed first
    std::optional<Response> response_;
    bool isReported_ = false;
    std::size_t lingerBytes_ = 0;
};

}  // namespace Http

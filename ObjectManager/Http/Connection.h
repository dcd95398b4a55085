#pragma once

#include <atomic>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "ObjectManager/Http/Dispatcher.h"
#include "ObjectManager/Http/ErrorResponses.h"
#include "ObjectManager/Http/Options.h"
#include "ObjectManager/Http/RequestParser.h"
#include "ObjectManager/Http/Response.h"
#include "ObjectManager/Http/ResponseMemory.h"
#include "ObjectManager/Http/WorkerPool.h"

namespace Http {

class Connection;

/// The open connections of a server.
///
/// Thread safety: may be used by several threads at once.
class ConnectionSet {
  public:
    /// `connection` must be removed before it is destroyed.
    /// Errors: std::bad_alloc; the set stays as it was.
    void add(Connection& connection);

    /// `connection` has sent its response and may be closed when its place is needed. Does nothing
    /// if it is not in the set.
    void beginLingering(Connection& connection) noexcept;

    /// Does nothing if `connection` is not in the set.
    void remove(Connection& connection) noexcept;

    [[nodiscard]] std::size_t size() const;

    /// The connection that has lingered for longest; null if none does.
    [[nodiscard]] std::shared_ptr<Connection> oldestLingering() const;

    /// The connections that are open now.
    /// Errors: std::bad_alloc.
    [[nodiscard]] std::vector<std::shared_ptr<Connection>> all() const;

    /// Returns true as soon as all connections linger, false if one does not at the deadline.
    [[nodiscard]] bool waitUntilServed(std::chrono::steady_clock::time_point deadline) const;

  private:
    struct Entry {
        std::list<Connection*>* list;  // one of those below
        std::list<Connection*>::iterator place;
    };

    mutable std::mutex mutex_;
    mutable std::condition_variable served_;
    std::unordered_map<Connection*, Entry> connections_;  // guarded by mutex_
    std::list<Connection*> serving_;                      // guarded by mutex_
    std::list<Connection*> lingering_;                    // oldest first; guarded by mutex_
};

/// What the connections of a server share.
///
/// Thread safety: the read buffer belongs to the I/O thread; the rest is as safe as its types say.
struct ConnectionContext {
    const Options& options;
    const Dispatcher& dispatcher;
    WorkerPool& workers;
    ConnectionSet& connections;
    ResponseMemory& memory;

    /// See Server; may be empty.
    std::function<bool(const TSKHTTPRequest&)> needsPasswordHash = nullptr;
    std::function<std::unique_ptr<TSKHTTPRequest>(const TSKHTTPRequest&)> prepare = nullptr;

    /// Bytes stay here only during one call, so an idle connection takes no buffer.
    std::vector<char> readBuffer = std::vector<char>(64UL * 1024);
};

/// A connection of one client: reads the header section of a request, has a worker make the
/// response, sends it, closes. There is one request per connection. A connection keeps itself alive
/// while it has something to do.
///
/// A connection goes through these phases, some of which it may skip:
///
/// - reading: the I/O thread waits for the header section. A request that cannot be read, or for
///   which there is no worker, gets an error; the next phase is writing.
/// - processing: a worker runs the provider and sends what the socket takes at once.
/// - waiting: there is no room in memory for the response, which is dropped. When there is room,
/// the
///   next phase is processing again; if that takes too long, the client gets 503.
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
    /// `socket` is open and belongs to the I/O thread's io_context; `context` must outlive the
    /// connection.
    Connection(ConnectionContext& context, boost::asio::ip::tcp::socket socket,
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

    /// Closes the connection if the header section has not come in yet.
    void closeIfReading();

    /// Closes the connection; if a worker processes the request, as soon as the provider has
    /// returned.
    void abandon();

  private:
    enum class Phase { kReading, kProcessing, kWaiting, kWriting, kLingering, kClosed };
    enum class Sending { kDone, kBlocked, kFailed };

    using Step = void (Connection::*)();

    void take(Step step);
    template <typename Work>
    void attempt(const Work& work);
    void readHeader();
    void queueRequest();
    [[nodiscard]] bool postToWorkers();
    [[nodiscard]] TSKHTTPRequest& request();
    void sendError(const Error& error);
    void processRequest();
    void waitForRoom();
    void repeatRequest();
    void beginWriting();
    void write();
    [[nodiscard]] Sending send();
    void beginLingering();
    void linger();
    void close() noexcept;
    void closeSocket() noexcept;

    void waitFor(boost::asio::ip::tcp::socket::wait_type type, Step next);
    void continueOnIoThread(Step next);
    void limitPhase(std::chrono::milliseconds timeout);
    void onTimeout();

    ConnectionContext& context_;
    boost::asio::ip::tcp::socket socket_;
    boost::asio::ip::tcp::endpoint client_;
    boost::asio::steady_timer timer_;
    Phase phase_ = Phase::kReading;          // used by the I/O thread only
    bool isLimited_ = false;                 // whether the timeout of a phase has begun
    std::atomic<bool> isAbandoned_ = false;  // set by the I/O thread, read by the worker

    std::string received_;
    RequestParser parser_;
    std::unique_ptr<TSKHTTPRequest> prepared_;  // null without ConnectionContext::prepare
    bool lingers_ = true;                       // after the response
    std::optional<std::chrono::steady_clock::time_point> roomDeadline_;  // once it has waited
    ResponseMemory::Share memory_;  // of response_, which is destroyed first
    std::optional<Response> response_;
    std::size_t lingerBytes_ = 0;
};

}  // namespace Http

#include "ObjectManager/Http/Connection.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/post.hpp>
#include <exception>
#include <utility>

namespace Http {

using boost::asio::ip::tcp;
using boost::system::error_code;
using std::chrono::steady_clock;

void ConnectionSet::add(Connection& connection) {
    std::list<Connection*> added = {&connection};
    const std::lock_guard lock(mutex_);
    connections_.emplace(&connection, Entry{.list = &serving_, .place = added.begin()});
    serving_.splice(serving_.end(), added);
}

void ConnectionSet::beginLingering(Connection& connection) noexcept {
    const std::lock_guard lock(mutex_);
    const auto entry = connections_.find(&connection);
    if (entry == connections_.end())
        return;
    auto& [list, place] = entry->second;
    lingering_.splice(lingering_.end(), *list, place);
    list = &lingering_;
    if (serving_.empty())
        served_.notify_all();
}

void ConnectionSet::remove(Connection& connection) noexcept {
    const std::lock_guard lock(mutex_);
    const auto entry = connections_.find(&connection);
    if (entry == connections_.end())
        return;
    entry->second.list->erase(entry->second.place);
    connections_.erase(entry);
    if (serving_.empty())
        served_.notify_all();
}

std::size_t ConnectionSet::size() const {
    const std::lock_guard lock(mutex_);
    return connections_.size();
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
    return served_.wait_until(lock, deadline, [this] { return serving_.empty(); });
}

Connection::Connection(ConnectionContext& context, tcp::socket socket, const tcp::endpoint& client)
    : context_(context),
      socket_(std::move(socket)),
      client_(client),
      timer_(socket_.get_executor()),
      parser_(context.options),
      memory_(context.memory) {}

Connection::~Connection() {
    closeSocket();
}

void Connection::start() {
    context_.connections.add(*this);
    // TCP_NODELAY is not set: the sending side is closed after the response, which sends what is
    // left.
    socket_.non_blocking(true);
    take(&Connection::readHeader);
}

void Connection::refuse(const Error& error) {
    context_.connections.add(*this);
    attempt([&] {
        error_code ignored;  // shows again when the response is sent
        socket_.non_blocking(true, ignored);
        // Most clients have sent their request already, which tells whether its method is HEAD.
        const std::size_t length =
            socket_.read_some(boost::asio::buffer(context_.readBuffer), ignored);
        received_.assign(context_.readBuffer.data(), length);
        sendError(error);
    });
}

void Connection::closeIfReading() {
    if (phase_ == Phase::kReading)
        close();
}

void Connection::abandon() {
    isAbandoned_ = true;
    if (phase_ != Phase::kProcessing)
        close();
}

void Connection::take(Step step) {
    attempt([&] { (this->*step)(); });
}

// Does something on the I/O thread. If it fails, the connection is closed instead of staying open
// until its timeout.
template <typename Work>
void Connection::attempt(const Work& work) {
    try {
        work();
    } catch (const std::exception&) {
        close();
        throw;
    }
}

// Reads before it waits: most clients have sent their request when their connection is accepted.
void Connection::readHeader() {
    // One byte more than the limit, so that the parser sees that it is exceeded.
    const std::size_t maxBytes = context_.options.maxHeaderSize + 1;
    for (;;) {
        error_code error;
        const std::size_t length = socket_.read_some(
            boost::asio::buffer(context_.readBuffer, maxBytes - received_.size()), error);
        if (error == boost::asio::error::would_block) {
            if (!isLimited_)
                limitPhase(context_.options.headerTimeout);
            waitFor(tcp::socket::wait_read, &Connection::readHeader);
            return;
        }
        if (error) {
            close();
            return;
        }
        received_.append(context_.readBuffer.data(), length);
        switch (parser_.parse(received_)) {
            case RequestParser::State::kIncomplete:
                break;
            case RequestParser::State::kComplete:
                queueRequest();
                return;
            case RequestParser::State::kRefused:
                sendError(parser_.error());
                return;
        }
    }
}

void Connection::queueRequest() {
    timer_.cancel();
    phase_ = Phase::kProcessing;
    if (context_.prepare)
        prepared_ = context_.prepare(parser_.request());
    if (!postToWorkers())
        sendError({.status = 503, .text = "The server has too many requests. Try again later."});
}

// The response found no room in memory.
void Connection::waitForRoom() {
    if (isAbandoned_) {
        close();
        return;
    }
    phase_ = Phase::kWaiting;
    const steady_clock::time_point now = steady_clock::now();
    if (!roomDeadline_)
        roomDeadline_ = now + context_.options.responseTimeout;
    limitPhase(std::chrono::ceil<std::chrono::milliseconds>(*roomDeadline_ - now));
    memory_.wait([waiting = weak_from_this()] {
        try {
            if (const auto self = waiting.lock())
                self->continueOnIoThread(&Connection::repeatRequest);
        } catch (const std::exception&) {
            // There is no memory to go on. The wait ends at its deadline.
        }
    });
}

void Connection::repeatRequest() {
    if (phase_ == Phase::kWaiting)
        queueRequest();
}

// Returns whether a worker takes the request; the connection belongs to the worker then.
bool Connection::postToWorkers() {
    auto job = [self = shared_from_this()] { self->processRequest(); };
    if (context_.needsPasswordHash && context_.needsPasswordHash(request()))
        return context_.workers.postSlow(std::move(job));
    context_.workers.postQuick(std::move(job));
    return true;
}

TSKHTTPRequest& Connection::request() {
    return prepared_ != nullptr ? *prepared_ : parser_.request();
}

void Connection::sendError(const Error& error) {
    response_ = errorResponse(error, parser_.isHeadRequest(received_));
    beginWriting();
}

// Run by a worker. When there is no memory for a response, the connection closes with the job.
void Connection::processRequest() {
    response_ = context_.dispatcher.respond(request(), client_, memory_);
    if (!response_) {
        continueOnIoThread(&Connection::waitForRoom);
        return;
    }
    switch (isAbandoned_ ? Sending::kFailed : send()) {
        case Sending::kBlocked:
            continueOnIoThread(&Connection::beginWriting);
            break;
        case Sending::kDone:
            continueOnIoThread(&Connection::beginLingering);
            break;
        case Sending::kFailed:
            closeSocket();
            break;
    }
}

void Connection::beginWriting() {
    phase_ = Phase::kWriting;
    limitPhase(context_.options.responseTimeout);
    write();
}

void Connection::write() {
    switch (isAbandoned_ ? Sending::kFailed : send()) {
        case Sending::kBlocked:
            waitFor(tcp::socket::wait_write, &Connection::write);
            break;
        case Sending::kDone:
            beginLingering();
            break;
        case Sending::kFailed:
            close();
            break;
    }
}

// Sends what the socket takes now.
Connection::Sending Connection::send() {
    while (!response_->isSent()) {
        error_code error;
        response_->consume(socket_.write_some(response_->unsent(), error));
        if (error == boost::asio::error::would_block)
            return Sending::kBlocked;
        if (error)
            return Sending::kFailed;
    }
    return Sending::kDone;
}

// Gives its place away before the client is told that nothing follows: a client that sees the end
// of the response can rely on a free place. Reads before it waits: many clients have closed the
// connection already.
void Connection::beginLingering() {
    if (isAbandoned_ || !lingers_) {
        close();
        return;
    }
    phase_ = Phase::kLingering;
    response_.reset();
    memory_.release();
    context_.connections.beginLingering(*this);
    error_code error;  // shows again when the client's bytes are read
    socket_.shutdown(tcp::socket::shutdown_send, error);
    linger();
    if (phase_ == Phase::kLingering)
        limitPhase(context_.options.lingerTimeout);
}

void Connection::linger() {
    error_code error;
    lingerBytes_ += socket_.read_some(boost::asio::buffer(context_.readBuffer), error);
    const bool isOpen = !error || error == boost::asio::error::would_block;
    if (isOpen && lingerBytes_ <= context_.options.maxLingerBytes)
        waitFor(tcp::socket::wait_read, &Connection::linger);
    else
        close();
}

void Connection::close() noexcept {
    phase_ = Phase::kClosed;
    error_code error;
    timer_.cancel(error);
    closeSocket();
    response_.reset();
    memory_.release();
}

// May be called by a worker, which must not touch the phase and the timer. Leaves the set before
// the socket closes: a client that sees the end of its connection can rely on a free place.
void Connection::closeSocket() noexcept {
    context_.connections.remove(*this);
    error_code error;  // the socket is closed in any case
    socket_.close(error);
}

// The wait ends with the phase.
void Connection::waitFor(tcp::socket::wait_type type, Step next) {
    const auto onEvent = [self = shared_from_this(), next, phase = phase_](error_code /*error*/) {
        // A failure of the socket shows in the next step.
        if (self->phase_ == phase)
            self->take(next);
    };
    socket_.async_wait(type, onEvent);
}

void Connection::continueOnIoThread(Step next) {
    boost::asio::post(socket_.get_executor(),
                      [self = shared_from_this(), next] { self->take(next); });
}

// Ends this phase after `timeout`.
void Connection::limitPhase(std::chrono::milliseconds timeout) {
    isLimited_ = true;
    timer_.expires_after(timeout);
    timer_.async_wait([self = shared_from_this(), phase = phase_](error_code error) {
        if (!error && self->phase_ == phase)
            self->take(&Connection::onTimeout);
    });
}

void Connection::onTimeout() {
    switch (phase_) {
        case Phase::kReading:
            lingers_ = !received_.empty();
            sendError({.status = 408, .text = "The header section was not received in time."});
            break;
        case Phase::kWaiting:
            memory_.release();
            sendError({.status = 503, .text = kNoRoom});
            break;
        default:
            close();
            break;
    }
}

}  // namespace Http

#include "ObjectManager/Http/Connection.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/error.hpp>
#include <boost/asio/post.hpp>
#include <exception>
#include <string_view>
#include <utility>
#include <variant>

#include "ObjectManager/Http/OwnAnswers.h"

namespace Http {

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;

}  // namespace

Connection::Connection(ConnectionContext& context, tcp::socket socket, const tcp::endpoint& client)
    : context_(context),
      socket_(std::move(socket)),
      client_(client),
      timer_(socket_.get_executor()),
      scanner_(context.options.requestLimits) {}

Connection::~Connection() {
    closeSocket();
}

void Connection::start() {
    context_.connections.add(*this);
    // The option TCP_NODELAY is not set: an answer is followed by the end of the connection, which
    // sends out what there is.
    socket_.non_blocking(true);
    take(&Connection::readHead);
}

void Connection::turnAway(const Refusal& refusal) {
    context_.connections.add(*this);
    error_code error;  // shows again when the answer is sent
    socket_.non_blocking(true, error);
    // Most clients have sent their request already, which tells whether it is of the method HEAD.
    const std::size_t length = socket_.read_some(boost::asio::buffer(context_.readBuffer), error);
    received_.assign(context_.readBuffer.data(), length);
    refuse(refusal);
}

void Connection::closeIfReading() {
    if (phase_ == Phase::kReading)
        close();
}

void Connection::abandon() {
    isAbandoned_ = true;
    if (phase_ != Phase::kAnswering)
        close();
}

// Every step on the I/O thread is taken here. One that fails ends the connection, which else would
// stay until its time is over.
void Connection::take(Step step) {
    try {
        (this->*step)();
    } catch (const std::exception&) {
        close();
        throw;
    }
}

// Most clients have sent their request by the time their connection is accepted.
void Connection::readHead() {
    using Progress = RequestHeadScanner::Progress;
    // One byte more than a head may have, so that the scanner refuses it.
    const std::size_t most = context_.options.requestLimits.mostHeadBytes + 1;
    for (;;) {
        error_code error;
        const std::size_t length = socket_.read_some(
            boost::asio::buffer(context_.readBuffer, most - received_.size()), error);
        if (error == boost::asio::error::would_block) {
            if (!isLimited_)
                limitPhase(context_.options.headTime);
            waitFor(tcp::socket::wait_read, &Connection::readHead);
            return;
        }
        if (error) {
            close();
            return;
        }
        received_.append(context_.readBuffer.data(), length);
        switch (scanner_.scan(received_)) {
            case Progress::kIncomplete:
                break;
            case Progress::kComplete:
                takeRequest();
                return;
            case Progress::kRefused:
                refuse(scanner_.refusal());
                return;
        }
    }
}

// Hands the request to a worker.
void Connection::takeRequest() {
    auto head = parseRequestHead(scanner_.headIn(received_), context_.options.requestLimits);
    if (const auto* refusal = std::get_if<Refusal>(&head)) {
        refuse(*refusal);
        return;
    }
    request_ = std::move(std::get<RequestHead>(head));
    hasMoreToCome_ = request_->announcesBody || received_.size() > scanner_.end();
    timer_.cancel();
    phase_ = Phase::kAnswering;
    if (!postToWorkers())
        answerWith({.status = 503, .text = "The server has too many requests. Try again later."});
}

// Whether they take it; the connection is the workers' then.
bool Connection::postToWorkers() {
    auto job = [self = shared_from_this()] { self->answerRequest(); };
    if (!context_.options.isQuick(request_->request))
        return context_.workers.postSlow(std::move(job));
    context_.workers.postQuick(std::move(job));
    return true;
}

void Connection::refuse(const Refusal& refusal) {
    hasMoreToCome_ = true;  // nobody knows where the request ends
    answerWith(refusal);
}

void Connection::answerWith(const Refusal& refusal) {
    answer_ = answerOf(refusal, scanner_.isHeadRequest(received_));
    beginWriting();
}

// Run by a worker. When there is no memory for an answer, the connection closes with the job.
void Connection::answerRequest() {
    answer_ = context_.dispatcher.answer(request_->request, client_);
    const Sending sending = isAbandoned_ ? Sending::kFailed : send();
    if (sending == Sending::kBlocked)
        continueOnIoThread(&Connection::beginWriting);
    else if (sending == Sending::kDone && clientSendsMore())
        continueOnIoThread(&Connection::beginDraining);
    else
        closeSocket();
}

void Connection::beginWriting() {
    phase_ = Phase::kWriting;
    limitPhase(context_.options.responseTime);
    write();
}

void Connection::write() {
    const Sending sending = isAbandoned_ ? Sending::kFailed : send();
    if (sending == Sending::kBlocked)
        waitFor(tcp::socket::wait_write, &Connection::write);
    else if (sending == Sending::kDone && clientSendsMore())
        beginDraining();
    else
        close();
}

// Sends what the socket takes now.
Connection::Sending Connection::send() {
    while (!answer_->isSent()) {
        error_code error;
        answer_->consume(socket_.write_some(answer_->unsent(), error));
        if (error == boost::asio::error::would_block)
            return Sending::kBlocked;
        if (error)
            return Sending::kFailed;
    }
    return Sending::kDone;
}

bool Connection::clientSendsMore() const {
    error_code error;
    return hasMoreToCome_ || socket_.available(error) > 0;
}

void Connection::beginDraining() {
    if (isAbandoned_) {
        close();
        return;
    }
    phase_ = Phase::kDraining;
    limitPhase(context_.options.drainTime);
    answer_.reset();
    error_code error;  // shows again when the client's bytes are read
    socket_.shutdown(tcp::socket::shutdown_send, error);
    drain();
}

void Connection::drain() {
    error_code error;
    drainedBytes_ += socket_.read_some(boost::asio::buffer(context_.readBuffer), error);
    const bool goesOn = !error || error == boost::asio::error::would_block;
    if (goesOn && drainedBytes_ <= context_.options.mostDrainedBytes)
        waitFor(tcp::socket::wait_read, &Connection::drain);
    else
        close();
}

void Connection::close() noexcept {
    phase_ = Phase::kClosed;
    error_code error;
    timer_.cancel(error);
    closeSocket();
}

// What a worker may do, who must not touch the phase and the timer. A client who sees that its
// connection has ended may count on the place.
void Connection::closeSocket() noexcept {
    context_.connections.remove(*this);
    error_code error;  // the socket is closed in any case
    socket_.close(error);
}

// What a phase waits for is of no interest to the next one.
void Connection::waitFor(tcp::socket::wait_type type, Step next) {
    const auto onEvent = [self = shared_from_this(), next, phase = phase_](error_code /*error*/) {
        // A failure of the socket shows in what comes next.
        if (self->phase_ == phase)
            self->take(next);
    };
    socket_.async_wait(type, onEvent);
}

void Connection::continueOnIoThread(Step next) {
    boost::asio::post(socket_.get_executor(),
                      [self = shared_from_this(), next] { self->take(next); });
}

// Ends this phase after that time.
void Connection::limitPhase(std::chrono::milliseconds most) {
    isLimited_ = true;
    timer_.expires_after(most);
    timer_.async_wait([self = shared_from_this(), phase = phase_](error_code error) {
        if (!error && self->phase_ == phase)
            self->take(&Connection::onTimeout);
    });
}

void Connection::onTimeout() {
    if (phase_ == Phase::kReading)
        refuse({.status = 408, .text = "The head of the request has not come in in time."});
    else
        close();
}

}  // namespace Http

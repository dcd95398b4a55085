#include "ObjectManager/Http/Connection.h"

#include <algorithm>
#include <boost/asio/buffer.hpp>
#include <boost/asio/post.hpp>
#include <exception>
#include <utility>

#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Http/IoThread.h"

namespace Http {

using boost::asio::ip::tcp;
using boost::system::error_code;
using std::chrono::steady_clock;

Connection::Connection(ConnectionContext& context, Stream stream, const tcp::endpoint& client)
    : context_(context),
      stream_(std::move(stream)),
      usesTls_(stream_.usesTls()),
      client_(client),
      timer_(stream_.socket().get_executor()),
      parser_(context.options, usesTls_),
      memory_(context.memory) {}

Connection::~Connection() {
    closeSocket();
}

void Connection::start() {
    context_.connections.add(*this, clientKey());
    stream_.open();
    take(&Connection::readHeader);
}

void Connection::refuse(const Error& error) {
    context_.connections.add(*this, clientKey());
    attempt([&] {
        stream_.open();
        // Most clients have sent their request already, which tells whether its method is HEAD.
        received_.assign(context_.readBuffer.data(),
                         stream_.read(boost::asio::buffer(context_.readBuffer)).bytes);
        sendError(error);
    });
}

void Connection::closeIfReading() noexcept {
    try {
        if (phase_ == Phase::kReading)
            take(&Connection::readHeader);
    } catch (const std::exception&) {
        // The connection is closed.
    }
    if (phase_ == Phase::kReading)
        close();
}

void Connection::makeRoom() {
    if (phase_ != Phase::kReading)
        return;
    if (!received_.empty())
        sendError({.status = 503, .text = kTooManyConnections});
    abandon();
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
        const auto [status, length] =
            stream_.read(boost::asio::buffer(context_.readBuffer, maxBytes - received_.size()));
        if (status != Stream::Status::kDone) {
            waitForHeader(status);
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

// Goes on from what the stream says when it has no bytes.
void Connection::waitForHeader(Stream::Status status) {
    switch (status) {
        case Stream::Status::kWantsRead:
        case Stream::Status::kWantsWrite:
            if (!isLimited_)
                limitPhase(context_.options.headerTimeout);
            waitFor(status, &Connection::readHeader);
            break;
        case Stream::Status::kPlainText:
            refusePlainText();
            break;
        default:
            endUnread();
            break;
    }
}

// The client has gone, or there is no way to respond to it.
void Connection::endUnread() noexcept {
    if (!stream_.isEstablished() && context_.onFailedHandshake)
        context_.onFailedHandshake();
    close();
}

void Connection::refusePlainText() {
    stream_.giveUpTls();
    received_.assign(context_.readBuffer.data(),
                     stream_.read(boost::asio::buffer(context_.readBuffer)).bytes);
    sendError({.status = 400, .text = "This port is for HTTPS. Use an address with \"https://\"."});
}

void Connection::queueRequest() {
    timer_.cancel();
    phase_ = Phase::kProcessing;
    context_.connections.endReading(*this);
    if (!std::exchange(hasRequest_, true))
        requestTime_ = steady_clock::now();
    if (context_.authentication.prepare)
        prepared_ = context_.authentication.prepare(parser_.request(), stream_.clientSubject());
    postToWorkers();
}

// The response found no room in memory.
void Connection::waitForRoom() {
    if (phase_ != Phase::kProcessing)
        return;  // the client has got an error because it took too long
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

// The request belongs to the workers then.
void Connection::postToWorkers() {
    const Authentication& authentication = context_.authentication;
    std::optional<Authentication::Login> login;
    if (authentication.unverifiedLogin)
        login = authentication.unverifiedLogin(request());
    if (login) {
        const ClientAddress client = clientOf(parser_.request(), ClientAddress::of(*client_.data()),
                                              context_.options.trustedProxies);
        context_.workers.postHash(
            {.client = ClientKey::of(client),
             .user = std::move(login->user),
             .credentials = std::move(login->credentials),
             .hash =
                 [self = shared_from_this()] {
                     return self->context_.authentication.verify(self->request());
                 },
             .done = [self = shared_from_this()](bool isHashed) { self->endHash(isHashed); }});
        return;
    }
    postProcessing();
}

// Run by any thread. The users may have been replaced since the hash was asked for: then the
// provider must not do another one, which would delay quick requests.
void Connection::endHash(bool isHashed) noexcept {
    try {
        if (!isHashed)
            continueOnIoThread(&Connection::refuseForLackOfPlaces);
        else if (!std::exchange(hasQueuedAgain_, true))
            postToWorkers();
        else
            postProcessing();
    } catch (const std::exception& exception) {
        logFailure(exception);  // the connection closes when nothing has hold of it
    }
}

void Connection::postProcessing() {
    context_.workers.postQuick([self = shared_from_this()] { self->processRequest(); },
                               [self = shared_from_this()] { self->endOverdue(); });
}

void Connection::refuseForLackOfPlaces() {
    sendError({.status = 503, .text = "The server has too many requests. Try again later."});
}

ClientKey Connection::clientKey() const noexcept {
    return ClientKey::of(ClientAddress::of(*client_.data()));
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
    std::optional<Response> response =
        context_.dispatcher.respond(request(), {.endpoint = client_, .usesTls = usesTls_}, memory_);
    if (!response) {
        continueOnIoThread(&Connection::waitForRoom);
        return;
    }
    if (isAnswered_.exchange(true))
        return;
    response_ = std::move(response);
    switch (isAbandoned_ ? Stream::Status::kFailed : send()) {
        case Stream::Status::kWantsRead:
        case Stream::Status::kWantsWrite:
            continueOnIoThread(&Connection::beginWriting);
            break;
        case Stream::Status::kDone:
            continueOnIoThread(&Connection::beginLingering);
            break;
        default:
            closeSocket();
            break;
    }
}

// The request may be used by the provider at this time, but the bytes as they were received are
// not.
void Connection::endOverdue() {
    if (phase_ != Phase::kProcessing || isAnswered_.exchange(true))
        return;
    isOverdue_ = true;
    Base::log(kLogComponent, TeskTraceLog::SeverityError,
              Base::logText(requestLine()) + ": the provider did not respond in time");
    sendError({.status = 504, .text = "The server did not make the response in time."});
}

std::string_view Connection::requestLine() const {
    const std::string_view bytes = received_;
    const std::size_t start = std::min(bytes.find_first_not_of("\r\n"), bytes.size());
    const std::size_t end = std::min(bytes.find_first_of("\r\n", start), bytes.size());
    return bytes.substr(start, end - start);
}

void Connection::beginWriting() {
    phase_ = Phase::kWriting;
    context_.connections.endReading(*this);
    limitPhase(context_.options.responseTimeout);
    write();
}

void Connection::write() {
    const Stream::Status status = isAbandoned_ ? Stream::Status::kFailed : send();
    switch (status) {
        case Stream::Status::kWantsRead:
        case Stream::Status::kWantsWrite:
            waitFor(status, &Connection::write);
            break;
        case Stream::Status::kDone:
            beginLingering();
            break;
        default:
            close();
            break;
    }
}

// Sends what the socket takes now.
Stream::Status Connection::send() {
    while (!response_->isSent()) {
        const auto [status, length] = stream_.write(response_->unsent());
        response_->consume(length);
        if (status != Stream::Status::kDone)
            return status;
    }
    report();
    return stream_.endTls();
}

void Connection::report() noexcept {
    if (!context_.report || !response_ || std::exchange(isReported_, true))
        return;
    const TSKHTTPRequest* message = nullptr;
    // A provider that is late may still use its request.
    if (hasRequest_ && !isOverdue_)
        message = &request();
    else if (hasRequest_ && prepared_ != nullptr)
        message = &parser_.request();
    ClientAddress client = ClientAddress::of(*client_.data());
    if (message != nullptr)
        client = clientOf(*message, client, context_.options.trustedProxies);
    try {
        context_.report({.client = client,
                         .requestLine = requestLine(),
                         .request = message,
                         .status = response_->status(),
                         .bodyBytes = response_->sentBodyBytes(),
                         .duration = hasRequest_ ? steady_clock::now() - requestTime_
                                                 : steady_clock::duration::zero()});
    } catch (const std::exception&) {
        // The response is as it would have been.
    }
}

// Gives its place away before the client is told that nothing follows: a client that sees the end
// of the response can rely on a free place. Reads before it waits: many clients have closed the
// connection already.
void Connection::beginLingering() {
    if (isAbandoned_ || !lingers_ || (context_.lacksDescriptors && context_.lacksDescriptors())) {
        close();
        return;
    }
    phase_ = Phase::kLingering;
    response_.reset();
    memory_.release();
    context_.connections.beginLingering(*this);
    stream_.giveUpTls();  // what still comes is dropped unread
    error_code error;     // shows again when the client's bytes are read
    stream_.socket().shutdown(tcp::socket::shutdown_send, error);
    linger();
    if (phase_ == Phase::kLingering)
        limitPhase(context_.options.lingerTimeout);
}

void Connection::linger() {
    const auto [status, length] = stream_.read(boost::asio::buffer(context_.readBuffer));
    lingerBytes_ += length;
    if (status != Stream::Status::kFailed && lingerBytes_ <= context_.options.maxLingerBytes)
        waitFor(Stream::Status::kWantsRead, &Connection::linger);
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
    report();
    context_.connections.remove(*this);
    if (!stream_.socket().is_open())
        return;
    error_code error;  // the socket is closed in any case
    stream_.socket().close(error);
    if (context_.onClosed)
        context_.onClosed();
}

// Waits until the stream can do what `status` says. The wait ends with the phase.
void Connection::waitFor(Stream::Status status, Step next) {
    const auto onEvent = [self = shared_from_this(), next, phase = phase_](error_code /*error*/) {
        // A failure of the socket shows in the next step.
        if (self->phase_ == phase)
            self->take(next);
    };
    stream_.socket().async_wait(
        status == Stream::Status::kWantsWrite ? tcp::socket::wait_write : tcp::socket::wait_read,
        onEvent);
}

void Connection::continueOnIoThread(Step next) {
    boost::asio::post(stream_.socket().get_executor(),
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
            if (!stream_.isEstablished()) {
                endUnread();
                break;
            }
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

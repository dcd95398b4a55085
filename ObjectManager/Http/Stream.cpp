#include "ObjectManager/Http/Stream.h"

#include <algorithm>
#include <array>
#include <boost/asio/error.hpp>
#include <cerrno>
#include <climits>
#include <memory>
#include <new>
#include <openssl/bio.h>
#include <openssl/err.h>
#include <openssl/x509.h>
#include <sys/socket.h>
#include <utility>

#include "ObjectManager/Base/Ascii.h"

namespace Http {

using boost::asio::ip::tcp;
using boost::system::error_code;

namespace {

// The data of a TLS record.
constexpr std::size_t kRecordSize = 16UL * 1024;

struct BioMethodDeleter {
    void operator()(BIO_METHOD* method) const noexcept { BIO_meth_free(method); }
};

int writeToSocket(BIO* bio, const char* data, int length) {
    const ssize_t written = send(static_cast<int>(BIO_get_fd(bio, nullptr)), data,
                                 static_cast<std::size_t>(length), MSG_NOSIGNAL);
    BIO_clear_retry_flags(bio);
    if (written < 0 && (errno == EAGAIN || errno == EINTR))
        BIO_set_retry_write(bio);
    return static_cast<int>(written);
}

// OpenSSL's own for sockets, but that writing to a client that has gone raises no signal.
const BIO_METHOD* socketMethod() {
    static const std::unique_ptr<BIO_METHOD, BioMethodDeleter> method = [] {
        const BIO_METHOD* const socket = BIO_s_socket();
        std::unique_ptr<BIO_METHOD, BioMethodDeleter> made(
            BIO_meth_new(BIO_TYPE_SOCKET, "socket without signals"));
        if (made == nullptr)
            throw std::bad_alloc();
        BIO_meth_set_write(made.get(), &writeToSocket);
        BIO_meth_set_read(made.get(), BIO_meth_get_read(socket));
        BIO_meth_set_ctrl(made.get(), BIO_meth_get_ctrl(socket));
        BIO_meth_set_create(made.get(), BIO_meth_get_create(socket));
        BIO_meth_set_destroy(made.get(), BIO_meth_get_destroy(socket));
        return made;
    }();
    return method.get();
}

Stream::Status statusOf(const error_code& error, Stream::Status ifBlocked) {
    if (!error)
        return Stream::Status::kDone;
    return error == boost::asio::error::would_block ? ifBlocked : Stream::Status::kFailed;
}

}  // namespace

Stream::Stream(tcp::socket socket) noexcept : socket_(std::move(socket)) {}

Stream::Stream(tcp::socket socket, SslPtr session)
    : socket_(std::move(socket)), session_(std::move(session)) {
    BIO* const bio = BIO_new(socketMethod());
    if (bio == nullptr)
        throw std::bad_alloc();
    BIO_set_fd(bio, socket_.native_handle(), BIO_NOCLOSE);
    SSL_set_bio(session_.get(), bio, bio);
    SSL_set_accept_state(session_.get());
}

bool Stream::isEstablished() const noexcept {
    return session_ == nullptr || SSL_is_init_finished(session_.get()) == 1;
}

std::string Stream::clientSubject() const {
    X509* const certificate =
        session_ == nullptr ? nullptr : SSL_get0_peer_certificate(session_.get());
    if (certificate == nullptr || SSL_get_verify_result(session_.get()) != X509_V_OK)
        return {};
    struct BioDeleter {
        void operator()(BIO* bio) const noexcept { BIO_free(bio); }
    };
    const std::unique_ptr<BIO, BioDeleter> bio(BIO_new(BIO_s_mem()));
    if (bio == nullptr ||
        X509_NAME_print_ex(bio.get(), X509_get_subject_name(certificate), 0, XN_FLAG_RFC2253) < 0)
        throw std::bad_alloc();
    char* text = nullptr;
    const long length = BIO_get_mem_data(bio.get(), &text);
    return {text, static_cast<std::size_t>(length)};
}

// A handshake consists of small messages, each of which the other side waits for. Without TLS
// nothing is small but the last bytes, which are sent when the sending side is closed.
void Stream::open() {
    socket_.non_blocking(true);
    if (usesTls())
        socket_.set_option(tcp::no_delay(true));
}

Stream::Transfer Stream::read(boost::asio::mutable_buffer buffer) noexcept {
    if (session_ == nullptr)
        return readRaw(buffer);
    if (!hasBegun_) {
        const Status begin = examineFirstByte();
        if (begin != Status::kDone)
            return {.status = begin};
    }
    ERR_clear_error();
    std::size_t bytes = 0;
    const int result = SSL_read_ex(session_.get(), buffer.data(), buffer.size(), &bytes);
    return {.status = statusOf(result), .bytes = bytes};
}

Stream::Transfer Stream::write(const Response::Parts& parts) noexcept {
    if (session_ == nullptr) {
        error_code error;
        const std::size_t bytes = socket_.write_some(parts, error);
        return {.status = Http::statusOf(error, Status::kWantsWrite), .bytes = bytes};
    }
    const auto part = std::ranges::find_if(parts, [](const auto& each) { return each.size() > 0; });
    if (part == parts.end())
        return {.status = Status::kDone};
    ERR_clear_error();
    std::size_t bytes = 0;
    int result = 0;
    if (part->size() >= kRecordSize || std::next(part) == parts.end()) {
        result = SSL_write_ex(session_.get(), part->data(), part->size(), &bytes);
    } else {
        // One record for all: each takes a system call, and bytes of its own.
        std::array<char, kRecordSize> record;  // NOLINT(*-member-init): filled below
        const std::size_t length = boost::asio::buffer_copy(boost::asio::buffer(record), parts);
        result = SSL_write_ex(session_.get(), record.data(), length, &bytes);
    }
    return {.status = statusOf(result), .bytes = bytes};
}

Stream::Status Stream::endTls() noexcept {
    if (session_ == nullptr || SSL_is_init_finished(session_.get()) != 1)
        return Status::kDone;
    ERR_clear_error();
    const int result = SSL_shutdown(session_.get());
    return result < 0 ? statusOf(result) : Status::kDone;  // 0: the client has not ended it yet
}

Stream::Transfer Stream::readRaw(boost::asio::mutable_buffer buffer) noexcept {
    error_code error;
    const std::size_t bytes = socket_.read_some(buffer, error);
    return {.status = Http::statusOf(error, Status::kWantsRead), .bytes = bytes};
}

// The first byte of a handshake is no letter, and that of a request of HTTP is one.
// OpenSSL must not see it before: plain text would be lost to it.
Stream::Status Stream::examineFirstByte() noexcept {
    char first = '\0';
    const ssize_t length = recv(socket_.native_handle(), &first, 1, MSG_PEEK | MSG_DONTWAIT);
    if (length < 0 && (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR))
        return Status::kWantsRead;
    if (length <= 0)
        return Status::kFailed;
    if (Base::isLetter(first))
        return Status::kPlainText;
    hasBegun_ = true;
    return Status::kDone;
}

Stream::Status Stream::statusOf(int result) const noexcept {
    if (result > 0)
        return Status::kDone;
    switch (SSL_get_error(session_.get(), result)) {
        case SSL_ERROR_WANT_READ:
            return Status::kWantsRead;
        case SSL_ERROR_WANT_WRITE:
            return Status::kWantsWrite;
        default:
            return Status::kFailed;
    }
}

}  // namespace Http

#pragma once

#include <boost/asio/buffer.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <cstddef>
#include <cstdint>
#include <string>

#include "ObjectManager/Http/Response.h"
#include "ObjectManager/Http/TlsContext.h"

namespace Http {

/// The bytes of a connection, by a socket with or without TLS. No function waits: where the socket
/// is not ready, the caller waits for it and calls the function again.
///
/// Thread safety: belongs to one thread at a time.
class Stream {
  public:
    enum class Status : std::uint8_t {
        kDone,
        kWantsRead,   ///< when the socket can be read, again
        kWantsWrite,  ///< when the socket can be written, again
        kPlainText,   ///< the client does not use TLS, see giveUpTls()
        kFailed,      ///< or the client has ended the connection
    };

    struct Transfer {
        Status status;
        std::size_t bytes = 0;
    };

    /// Without TLS.
    Stream(boost::asio::ip::tcp::socket socket) noexcept;  // NOLINT(google-explicit-constructor)
    /// With TLS, on the side of the server. Reading makes the handshake.
    /// Errors: std::bad_alloc.
    Stream(boost::asio::ip::tcp::socket socket, SslPtr session);

    /// Where the caller waits.
    [[nodiscard]] boost::asio::ip::tcp::socket& socket() noexcept { return socket_; }

    [[nodiscard]] bool usesTls() const noexcept { return session_ != nullptr; }

    /// Whether bytes can be written: always without TLS, after the handshake with it.
    [[nodiscard]] bool isEstablished() const noexcept;

    /// The subject of the client's certificate, such as "CN=alice,O=Example" (RFC 4514); empty if
    /// it has sent none. A handshake with a certificate that is not accepted fails.
    /// Errors: std::bad_alloc.
    [[nodiscard]] std::string clientSubject() const;

    /// Makes the socket non-blocking. To be called before all below.
    /// Errors: boost::system::system_error.
    void open();

    /// Reads what is there, at most as much as the buffer takes; makes the handshake before.
    [[nodiscard]] Transfer read(boost::asio::mutable_buffer buffer) noexcept;

    /// Writes some of the bytes. After kWantsRead or kWantsWrite the next call must begin with the
    /// same bytes.
    [[nodiscard]] Transfer write(const Response::Parts& parts) noexcept;

    /// Tells the client by TLS that nothing follows. Does nothing without TLS.
    [[nodiscard]] Status endTls() noexcept;

    /// Goes on without TLS: after kPlainText from the first byte of the client, after endTls() with
    /// what comes then.
    void giveUpTls() noexcept { session_.reset(); }

  private:
    [[nodiscard]] Transfer readRaw(boost::asio::mutable_buffer buffer) noexcept;
    [[nodiscard]] Status examineFirstByte() noexcept;
    [[nodiscard]] Status statusOf(int result) const noexcept;

    boost::asio::ip::tcp::socket socket_;
    SslPtr session_;         // null without TLS
    bool hasBegun_ = false;  // the client has sent something, which is no plain text
};

}  // namespace Http

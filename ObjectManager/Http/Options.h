#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Http {

/// Where a Server listens.
struct ListenAddress {
    /// An IPv4 or IPv6 address, without brackets. "0.0.0.0" is every IPv4 address of the machine,
    /// "::" every IPv6 and IPv4 address. By default this machine alone: Basic authentication shows
    /// passwords to everybody on the way.
    std::string address = "127.0.0.1";

    /// 0 takes a port that is free. By default the one that is registered for WS-Management.
    std::uint16_t port = 5985;

    friend bool operator==(const ListenAddress&, const ListenAddress&) = default;
};

/// How a Server listens, and what it allows its clients.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct Options {
    /// Where to listen, at one place at least. Everything else here counts for all of them
    /// together.
    std::vector<ListenAddress> listen = {{}};

    /// Threads that run providers; 0 for one for each processor. Providers compute, so more would
    /// only take turns.
    unsigned workers = 0;

    /// Bytes of the header section with the empty line at its end. A Kerberos token in an
    /// Authorization header field takes up to 12 KiB; more is answered 431.
    std::size_t maxHeaderSize = 16UL * 1024;

    /// Bytes of the request line without its end. RFC 9112, section 3, recommends 8,000 at least;
    /// more is answered 414.
    std::size_t maxRequestLine = 8UL * 1024;

    /// Header fields. Clients send about ten; more is answered 431, since what looks a field up
    /// goes through all of them.
    std::size_t maxHeaderFields = 100;

    /// For the client to send the whole header section; answered 408 then. Long enough for a bad
    /// line, short enough that clients that send nothing do not take the place of others for long.
    std::chrono::milliseconds headerTimeout = std::chrono::seconds(10);

    /// For the client to take the whole response, however steadily it reads; the connection is
    /// closed then. A document of 10 MiB needs 3 Mbit/s.
    std::chrono::milliseconds responseTimeout = std::chrono::seconds(30);

    /// For requests that run when the server is told to stop. Service managers wait longer before
    /// they use force.
    std::chrono::milliseconds shutdownTimeout = std::chrono::seconds(10);

    /// Open connections, also those that wait for the client to end. One more is answered 503.
    /// Each takes a file descriptor, and memory for its request and its response.
    std::size_t maxConnections = 4096;

    /// Connections beyond those that are kept after the 503, for as long as `lingerTimeout` says,
    /// so that a client that is still sending gets the response. Others are closed at once.
    std::size_t maxRefusedConnections = 64;

    /// Requests that wait for a password hash. One more is answered 503: where one takes the 15 ms
    /// of a hash and a single worker does them, the last of so many waits for 4 s.
    std::size_t maxWaitingHashes = 256;

    /// How long, and how many bytes, a client may go on sending after it has got the response; the
    /// connection is closed then. Clients that send a body first and read afterwards need this.
    std::chrono::milliseconds lingerTimeout = std::chrono::seconds(5);
    std::size_t maxLingerBytes = 16UL * 1024 * 1024;

    friend bool operator==(const Options&, const Options&) = default;
};

}  // namespace Http

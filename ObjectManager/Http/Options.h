#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace Http {

/// The component of the server's lines in the log.
inline constexpr std::string_view kLogComponent = "HttpFrontEnd";

/// An address that a server listens on.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct ListenAddress {
    /// An IPv4 or IPv6 address: "0.0.0.0" for every IPv4 address of the machine, "::" for every
    /// IPv6 and IPv4 address. The default accepts connections from this machine only, because Basic
    /// authentication sends passwords in clear text.
    std::string address = "127.0.0.1";

    /// 0 picks a free port. 5985 is registered for WS-Management over HTTP.
    std::uint16_t port = 5985;

    friend bool operator==(const ListenAddress&, const ListenAddress&) = default;
};

/// What a Server listens on and what it allows its clients. The limits apply to all listen
/// addresses together.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct Options {
    std::vector<ListenAddress> listen = {{}};

    /// Threads that run providers; 0 for one per processor. Providers compute and never wait for
    /// clients, so more threads would only take turns.
    unsigned workers = 0;

    /// Bytes of a request line and its header fields, with the empty line at their end. A Kerberos
    /// token in the Authorization field takes up to 12 KiB. A longer header section gets 431.
    std::size_t maxHeaderSize = 16UL * 1024;

    /// Bytes of a request line without its line end. RFC 9112, section 3, recommends at least
    /// 8,000. A longer one gets 414.
    std::size_t maxRequestLine = 8UL * 1024;

    /// Header fields of a request. Clients send about ten. A field is found by searching through
    /// all of them, so their number has a limit of its own. More get 431.
    std::size_t maxHeaderFields = 100;

    /// Time for a client to send the whole header section; it gets 408 then. Enough for a bad
    /// network, short enough that idle clients do not hold connections for long.
    std::chrono::milliseconds headerTimeout = std::chrono::seconds(10);

    /// Time for a client to read the whole response; the connection is closed then. A document of
    /// 10 MiB needs 3 Mbit/s.
    std::chrono::milliseconds responseTimeout = std::chrono::seconds(30);

    /// Bytes that all responses take together, from when they are made until they are sent. A
    /// response for which there is no room waits for at most `responseTimeout`; its client gets 503
    /// then. One response alone may be larger. Enough for thousands of usual documents; what a
    /// provider needs to make a document comes on top, for each worker.
    std::size_t maxResponseMemory = 256UL * 1024 * 1024;

    /// Time for running requests to finish when the server stops. Long enough for the largest
    /// document; service managers wait longer before they kill a process.
    std::chrono::milliseconds shutdownTimeout = std::chrono::seconds(10);

    /// Open connections, lingering ones included. For one more, the one that has lingered for
    /// longest is closed; if none lingers, it gets 503. Each takes a file descriptor and memory for
    /// its request and its response.
    std::size_t maxConnections = 4096;

    /// Connections beyond `maxConnections` that linger after their 503. Others are closed at once,
    /// and a client that is still sending may lose the response. Enough for a burst of clients,
    /// few compared to the file descriptors that the process has.
    std::size_t maxRefusedConnections = 64;

    /// Requests that wait for a worker to hash their password. One more gets 503. A hash takes
    /// about 15 ms, so with a single worker for them the last of 256 waits for 4 s.
    std::size_t maxWaitingHashes = 256;

    /// How long, and for how many bytes, a connection lingers: after the response the server waits
    /// for the client to close it, and drops what the client still sends. Closing it earlier could
    /// discard what the client has not read yet. Most clients close at once; those that send a body
    /// before they read need the time.
    std::chrono::milliseconds lingerTimeout = std::chrono::seconds(5);
    std::size_t maxLingerBytes = 16UL * 1024 * 1024;

    friend bool operator==(const Options&, const Options&) = default;
};

}  // namespace Http

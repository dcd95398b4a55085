#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Host/PublishedAddress.h"
#include "ObjectManager/Http/ClientAddress.h"

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

/// The certificate by which a server proves who it is over TLS, and whose certificates it accepts.
/// All files are in PEM.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct TlsOptions {
    /// The certificate, followed by those that lead to an authority that clients know.
    std::string certificateFile = {};

    /// Its key, not encrypted.
    std::string keyFile = {};

    /// The authorities of client certificates. A client whose certificate one of them has issued is
    /// the user that the certificate names, without a password; other certificates are refused.
    /// Empty to ask for none.
    std::string clientAuthorityFile = {};

    friend bool operator==(const TlsOptions&, const TlsOptions&) = default;
};

/// What a Server listens on and what it allows its clients. The limits apply to all listen
/// addresses together.
///
/// Thread safety: belongs to one thread while it is changed; may be read by several at once.
struct Options {
    std::vector<ListenAddress> listen = {{}};

    /// Where it listens for TLS, with a certificate. 5986 is registered for WS-Management over
    /// HTTPS.
    std::vector<ListenAddress> tlsListen = {};
    TlsOptions tls = {};

    /// Where documents say that the service is, for clients that reach it by another address than
    /// its own: through a proxy with TLS, or beside a CIM server. Without it, documents name the
    /// address by which the client has reached the server.
    std::optional<Host::PublishedAddress> publishedAddress = std::nullopt;

    /// The proxies whose header field "X-Forwarded-For" tells which client a request comes from.
    /// Any client can send that field, so without a proxy it tells nothing.
    std::vector<Network> trustedProxies = {};

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

    /// Time for a provider to make a response; the client gets 504 then, and another worker takes
    /// the place of the one that waits for the provider, as often as there are workers. 0 for no
    /// limit. The largest documents take some seconds, also on a slow machine; a provider that
    /// needs a minute will not return at all.
    std::chrono::milliseconds requestTimeout = std::chrono::seconds(60);

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

    /// Time for clients that are connected when the server stops to send their request; their
    /// connections are closed then. Clients send it at once, so this covers a bad network, and the
    /// server stops soon although idle clients are connected.
    std::chrono::milliseconds stopGrace = std::chrono::milliseconds(500);

    /// Open connections, lingering ones included; fewer if the process may not open so many files.
    /// For one more, the one that has lingered for longest is closed, else the oldest one that has
    /// not sent its header section; if there is none, it gets 503. Each takes a file descriptor and
    /// memory for its request and its response.
    std::size_t maxConnections = 4096;

    /// Open connections of one client: of an IPv4 address or an IPv6 /64 network. One more gets
    /// 503. 0 for no limit; by default a quarter of the connections, so that no single client can
    /// take all of them. Trusted proxies have no limit: they bring many clients.
    std::optional<std::size_t> maxConnectionsPerClient = std::nullopt;

    /// File descriptors that connections leave for other files: for the log, and for the
    /// configuration, the classes and the password file when they are read again.
    std::size_t reservedDescriptors = 64;

    /// After this time, connections are accepted again when file descriptors have run out and no
    /// connection was closed since: another process or another part of this one may have held them.
    std::chrono::milliseconds descriptorTimeout = std::chrono::seconds(1);

    /// Connections beyond `maxConnections` that linger after their 503. Others are closed at once,
    /// and a client that is still sending may lose the response. Enough for a burst of clients,
    /// few compared to the file descriptors that the process has.
    std::size_t maxRefusedConnections = 64;

    /// Passwords that wait to be hashed. One more gets 503, or takes a place of the client that has
    /// most of them. A hash takes about 15 ms, so with a single worker for them the last of 256
    /// waits for 4 s. Requests with equal credentials count as one.
    std::size_t maxWaitingHashes = 256;

    /// Those of one client: a quarter, so that others have places at once.
    std::size_t maxWaitingHashesPerClient = 64;

    /// Passwords that are hashed at once. Each takes a processor for 15 ms and 16 MiB of memory;
    /// clients that send wrong passwords must not take more than this. Where there are two or more
    /// workers, one of them never hashes.
    unsigned maxRunningHashes = 4;

    /// How long, and for how many bytes, a connection lingers: after the response the server waits
    /// for the client to close it, and drops what the client still sends. Closing it earlier could
    /// discard what the client has not read yet. Most clients close at once; those that send a body
    /// before they read need the time.
    std::chrono::milliseconds lingerTimeout = std::chrono::seconds(5);
    std::size_t maxLingerBytes = 16UL * 1024 * 1024;

    friend bool operator==(const Options&, const Options&) = default;
};

}  // namespace Http

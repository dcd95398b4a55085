#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

#include "ObjectManager/Http/AccessLog.h"
#include "ObjectManager/Http/Authentication.h"
#include "ObjectManager/Http/Options.h"
#include "ObjectManager/Http/TlsContext.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Http {

/// The HTTP server: hands requests to the providers, and their responses back to the clients. One
/// thread does the input and output of all connections, a pool of workers runs the providers, so a
/// slow client never occupies a worker. There is one request per connection.
///
/// Requests are checked before a provider sees them: RequestParser says what is refused, Dispatcher
/// which response a failure of a provider gets. A provider never sees a body; what a client sends
/// after the header section is dropped.
///
/// Thread safety: belongs to one thread, which must not run providers.
class Server {
  public:
    /// Is told of each response, also of those of the server itself; see ConnectionContext::report.
    /// Called by several threads at once.
    using Report = std::function<void(const Exchange& exchange)>;

    /// Listens from now on, on all addresses or on none; connections wait until start(). `manager`
    /// must outlive the server.
    /// Errors: std::system_error that names address and port when it cannot listen on one of them;
    /// TeskBaseException when it is to listen for TLS and the certificate cannot be used.
    Server(const Options& options, const TeskProviderPluginManager& manager,
           Authentication authentication = {}, Report report = nullptr);
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    /// Closes all connections. Waits for the providers that still run, however long that takes.
    ~Server();

    /// The addresses and ports that the server listens on, in the order of the options; addresses
    /// as in a URI, with IPv6 in brackets.
    [[nodiscard]] const std::vector<ListenAddress>& addresses() const noexcept;
    /// The same of those for TLS.
    [[nodiscard]] const std::vector<ListenAddress>& tlsAddresses() const noexcept;

    /// The certificate that connections for TLS begin with; null if there are none.
    [[nodiscard]] TlsContext* tls() noexcept;

    /// How much the server has to do, and has had to since its start.
    struct State {
        std::size_t connections = 0;  ///< that are open
        std::uint64_t acceptedConnections = 0;
        std::uint64_t refusedConnections = 0;
        std::uint64_t failedHandshakes = 0;
        std::size_t responseMemory = 0;  ///< bytes of all responses that are not sent yet
    };

    /// May be called by several threads at once.
    [[nodiscard]] State state() const;

    /// Serves requests from now on, on threads of its own. To be called once.
    /// Errors: std::system_error when a thread cannot be started.
    void start();

    /// Stops serving: accepts the connections that clients have begun, and no further ones; closes
    /// those whose request does not come in within Options::stopGrace; lets the others send their
    /// response until Options::shutdownTimeout has passed, then closes them too. Does not wait for
    /// clients that have their response and do not close their connection. May be called again, to
    /// wait longer for providers.
    ///
    /// So no request is lost if its client was connected when stop() began. The exceptions: a
    /// client so far away that its handshake takes more than a tenth of a second, one that is slow
    /// to send its request, and a server that cannot accept its connection because file
    /// descriptors have run out.
    ///
    /// Returns whether no provider runs any more, so that the providers may be shut down. If it
    /// returns false, a provider hangs and cannot be stopped; then end the process without
    /// shutting the providers down and without destroying the server.
    /// Errors: std::bad_alloc.
    [[nodiscard]] bool stop();

  private:
    class Implementation;

    std::unique_ptr<Implementation> implementation_;
};

}  // namespace Http

#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "ObjectManager/Http/Options.h"
#include "Platform/Http/TSKHTTPRequest.h"
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
    /// Whether a password must be hashed to respond to `request`, which takes long. Such requests
    /// wait in a queue of their own (Options::maxWaitingHashes) and never occupy all workers if
    /// there are two or more. Called by the I/O thread, so it must be fast. If it throws, the
    /// connection is closed.
    using NeedsPasswordHash = std::function<bool(const TSKHTTPRequest& request)>;

    /// Makes the request that `needsPasswordHash` and the provider get. It may be of a derived
    /// class, which carries what both would find out for themselves, such as parsed credentials.
    /// Called by the I/O thread, as NeedsPasswordHash is.
    using Prepare = std::function<std::unique_ptr<TSKHTTPRequest>(const TSKHTTPRequest& request)>;

    /// Listens from now on, on all addresses or on none; connections wait until start(). `manager`
    /// must outlive the server. Without `needsPasswordHash` all requests are alike;
    /// without `prepare` a request is handed on as it was read.
    /// Errors: std::system_error that names address and port when it cannot listen on one of them.
    Server(const Options& options, const TeskProviderPluginManager& manager,
           NeedsPasswordHash needsPasswordHash = nullptr, Prepare prepare = nullptr);
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    /// Closes all connections. Waits for the providers that still run, however long that takes.
    ~Server();

    /// The addresses and ports that the server listens on, in the order of the options; addresses
    /// as in a URI, with IPv6 in brackets.
    [[nodiscard]] const std::vector<ListenAddress>& addresses() const noexcept;

    /// Serves requests from now on, on threads of its own. To be called once.
    /// Errors: std::system_error when a thread cannot be started.
    void start();

    /// Stops serving: accepts no further connections, closes those whose request has not come in,
    /// lets the others send their response for Options::shutdownTimeout, then closes them too. Does
    /// not wait for clients that have their response and do not close their connection. May be
    /// called again, to wait longer for providers.
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

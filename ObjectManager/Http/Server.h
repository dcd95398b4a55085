#pragma once

#include <chrono>
#include <memory>
#include <vector>

#include "ObjectManager/Http/Options.h"
#include "ObjectManager/Http/ServerOptions.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Http {

/// The HTTP front end: hands the requests that come in to the providers, and their responses back
/// to the clients. One thread does the input and output, a pool of workers runs the providers, so
/// that a client who is slow holds no worker. Every connection carries one request. A server
/// listens at any number of places; its limits and its workers are for all of them together.
///
/// Requests are checked before a provider sees them; see parseRequestHead for what is refused and
/// Dispatcher for how failures of a provider are answered. A provider sees no body: what a client
/// sends after the head is thrown away.
///
/// Thread safety: belongs to one thread, none that runs a provider.
class Server {
  public:
    /// Long enough for the largest document, short enough for whoever waits for the process to end.
    static constexpr std::chrono::seconds kGracePeriod{10};

    /// Listens from now on, at all places or at none; connections wait until start(). `manager`
    /// must outlive the server.
    /// Errors: std::system_error that names address and port when it cannot listen at one of them.
    Server(const ServerOptions& options, const TeskProviderPluginManager& manager);
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;
    /// Closes all connections; waits for the providers that still run, however long they do.
    ~Server();

    /// The addresses and ports that it listens on, in the order of the options; addresses as in a
    /// URI, IPv6 in brackets.
    [[nodiscard]] const std::vector<ListenAddress>& addresses() const noexcept;

    /// Serves requests from now on, on threads of its own. To be called once.
    /// Errors: std::system_error when a thread cannot be started.
    void start();

    /// Stops serving: takes no further connections, closes those whose request has not come in,
    /// lets the others finish for `gracePeriod`, then closes them too. To be called again only to
    /// wait longer for providers.
    ///
    /// Returns whether no provider is running any more, so that the providers may be shut down. If
    /// not, a provider has not returned; nobody can end it. What is left is to end the process
    /// without shutting the providers down and without destroying the server.
    /// Errors: std::bad_alloc.
    [[nodiscard]] bool stop(std::chrono::milliseconds gracePeriod = kGracePeriod);

  private:
    class Implementation;

    std::unique_ptr<Implementation> implementation_;
};

}  // namespace Http

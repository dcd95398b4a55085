#pragma once

#include <boost/asio/ip/tcp.hpp>

#include "ObjectManager/Http/Response.h"
#include "Platform/Http/TSKHTTPRequest.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Http {

/// Has the provider that serves the path of a request make the response.
///
/// Thread safety: may be used by several threads at once.
class Dispatcher {
  public:
    /// `manager` must outlive the dispatcher.
    explicit Dispatcher(const TeskProviderPluginManager& manager) noexcept : manager_(manager) {}

    /// The response to `request` from `client`, without its body if the method is HEAD. If there is
    /// no response of a provider:
    ///
    /// - 404 if no provider serves the path, or the provider has nothing there.
    /// - 401 if the provider does not accept the client.
    /// - 500, and an error in the log, if the provider throws anything else or what it wrote is not
    ///   a response.
    ///
    /// What the provider has written is dropped then.
    /// Errors: std::bad_alloc when there is no memory even for an error response.
    [[nodiscard]] Response respond(TSKHTTPRequest& request,
                                   const boost::asio::ip::tcp::endpoint& client) const;

  private:
    const TeskProviderPluginManager& manager_;
};

}  // namespace Http

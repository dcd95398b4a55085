#pragma once

#include <boost/asio/ip/tcp.hpp>

#include "ObjectManager/Http/Answer.h"
#include "Platform/Http/TSKHTTPRequest.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Http {

/// Turns a checked request into an answer: that of the provider that the request's path belongs to.
///
/// Thread safety: may be used by several threads at once.
class Dispatcher {
  public:
    /// `manager` must outlive the dispatcher.
    explicit Dispatcher(const TeskProviderPluginManager& manager) noexcept : manager_(manager) {}

    /// The answer to `request` from `client`; its head alone if the method is HEAD. Where no
    /// provider answers:
    ///
    /// - 404 if no provider serves the path, or the provider leaves the answer to the front end.
    /// - 401 if the provider does not accept the client.
    /// - 500, and an error in the log, for whatever else is thrown, and for what is written that is
    ///   no response.
    ///
    /// In all of them what was written before is dropped.
    /// Errors: std::bad_alloc when there is no memory even to say so.
    [[nodiscard]] Answer answer(TSKHTTPRequest& request,
                                const boost::asio::ip::tcp::endpoint& client) const;

  private:
    const TeskProviderPluginManager& manager_;
};

}  // namespace Http

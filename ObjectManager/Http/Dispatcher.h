#pragma once

#include <boost/asio/ip/tcp.hpp>

#include "ObjectManager/Http/Answer.h"
#include "ObjectManager/Http/RequestHandler.h"
#include "Platform/Http/TSKHTTPRequest.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Http {

/// Turns a checked request into an answer: asks the service's own handler first, then the provider
/// that the request's path belongs to.
///
/// Thread safety: may be used by several threads at once.
class Dispatcher {
  public:
    /// Both must outlive the dispatcher; `handler` may be null.
    Dispatcher(const TeskProviderPluginManager& manager, RequestHandler* handler) noexcept
        : manager_(manager), handler_(handler) {}

    /// The answer to `request` from `client`; its head alone if the method is HEAD. Where neither
    /// handler nor provider answers:
    ///
    /// - 404 if nobody is there for the path, or the provider leaves the answer to the front end.
    /// - 401 for a TSKHTTPException with kAuthenticationFailed.
    /// - 500, and an error in the log, for whatever else is thrown, and for what is written that is
    ///   no response.
    ///
    /// In all of them what was written before is dropped.
    /// Errors: std::bad_alloc when there is no memory even to say so.
    [[nodiscard]] Answer answer(TSKHTTPRequest& request,
                                const boost::asio::ip::tcp::endpoint& client) const;

  private:
    [[nodiscard]] bool respond(TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) const;

    const TeskProviderPluginManager& manager_;
    RequestHandler* handler_;
};

}  // namespace Http

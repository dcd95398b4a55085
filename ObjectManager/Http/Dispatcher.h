#pragma once

#include <boost/asio/ip/tcp.hpp>
#include <optional>
#include <utility>

#include "ObjectManager/Host/ProviderCall.h"
#include "ObjectManager/Host/PublishedAddress.h"
#include "ObjectManager/Http/Response.h"
#include "ObjectManager/Http/ResponseMemory.h"
#include "Platform/Http/TSKHTTPRequest.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Http {

/// The other end of the connection that a request has come over.
///
/// Thread safety: belongs to one thread.
struct Peer {
    boost::asio::ip::tcp::endpoint endpoint;
    bool usesTls = false;
};

/// Has the provider that serves the path of a request make the response, and adds what HTTP
/// demands of all of them alike.
///
/// Thread safety: may be used by several threads at once.
class Dispatcher {
  public:
    /// `manager` must outlive the dispatcher. `published` is where documents say that the service
    /// is, see Options::publishedAddress.
    explicit Dispatcher(const TeskProviderPluginManager& manager,
                        std::optional<Host::PublishedAddress> published = std::nullopt) noexcept
        : manager_(manager), published_(std::move(published)) {}

    /// The response to `request` from `peer`, without its body if the method is HEAD. It takes its
    /// memory from `memory`.
    ///
    /// Providers write the address of the service with the field Host, which is set to the
    /// published host if there is one, and the scheme http. Where that is https, because it is
    /// published or the client uses TLS, the address in a WSDL document becomes one of https, and
    /// the request has the field "X-Forwarded-Proto: https" for pages.
    ///
    /// A provider is called for its methods only: those that it has registered with the plug-in
    /// manager, else GET and HEAD. To other methods the response is, for everybody and whether the
    /// path exists or not:
    ///
    /// - 204 with the field Allow to OPTIONS.
    /// - 405 with the field Allow to the methods of RFC 9110, section 9, and PATCH.
    /// - 501 to all others.
    ///
    /// A response with status 200 to GET or HEAD gets an entity tag if it has none, and if the
    /// conditions of the request say so, it becomes 304 or 412.
    ///
    /// If there is no response of a provider:
    ///
    /// - 404 if no provider serves the path, or the provider has nothing there; but 401 to clients
    ///   that are not authenticated, so that they do not learn which paths exist.
    /// - 401 if the provider does not accept the client.
    /// - 500, and an error in the log, if the provider throws anything else or what it wrote is not
    ///   a response.
    ///
    /// What the provider has written is dropped then.
    ///
    /// An error without a body, which a provider may write, gets a page for a browser (see
    /// addErrorPage); other clients get it as it is.
    ///
    /// If there is no room in `memory`, nothing is returned for GET and HEAD: the request can be
    /// repeated when `memory` has waited for room. Other methods may have changed something
    /// already, and get 503.
    /// Errors: std::bad_alloc when there is no memory even for an error response.
    [[nodiscard]] std::optional<Response> respond(TSKHTTPRequest& request, const Peer& peer,
                                                  ResponseMemory::Share& memory) const;

  private:
    [[nodiscard]] std::optional<Response> makeResponse(TSKHTTPRequest& request, const Peer& peer,
                                                       const Host::MayTake& mayTake) const;
    [[nodiscard]] bool isHttps(const Peer& peer) const noexcept;
    [[nodiscard]] std::optional<Response> respondToMethod(const TSKHTTPRequest& request) const;

    const TeskProviderPluginManager& manager_;
    const std::optional<Host::PublishedAddress> published_;
};

}  // namespace Http

#pragma once

#include <string>
#include <string_view>

#include "ObjectManager/Host/PublishedAddress.h"
#include "Platform/ProviderFramework/ITeskAuthenticator.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Host {

/// Requests documents from the providers as a client does over HTTP, but in memory: the same call,
/// the same path, the same bytes.
///
/// Thread safety: may be used by several threads at once.
class MemoryClient {
  public:
    /// The response of a provider.
    class Response {
      public:
        /// `bytes` are the header section and the body as the provider wrote them. The address
        /// in a WSDL document becomes one of https if `isHttps`.
        explicit Response(std::string bytes, bool isHttps = false);

        /// The three digits, such as "200"; empty for what is no HTTP response.
        [[nodiscard]] std::string_view status() const noexcept;
        [[nodiscard]] std::string_view body() const noexcept;

      private:
        std::string bytes_;
        std::size_t headerLength_;
    };

    /// `manager` must outlive this. `address` is where documents say that the service is.
    MemoryClient(const TeskProviderPluginManager& manager, PublishedAddress address);

    /// Sends a GET request for a path.
    /// Errors: TeskBaseException when no provider serves the path; whatever the provider throws,
    /// also the TSKHTTPException of a provider that does not accept the client.
    [[nodiscard]] Response get(const TSKString& path) const;

  private:
    const TeskProviderPluginManager& manager_;
    PublishedAddress address_;
};

/// Accepts every request, for the user "local": for requests that the program makes itself with a
/// MemoryClient, where nobody else can call.
///
/// Thread safety: may be used by several threads at once.
class LocalAuthenticator : public ITeskAuthenticator {
  public:
    bool authenticateRequest(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                             TSKGenericHTTPOStream& ostr,
                             TSKSmrPtr<urma::security::ISecurityToken>& token) override;
};

}  // namespace Host

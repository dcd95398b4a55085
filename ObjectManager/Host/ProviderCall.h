#pragma once

#include <string>

#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Host {

/// The client of a request as a provider sees it; see
/// TSKGenericHTTPOStream::getPeerAddressString.
struct Client {
    std::string address;
    std::string port;
};

/// How a call of a provider ended.
struct ProviderCall {
    enum class Outcome {
        kResponse,          ///< the provider wrote a response
        kNotFound,          ///< no provider serves the path, or the provider has nothing there
        kNotAuthenticated,  ///< the provider does not accept the client
    };

    Outcome outcome;
    std::string response;  ///< all that the provider wrote, unchecked; empty but for kResponse
};

/// Calls the provider that the path of `request` belongs to. It sees a request without a body.
///
/// Errors: std::bad_alloc; whatever the provider throws, but for a TSKHTTPException with
/// kAuthenticationFailed. What the provider wrote before is dropped.
///
/// May be called by several threads at once.
[[nodiscard]] ProviderCall callProvider(const TeskProviderPluginManager& manager,
                                        TSKHTTPRequest& request, const Client& client);

}  // namespace Host

#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

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
        kNoRoom,            ///< the response may not take the memory that it needs
    };

    Outcome outcome;
    std::string response;  ///< all that the provider wrote, unchecked; empty but for kResponse
};

/// Whether a response may take `bytes` of memory; called before it does.
using MayTake = std::function<bool(std::size_t bytes)>;

/// Calls the provider that the path of `request` belongs to. It sees a request without a body. The
/// provider gets an exception when it writes more than `mayTake` allows; without it, all is
/// allowed.
///
/// Errors: std::bad_alloc; whatever the provider throws, but for a TSKHTTPException with
/// kAuthenticationFailed. What the provider wrote before is dropped.
///
/// May be called by several threads at once.
[[nodiscard]] ProviderCall callProvider(const TeskProviderPluginManager& manager,
                                        TSKHTTPRequest& request, const Client& client,
                                        const MayTake& mayTake = nullptr);

/// Whether the authenticator of the object manager accepts the client of `request`, as it does when
/// a provider asks it. Errors: whatever the authenticator throws.
///
/// May be called by several threads at once.
[[nodiscard]] bool isAuthenticated(TSKHTTPRequest& request, const Client& client);

/// The length of the header section that the bytes of a response begin with, with its empty line;
/// 0 if its end is not found.
[[nodiscard]] std::size_t headerLength(std::string_view response) noexcept;

}  // namespace Host

#pragma once

#include "Platform/ProviderFramework/ITeskAuthenticator.h"

namespace Security {

/// Accepts every request, for the user "anonymous": for a service whose documents everybody may
/// read. Install it with AuthenticationHelper::setAuthenticator.
///
/// Thread safety: may be used by several threads at once.
class AnonymousAuthenticator final : public ITeskAuthenticator {
  public:
    bool authenticateRequest(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                             TSKGenericHTTPOStream& ostr,
                             TSKSmrPtr<urma::security::ISecurityToken>& token) override;
};

}  // namespace Security

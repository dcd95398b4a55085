#pragma once

#include "Platform/ProviderFramework/ITeskAuthenticator.h"

namespace Host {

/// Lets everybody in, as the user "local": for requests that the program makes itself, in memory,
/// where no stranger can call.
///
/// Thread safety: may be used by several threads at once.
class LocalAuthenticator : public ITeskAuthenticator {
  public:
    bool authenticateRequest(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                             TSKGenericHTTPOStream& ostr,
                             TSKSmrPtr<urma::security::ISecurityToken>& token) override;
};

}  // namespace Host

#pragma once

#include "Platform/ProviderFramework/ITeskAuthenticator.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"

/// Lets providers authenticate their callers by the means of the object manager.
///
/// Thread safety: may be used by several threads at once.
class TESK_PLATFORM_EXPORT AuthenticationHelper {
  public:
    /// Checks the credentials of `request`. May read from `istr` and write a challenge to `ostr`.
    /// Returns whether the caller is authenticated, and fills `token` then. Where no authenticator
    /// is installed, no caller is.
    [[nodiscard]] static bool authenticateRequest(TSKHTTPRequest& request,
                                                  TSKGenericHTTPIStream& istr,
                                                  TSKGenericHTTPOStream& ostr,
                                                  TSKSmrPtr<urma::security::ISecurityToken>& token);

    /// For the object manager: installs `authenticator`, null for none. Returns the one before.
    static TSKSmrPtr<ITeskAuthenticator> setAuthenticator(
        TSKSmrPtr<ITeskAuthenticator> authenticator);
};

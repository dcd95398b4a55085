#pragma once

#include "Platform/Http/TSKGenericHTTPIStream.h"
#include "Platform/Http/TSKGenericHTTPOStream.h"
#include "Platform/Http/TSKHTTPRequest.h"
#include "Platform/ProviderFramework/ISecurityToken.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"

/// How the object manager tells who is calling. Install one with
/// AuthenticationHelper::setAuthenticator.
///
/// Thread safety: implementations must be usable by several threads at once.
class TESK_PLATFORM_EXPORT ITeskAuthenticator {
  public:
    virtual ~ITeskAuthenticator();

    /// As AuthenticationHelper::authenticateRequest.
    virtual bool authenticateRequest(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                                     TSKGenericHTTPOStream& ostr,
                                     TSKSmrPtr<urma::security::ISecurityToken>& token) = 0;
};

#pragma once

#include "Platform/Http/TSKGenericHTTPIStream.h"
#include "Platform/Http/TSKGenericHTTPOStream.h"
#include "Platform/Http/TSKHTTPRequest.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace urma::security {

class ISecurityToken;

}  // namespace urma::security

class AuthenticationHelper {
  public:
    static bool authenticateRequest(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                                    TSKGenericHTTPOStream& ostr,
                                    TSKSmrPtr<urma::security::ISecurityToken>& token);
};

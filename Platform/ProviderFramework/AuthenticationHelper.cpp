#include "Platform/ProviderFramework/AuthenticationHelper.h"

#include "Platform/Internal/TSKInstalled.h"

namespace {

constinit TSKInstalled<ITeskAuthenticator> installedAuthenticator;

}  // namespace

bool AuthenticationHelper::authenticateRequest(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                                               TSKGenericHTTPOStream& ostr,
                                               TSKSmrPtr<urma::security::ISecurityToken>& token) {
    const TSKSmrPtr<ITeskAuthenticator> authenticator = installedAuthenticator.get();
    return authenticator && authenticator->authenticateRequest(request, istr, ostr, token);
}

TSKSmrPtr<ITeskAuthenticator> AuthenticationHelper::setAuthenticator(
    TSKSmrPtr<ITeskAuthenticator> authenticator) {
    return installedAuthenticator.install(std::move(authenticator));
}

#include "ObjectManager/Host/LocalAuthenticator.h"

namespace Host {

namespace {

class LocalToken : public urma::security::ISecurityToken {
  public:
    [[nodiscard]] TSKString getUserName() const override { return "local"; }
};

}  // namespace

bool LocalAuthenticator::authenticateRequest(TSKHTTPRequest& /*request*/,
                                             TSKGenericHTTPIStream& /*istr*/,
                                             TSKGenericHTTPOStream& /*ostr*/,
                                             TSKSmrPtr<urma::security::ISecurityToken>& token) {
    token = TSKSmrPtr<LocalToken>::make();
    return true;
}

}  // namespace Host

#include "ObjectManager/Security/AnonymousAuthenticator.h"

namespace Security {

namespace {

class AnonymousToken final : public urma::security::ISecurityToken {
  public:
    [[nodiscard]] TSKString getUserName() const override { return "anonymous"; }
};

}  // namespace

bool AnonymousAuthenticator::authenticateRequest(TSKHTTPRequest& /*request*/,
                                                 TSKGenericHTTPIStream& /*istr*/,
                                                 TSKGenericHTTPOStream& /*ostr*/,
                                                 TSKSmrPtr<urma::security::ISecurityToken>& token) {
    token = TSKSmrPtr<AnonymousToken>::make();
    return true;
}

}  // namespace Security

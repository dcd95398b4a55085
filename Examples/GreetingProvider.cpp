// A provider plug-in: greets the caller at /greeting.

#include "Platform/Http/TSKHTTPException.h"
#include "Platform/Http/TSKHTTPResponse.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/ProviderFramework/Provider.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace {

class GreetingProvider : public urma::pf::Provider {
  public:
    TSKString getProviderName() override { return "GreetingProvider"; }

    void postStartup() override {
        TeskProviderPluginManager::getTeskProviderPluginManager()->registerURI(getProviderName(),
                                                                               "/greeting");
    }

    void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& /*handled*/,
                            TSKSmrPtr<ITeskTransaction> /*transaction*/) override {
        TSKSmrPtr<urma::security::ISecurityToken> token;
        if (!AuthenticationHelper::authenticateRequest(request, istr, ostr, token))
            throw TSKHTTPException("GreetingProvider", "Authentication failed",
                                   TSKHTTPException::kAuthenticationFailed);
        const TSKString greeting = "Hello " + token->getUserName() + "\n";
        TSKHTTPResponse response(request.getProtocol(), "200", "OK");
        response.setContentLength(greeting.length());
        response.setContentType("text/plain");
        response.writeResponseTo(ostr);
        ostr.write(greeting.data(), greeting.length());
    }
};

}  // namespace

extern "C" __attribute__((visibility("default"))) urma::pf::Provider* getTeskGreetingProvider() {
    static GreetingProvider provider;
    return &provider;
}

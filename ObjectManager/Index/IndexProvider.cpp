#include "ObjectManager/Index/IndexProvider.h"

#include "ObjectManager/Index/IndexPage.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/Http/TSKHTTPResponse.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Index {

namespace {

void requireAuthenticated(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                          TSKGenericHTTPOStream& ostr) {
    TSKSmrPtr<urma::security::ISecurityToken> token;
    if (!AuthenticationHelper::authenticateRequest(request, istr, ostr, token))
        throw TSKHTTPException("IndexProvider::processHTTPRequest", "Authentication failed",
                               TSKHTTPException::kAuthenticationFailed);
}

void writePage(const TSKHTTPRequest& request, const std::string& page,
               TSKGenericHTTPOStream& ostr) {
    TSKHTTPResponse response(request.getProtocol(), "200", "OK");
    response.setHeaderField("Connection", "close", false);
    response.setContentLength(page.size());
    response.setContentType("text/html; charset=utf-8");
    response.setHeaderField("Content-Security-Policy", TSKString(contentSecurityPolicy()), false);
    response.setHeaderField("X-Content-Type-Options", "nosniff", false);
    response.writeResponseTo(ostr);
    ostr.write(page.data(), page.size());
}

}  // namespace

IndexProvider::IndexProvider(const TSKSmrPtr<Repository::ClassRepository>& repository)
    : repository_(repository) {}

void IndexProvider::setRepository(const TSKSmrPtr<Repository::ClassRepository>& repository) {
    const std::lock_guard lock(mutex_);
    repository_ = repository;
    page_.reset();
}

TSKString IndexProvider::getProviderName() {
    return "IndexProvider";
}

void IndexProvider::postStartup() {
    TeskProviderPluginManager::getTeskProviderPluginManager()->registerURI(getProviderName(), "/");
}

void IndexProvider::processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                                       TSKHTTPRequest& request, bool& handled,
                                       TSKSmrPtr<ITeskTransaction> /*transaction*/) {
    // Requests that no other provider is there for come here, too.
    if (request.getUri() != "/") {
        handled = false;
        return;
    }
    requireAuthenticated(request, istr, ostr);
    writePage(request, *page(), ostr);
}

// Made when it is first asked for, so that documents need not wait for it when the service starts.
std::shared_ptr<const std::string> IndexProvider::page() {
    const std::lock_guard lock(mutex_);
    if (!page_)
        page_ = std::make_shared<const std::string>(makeIndexPage(*repository_));
    return page_;
}

}  // namespace Index

#include "ObjectManager/Pages/PageProvider.h"

#include "ObjectManager/Pages/IndexPage.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/Http/TSKHTTPResponse.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Pages {

namespace {

void requireAuthenticated(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                          TSKGenericHTTPOStream& ostr) {
    TSKSmrPtr<urma::security::ISecurityToken> token;
    if (!AuthenticationHelper::authenticateRequest(request, istr, ostr, token))
        throw TSKHTTPException("PageProvider::processHTTPRequest", "Authentication failed",
                               TSKHTTPException::kAuthenticationFailed);
}

void refuseMethod(const TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
    TSKHTTPResponse response(request.getProtocol(), "405", "Method Not Allowed");
    response.setHeaderField("Connection", "close", false);
    response.setHeaderField("Allow", "GET, HEAD", false);
    response.setContentLength(0);
    response.writeResponseTo(ostr);
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

PageProvider::PageProvider(const TSKSmrPtr<Repository::ClassRepository>& repository)
    : repository_(repository) {}

void PageProvider::setRepository(const TSKSmrPtr<Repository::ClassRepository>& repository) {
    const std::lock_guard lock(mutex_);
    repository_ = repository;
    page_.reset();
}

TSKString PageProvider::getProviderName() {
    return "PageProvider";
}

void PageProvider::postStartup() {
    TeskProviderPluginManager::getTeskProviderPluginManager()->registerURI(getProviderName(), "/");
}

void PageProvider::processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                                      TSKHTTPRequest& request, bool& handled,
                                      TSKSmrPtr<ITeskTransaction> /*transaction*/) {
    // Requests that no other provider is there for come here, too.
    if (request.getUri() != "/") {
        handled = false;
        return;
    }
    requireAuthenticated(request, istr, ostr);
    if (request.getMethod() == "GET" || request.getMethod() == "HEAD")
        writePage(request, *page(), ostr);
    else
        refuseMethod(request, ostr);
}

// Made when it is first asked for, so that documents need not wait for it when the service starts.
std::shared_ptr<const std::string> PageProvider::page() {
    const std::lock_guard lock(mutex_);
    if (!page_)
        page_ = std::make_shared<const std::string>(makeIndexPage(*repository_));
    return page_;
}

}  // namespace Pages

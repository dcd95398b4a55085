#include "ObjectManager/Pages/PageProvider.h"

#include <map>
#include <optional>
#include <string_view>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Pages/ClassPage.h"
#include "ObjectManager/Pages/IndexPage.h"
#include "ObjectManager/Pages/PageFrame.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/Http/TSKHTTPResponse.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Pages {

namespace {

constexpr std::string_view kBelow = "/-/";

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

bool isReading(const TSKHTTPRequest& request) {
    return request.getMethod() == "GET" || request.getMethod() == "HEAD";
}

void writePage(const TSKHTTPRequest& request, PageKind kind, const std::string& page,
               TSKGenericHTTPOStream& ostr) {
    TSKHTTPResponse response(request.getProtocol(), "200", "OK");
    response.setHeaderField("Connection", "close", false);
    response.setContentLength(page.size());
    response.setContentType("text/html; charset=utf-8");
    response.setHeaderField("Content-Security-Policy", TSKString(contentSecurityPolicy(kind)),
                            false);
    response.setHeaderField("X-Content-Type-Options", "nosniff", false);
    response.writeResponseTo(ostr);
    ostr.write(page.data(), page.size());
}

}  // namespace

// What is made of one repository, when it is first asked for: so documents need not wait for it
// when the service starts.
//
// Thread safety: may be used by several threads at once.
class PageProvider::Site {
  public:
    explicit Site(TSKSmrPtr<Repository::ClassRepository> repository)
        : repository_(std::move(repository)) {}

    // It lives as long as this.
    [[nodiscard]] const std::string& indexPage() {
        const std::lock_guard lock(mutex_);
        if (!indexPage_)
            indexPage_ = makeIndexPage(*repository_);
        return *indexPage_;
    }

    // Nothing for a class that there is not.
    [[nodiscard]] std::optional<std::string> classPage(std::string_view nameSpace,
                                                       std::string_view className,
                                                       std::string_view host) {
        const Repository::CimNamespace* const found =
            repository_->findNamespace(TSKString(nameSpace));
        if (found == nullptr)
            return std::nullopt;
        const TSKSmrPtr<Repository::CimClass> cimClass = found->findClass(TSKString(className));
        if (!cimClass)
            return std::nullopt;
        return makeClassPage(*cimClass, relationsOf(*found), Layout::kServed, host);
    }

  private:
    [[nodiscard]] const ClassRelations& relationsOf(const Repository::CimNamespace& nameSpace) {
        const std::lock_guard lock(mutex_);
        return relations_.try_emplace(&nameSpace, nameSpace).first->second;
    }

    TSKSmrPtr<Repository::ClassRepository> repository_;
    std::mutex mutex_;
    std::optional<std::string> indexPage_;                                 // guarded by mutex_
    std::map<const Repository::CimNamespace*, ClassRelations> relations_;  // guarded by mutex_
};

PageProvider::PageProvider(const TSKSmrPtr<Repository::ClassRepository>& repository)
    : site_(std::make_shared<Site>(repository)) {}

PageProvider::~PageProvider() = default;

void PageProvider::setRepository(const TSKSmrPtr<Repository::ClassRepository>& repository) {
    auto site = std::make_shared<Site>(repository);
    const std::lock_guard lock(mutex_);
    site_.swap(site);
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
    const std::string_view path = request.getUri();
    const bool isBelow = path.starts_with(kBelow);
    if (path != "/" && !isBelow) {
        handled = false;
        return;
    }
    requireAuthenticated(request, istr, ostr);
    const std::shared_ptr<Site> site = this->site();
    if (!isBelow) {
        if (isReading(request))
            writePage(request, PageKind::kIndex, site->indexPage(), ostr);
        else
            refuseMethod(request, ostr);
        return;
    }
    const std::size_t slash = path.rfind('/');
    const TSKString* const host = request.getHost();
    const std::optional<std::string> page =
        slash < kBelow.size()
            ? std::nullopt
            : site->classPage(
                  path.substr(kBelow.size(), slash - kBelow.size()), path.substr(slash + 1),
                  host == nullptr ? std::string_view("localhost") : std::string_view(*host));
    if (!page)
        handled = false;
    else if (isReading(request))
        writePage(request, PageKind::kClass, *page, ostr);
    else
        refuseMethod(request, ostr);
}

std::shared_ptr<PageProvider::Site> PageProvider::site() {
    const std::lock_guard lock(mutex_);
    return site_;
}

}  // namespace Pages

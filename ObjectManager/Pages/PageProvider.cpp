#include "ObjectManager/Pages/PageProvider.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderCall.h"
#include "ObjectManager/Pages/ClassPage.h"
#include "ObjectManager/Pages/IndexPage.h"
#include "ObjectManager/Pages/NamespaceArchive.h"
#include "ObjectManager/Pages/PageFrame.h"
#include "ObjectManager/Pages/SearchData.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/Http/TSKHTTPResponse.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace Pages {

namespace {

using Repository::CimNamespace;

constexpr std::string_view kBelow = "/-/";
constexpr std::string_view kSearchData = "search.js";
constexpr std::string_view kArchive = ".zip";

[[noreturn]] void failAuthentication() {
    throw TSKHTTPException("PageProvider::processHTTPRequest", "Authentication failed",
                           TSKHTTPException::kAuthenticationFailed);
}

void requireAuthenticated(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                          TSKGenericHTTPOStream& ostr) {
    TSKSmrPtr<urma::security::ISecurityToken> token;
    if (!AuthenticationHelper::authenticateRequest(request, istr, ostr, token))
        failAuthentication();
}

// Where the client reaches the service. HTTP/1.0 has requests without a host. A proxy, and the
// front end itself, tell by X-Forwarded-Proto that the client uses TLS; a client that says so
// itself gets another address in its own page.
std::string serviceOf(const TSKHTTPRequest& request) {
    const TSKString* const scheme = request.getHeaderField("X-Forwarded-Proto");
    const TSKString* const host = request.getHost();
    const bool isHttps = scheme != nullptr && scheme->equalsIgnoreCase("https");
    return (isHttps ? "https://" : "http://") +
           std::string(host == nullptr ? std::string_view("localhost") : std::string_view(*host));
}

// What there is at a path.
struct Content {
    std::shared_ptr<const std::string> body;
    const char* type = "text/html; charset=utf-8";
    // Of a page its policy; of the search data, which a page of another site could load as a script
    // with the credentials of the reader, who may do so.
    const char* guard = "Content-Security-Policy";
    std::string guardValue;
};

Content pageContent(PageKind kind, std::shared_ptr<const std::string> page) {
    return {.body = std::move(page), .guardValue = contentSecurityPolicy(kind)};
}

Content scriptContent(std::shared_ptr<const std::string> script) {
    return {.body = std::move(script),
            .type = "text/javascript; charset=utf-8",
            .guard = "Cross-Origin-Resource-Policy",
            .guardValue = "same-origin"};
}

void write(const TSKHTTPRequest& request, const Content& content, TSKGenericHTTPOStream& ostr) {
    TSKHTTPResponse response(request.getProtocol(), "200", "OK");
    response.setHeaderField("Connection", "close", false);
    response.setContentLength(content.body->size());
    response.setContentType(content.type);
    response.setHeaderField(content.guard, TSKString(content.guardValue), false);
    response.setHeaderField("X-Content-Type-Options", "nosniff", false);
    response.writeResponseTo(ostr);
    ostr.write(content.body->data(), content.body->size());
}

// The document at a path, as the client of `request` gets it.
std::optional<std::string> documentAt(const std::string& path, const TSKHTTPRequest& request,
                                      const Host::Client& client) {
    TSKHTTPRequest inner("GET", TSKString(path), "HTTP/1.1");
    for (const TSKHTTPOperation::HeaderField& field : request.getHeaderFields()) {
        if (field.name.equalsIgnoreCase("Host") || field.name.equalsIgnoreCase("Authorization"))
            inner.setHeaderField(field.name, field.value, true);
    }
    const auto manager = TeskProviderPluginManager::getTeskProviderPluginManager();
    if (!manager)
        return std::nullopt;
    Host::ProviderCall call = Host::callProvider(*manager, inner, client);
    if (call.outcome == Host::ProviderCall::Outcome::kNotAuthenticated)
        failAuthentication();
    const Host::MemoryClient::Response response(std::move(call.response));
    if (response.status() != "200")
        return std::nullopt;
    return std::string(response.body());
}

// As a file is named on any system.
std::string archiveName(std::string_view nameSpace) {
    std::string name(nameSpace);
    for (char& byte : name) {
        if (!Base::isLetter(byte) && !Base::isDigit(byte) && byte != '_')
            byte = '-';
    }
    return name + std::string(kArchive);
}

void writeArchive(const CimNamespace& nameSpace, const TSKHTTPRequest& request,
                  TSKGenericHTTPOStream& ostr) {
    TSKString address;
    TSKString port;
    ostr.getPeerAddressString(address, port);
    const Host::Client client = {.address = address.data(), .port = port.data()};
    TSKHTTPResponse response(request.getProtocol(), "200", "OK");
    response.setHeaderField("Connection", "close", false);
    response.setContentType("application/zip");
    response.setHeaderField(
        "Content-Disposition",
        TSKString("attachment; filename=\"" + archiveName(nameSpace.name()) + "\""), false);
    response.setHeaderField("X-Content-Type-Options", "nosniff", false);
    response.writeResponseTo(ostr);
    writeNamespaceArchive(
        nameSpace, [&](const std::string& path) { return documentAt(path, request, client); },
        [&](std::string_view bytes) { ostr.write(bytes.data(), bytes.size()); });
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

    // Nothing where there is none.
    [[nodiscard]] std::optional<Content> find(std::string_view path, std::string_view service) {
        if (path == "/")
            return pageContent(PageKind::kIndex, indexPage());
        path.remove_prefix(kBelow.size());
        if (path == kSearchData)
            return scriptContent(searchData());
        const std::size_t slash = path.rfind('/');
        if (slash == std::string_view::npos)
            return std::nullopt;
        return findClassPage(path.substr(0, slash), path.substr(slash + 1), service);
    }

    // The namespace whose archive is at a path; null where there is none.
    [[nodiscard]] const CimNamespace* findArchive(std::string_view path) const {
        if (!path.starts_with(kBelow) || !path.ends_with(kArchive))
            return nullptr;
        path.remove_prefix(kBelow.size());
        path.remove_suffix(kArchive.size());
        return repository_->findNamespace(TSKString(path));
    }

  private:
    [[nodiscard]] std::shared_ptr<const std::string> indexPage() {
        const std::lock_guard lock(mutex_);
        if (!indexPage_)
            indexPage_ =
                std::make_shared<const std::string>(makeIndexPage(*repository_, Layout::kServed));
        return indexPage_;
    }

    [[nodiscard]] std::shared_ptr<const std::string> searchData() {
        const std::lock_guard lock(mutex_);
        if (!searchData_)
            searchData_ =
                std::make_shared<const std::string>(makeSearchData(*repository_, Layout::kServed));
        return searchData_;
    }

    [[nodiscard]] std::optional<Content> findClassPage(std::string_view nameSpace,
                                                       std::string_view className,
                                                       std::string_view service) {
        const CimNamespace* const found = repository_->findNamespace(TSKString(nameSpace));
        if (found == nullptr)
            return std::nullopt;
        const TSKSmrPtr<Repository::CimClass> cimClass = found->findClass(TSKString(className));
        if (!cimClass)
            return std::nullopt;
        return pageContent(PageKind::kClass,
                           std::make_shared<const std::string>(makeClassPage(
                               *cimClass, relationsOf(*found), Layout::kServed, service)));
    }

    [[nodiscard]] const ClassRelations& relationsOf(const CimNamespace& nameSpace) {
        const std::lock_guard lock(mutex_);
        return relations_.try_emplace(&nameSpace, nameSpace).first->second;
    }

    TSKSmrPtr<Repository::ClassRepository> repository_;
    std::mutex mutex_;
    // All guarded by mutex_; null until they are asked for.
    std::shared_ptr<const std::string> indexPage_;
    std::shared_ptr<const std::string> searchData_;
    std::map<const CimNamespace*, ClassRelations> relations_;
};

PageProvider::PageProvider(const TSKSmrPtr<Repository::ClassRepository>& repository)
    : site_(makeSite(repository)) {}

PageProvider::~PageProvider() = default;

std::shared_ptr<PageProvider::Site> PageProvider::makeSite(
    const TSKSmrPtr<Repository::ClassRepository>& repository) {
    return std::make_shared<Site>(repository);
}

void PageProvider::setSite(std::shared_ptr<Site> site) noexcept {
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
    if (path != "/" && !path.starts_with(kBelow)) {
        handled = false;
        return;
    }
    requireAuthenticated(request, istr, ostr);
    const std::shared_ptr<Site> site = this->site();
    if (const CimNamespace* const nameSpace = site->findArchive(path)) {
        writeArchive(*nameSpace, request, ostr);
        return;
    }
    const std::optional<Content> content = site->find(path, serviceOf(request));
    if (!content)
        handled = false;
    else
        write(request, *content, ostr);
}

std::shared_ptr<PageProvider::Site> PageProvider::site() {
    const std::lock_guard lock(mutex_);
    return site_;
}

}  // namespace Pages

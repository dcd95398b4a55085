#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "ObjectManager/Repository/ClassRepository.h"
#include "Platform/ProviderFramework/Provider.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Pages {

/// Serves what people look at, to clients that the authenticator of the object manager accepts: the
/// index page at "/", what it searches at "/-/search.js", the page of a class, its names in any
/// case, at "/-/NAMESPACE/CLASS", and all documents of a namespace as an archive at
/// "/-/NAMESPACE.zip". A class that there is not, and all other paths, are left to the front end.
///
/// An archive holds the documents that their provider, which the plug-in manager of the process
/// finds, gives to the client now. It is written while they are made, so that its size is not known
/// before.
///
/// Thread safety: may be used by several threads at once.
class PageProvider final : public urma::pf::Provider {
  public:
    explicit PageProvider(const TSKSmrPtr<Repository::ClassRepository>& repository);
    ~PageProvider() override;

    /// The pages of a repository.
    class Site;

    [[nodiscard]] static std::shared_ptr<Site> makeSite(
        const TSKSmrPtr<Repository::ClassRepository>& repository);

    /// Requests that begin from now on see these pages. Cannot fail: what does is in makeSite().
    void setSite(std::shared_ptr<Site> site) noexcept;

    [[nodiscard]] TSKString getProviderName() override;
    void postStartup() override;

    /// Errors: TSKHTTPException with kAuthenticationFailed; for an archive what the provider of the
    /// documents throws, and TeskBaseException when there is more than an archive can hold.
    void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& handled,
                            TSKSmrPtr<ITeskTransaction> transaction) override;

  private:
    [[nodiscard]] std::shared_ptr<Site> site();

    std::mutex mutex_;
    std::shared_ptr<Site> site_;  // guarded by mutex_; never null
};

}  // namespace Pages

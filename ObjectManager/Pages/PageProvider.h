#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "ObjectManager/Repository/ClassRepository.h"
#include "Platform/ProviderFramework/Provider.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Pages {

/// Serves what people look at, to clients that the authenticator of the object manager accepts: the
/// index page at "/", what it searches at "/-/search.js", and the page of a class, its names in any
/// case, at "/-/NAMESPACE/CLASS". A class that there is not, and all other paths, are left to the
/// front end.
///
/// Thread safety: may be used by several threads at once.
class PageProvider final : public urma::pf::Provider {
  public:
    explicit PageProvider(const TSKSmrPtr<Repository::ClassRepository>& repository);
    ~PageProvider() override;

    /// Requests that begin from now on see these classes.
    void setRepository(const TSKSmrPtr<Repository::ClassRepository>& repository);

    [[nodiscard]] TSKString getProviderName() override;
    void postStartup() override;

    /// Errors: TSKHTTPException with kAuthenticationFailed.
    void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& handled,
                            TSKSmrPtr<ITeskTransaction> transaction) override;

  private:
    class Site;

    [[nodiscard]] std::shared_ptr<Site> site();

    std::mutex mutex_;
    std::shared_ptr<Site> site_;  // guarded by mutex_; never null
};

}  // namespace Pages

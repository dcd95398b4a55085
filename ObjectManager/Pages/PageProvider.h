#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "ObjectManager/Repository/ClassRepository.h"
#include "Platform/ProviderFramework/Provider.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Pages {

/// Serves the page at "/" that lists all classes, to clients that the authenticator of the object
/// manager accepts. Methods other than GET and HEAD get the status 405. All other paths are left to
/// the front end.
///
/// Thread safety: may be used by several threads at once.
class PageProvider final : public urma::pf::Provider {
  public:
    explicit PageProvider(const TSKSmrPtr<Repository::ClassRepository>& repository);

    /// Requests that begin from now on see these classes.
    void setRepository(const TSKSmrPtr<Repository::ClassRepository>& repository);

    [[nodiscard]] TSKString getProviderName() override;
    void postStartup() override;

    /// Errors: TSKHTTPException with kAuthenticationFailed.
    void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& handled,
                            TSKSmrPtr<ITeskTransaction> transaction) override;

  private:
    [[nodiscard]] std::shared_ptr<const std::string> page();

    std::mutex mutex_;
    TSKSmrPtr<Repository::ClassRepository> repository_;  // guarded by mutex_
    std::shared_ptr<const std::string> page_;  // guarded by mutex_; null until it is requested
};

}  // namespace Pages

#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "ObjectManager/Repository/ClassRepository.h"
#include "Platform/ProviderFramework/Provider.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Index {

/// The provider of the page at "/" that lists all classes. It leaves all other paths to the front
/// end, answers GET and HEAD alone (405 for other methods), and needs a client that the
/// authenticator of the object manager accepts.
///
/// Thread safety: may be used by several threads at once.
class IndexProvider final : public urma::pf::Provider {
  public:
    explicit IndexProvider(const TSKSmrPtr<Repository::ClassRepository>& repository);

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
    std::shared_ptr<const std::string> page_;  // guarded by mutex_; null until somebody asks
};

}  // namespace Index

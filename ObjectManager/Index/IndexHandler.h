#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "ObjectManager/Http/RequestHandler.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Index {

/// Answers requests for the path "/" with the index page, to callers whom the authenticator of the
/// object manager accepts. Other methods than GET and HEAD are answered with 405.
///
/// Thread safety: may be used by several threads at once.
class IndexHandler final : public Http::RequestHandler {
  public:
    explicit IndexHandler(const TSKSmrPtr<Repository::ClassRepository>& repository);

    /// Requests that begin from now on see these classes.
    void setRepository(const TSKSmrPtr<Repository::ClassRepository>& repository);

    /// Errors: TSKHTTPException with kAuthenticationFailed.
    [[nodiscard]] bool handle(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                              TSKGenericHTTPOStream& ostr) override;

  private:
    [[nodiscard]] std::shared_ptr<const std::string> page();

    std::mutex mutex_;
    TSKSmrPtr<Repository::ClassRepository> repository_;  // guarded by mutex_
    std::shared_ptr<const std::string> page_;  // guarded by mutex_; null until somebody asks
};

}  // namespace Index

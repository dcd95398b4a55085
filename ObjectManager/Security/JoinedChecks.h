#pragma once

#include <functional>
#include <future>
#include <map>
#include <mutex>

#include "ObjectManager/Security/CredentialKey.h"

namespace Security {

/// Joins threads that want to check the same credential at the same time: one does it, all get its
/// result.
///
/// Thread safety: may be used by several threads at once.
class JoinedChecks {
  public:
    /// The result of `check`, or of the check of the same digest that is under way. What `check`
    /// throws is thrown to everybody who waited for it.
    [[nodiscard]] bool run(const CredentialDigest& digest, const std::function<bool()>& check);

  private:
    std::mutex mutex_;
    std::map<CredentialDigest, std::shared_future<bool>> underWay_;  // guarded by mutex_
};

}  // namespace Security

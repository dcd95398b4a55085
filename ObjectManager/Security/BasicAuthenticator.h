#pragma once

#include <memory>
#include <mutex>

#include "ObjectManager/Security/CredentialChecker.h"
#include "ObjectManager/Security/UserTable.h"
#include "Platform/ProviderFramework/ITeskAuthenticator.h"

namespace Security {

/// Lets those in who send a name and a password by HTTP's scheme Basic (RFC 7617). Install it with
/// AuthenticationHelper::setAuthenticator.
///
/// Thread safety: may be used by several threads at once.
class BasicAuthenticator : public ITeskAuthenticator {
  public:
    /// Errors: TeskBaseException when the system gives no random bytes.
    explicit BasicAuthenticator(UserTable users, CredentialCheckerOptions options = {});

    /// From now on these are the users. What was remembered of the former ones is forgotten;
    /// requests that are just being checked may still be let in as one of them.
    /// Errors: std::bad_alloc; the users stay as they were.
    void setUsers(UserTable users);

    /// Reads the field "Authorization" of `request` alone and writes nothing: whoever calls the
    /// providers answers those who are refused.
    /// Errors: TeskBaseException when there is no memory to compute a hash.
    bool authenticateRequest(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                             TSKGenericHTTPOStream& ostr,
                             TSKSmrPtr<urma::security::ISecurityToken>& token) override;

    /// Whether authenticateRequest() decides on `request` without making anybody wait: where there
    /// is nothing to check, or the credential was right before. A right one whose time is over is
    /// among these, although it costs a hash again: its user shall not queue with strangers, who
    /// can send wrong ones without end. Takes some microseconds.
    /// Errors: TeskBaseException without memory.
    [[nodiscard]] bool decidesQuickly(const TSKHTTPRequest& request) const;

  private:
    [[nodiscard]] std::shared_ptr<CredentialChecker> checker() const;

    mutable std::mutex mutex_;
    std::shared_ptr<CredentialChecker> checker_;  // guarded by mutex_
};

}  // namespace Security

#pragma once

#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "ObjectManager/Security/CredentialChecker.h"
#include "ObjectManager/Security/Options.h"
#include "ObjectManager/Security/UserTable.h"
#include "Platform/ProviderFramework/ITeskAuthenticator.h"

namespace Security {

/// Authenticates requests by HTTP's scheme Basic (RFC 7617). Install it with
/// AuthenticationHelper::setAuthenticator.
///
/// Thread safety: may be used by several threads at once.
class BasicAuthenticator : public ITeskAuthenticator {
  public:
    /// Errors: TeskBaseException when the system has no random bytes.
    explicit BasicAuthenticator(UserTable users, const Options& options = {},
                                CheckerHooks hooks = {});

    /// Replaces the users and forgets the verified passwords. A request that is being checked at
    /// this moment may still be authenticated as one of the former users.
    /// Errors: std::bad_alloc; the users stay as they were.
    void setUsers(UserTable users);

    /// setUsers() in two parts, of which only the first can fail, for callers that replace more
    /// than the users. Errors: std::bad_alloc.
    [[nodiscard]] std::shared_ptr<CredentialChecker> makeChecker(UserTable users) const;
    void setChecker(std::shared_ptr<CredentialChecker> checker) noexcept;

    /// A copy of `request` that carries its credentials, parsed and digested, so that the other
    /// functions do not parse them again. They do so if the header field or the users have changed
    /// since.
    ///
    /// If there is a `certificateUser`, who has proved by a certificate to be that user, the
    /// request is authenticated as that user, whatever credentials it has.
    /// Errors: std::bad_alloc; TeskBaseException without memory.
    [[nodiscard]] std::unique_ptr<TSKHTTPRequest> prepare(
        const TSKHTTPRequest& request, const std::string& certificateUser = {}) const;

    /// Credentials that must be hashed before it is known whether they are right.
    struct UnverifiedLogin {
        std::string user;
        std::string credentials;  ///< a keyed digest: equal for equal credentials
    };

    /// The credentials of a request if authenticateRequest() must hash a password that was never
    /// verified. Nothing where there is nothing to check, and for a user whose password was
    /// verified once, even if it is no longer remembered and costs a hash again: clients that send
    /// wrong passwords must not delay this user. Takes some microseconds.
    /// Errors: TeskBaseException without memory.
    [[nodiscard]] std::optional<UnverifiedLogin> unverifiedLogin(
        const TSKHTTPRequest& request) const;

    /// Hashes the password of a request, if that must be done at all, for all requests with equal
    /// credentials that were prepared and live now. Returns whether it is right.
    /// authenticateRequest() needs no hash for them after that, unless the users are replaced.
    /// Errors: TeskBaseException without memory.
    [[nodiscard]] bool verify(TSKHTTPRequest& request) const;

    /// The name of the user in the credentials of `request`, whether they are right or not, or of
    /// its certificate; empty if it has none.
    /// Errors: std::bad_alloc; TeskBaseException without memory.
    [[nodiscard]] std::string userOf(const TSKHTTPRequest& request) const;

    /// Reads nothing of `request` but its header field "Authorization", and writes nothing: whoever
    /// calls the providers responds to unauthenticated requests.
    /// Errors: TeskBaseException when there is no memory to compute a hash.
    bool authenticateRequest(TSKHTTPRequest& request, TSKGenericHTTPIStream& istr,
                             TSKGenericHTTPOStream& ostr,
                             TSKSmrPtr<urma::security::ISecurityToken>& token) override;

  private:
    struct Login;
    class PreparedRequest;

    [[nodiscard]] static const std::string* certificateUserOf(
        const TSKHTTPRequest& request) noexcept;
    [[nodiscard]] std::shared_ptr<const Login> loginOf(const TSKHTTPRequest& request) const;
    [[nodiscard]] std::shared_ptr<CredentialChecker> checker() const;

    mutable std::mutex mutex_;
    std::shared_ptr<CredentialChecker> checker_;  // guarded by mutex_
};

}  // namespace Security

#include "ObjectManager/Security/BasicAuthenticator.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "ObjectManager/Security/BasicCredentials.h"

namespace Security {

namespace {

class UserToken : public urma::security::ISecurityToken {
  public:
    explicit UserToken(std::string_view userName) : userName_(userName) {}

    [[nodiscard]] TSKString getUserName() const override { return userName_; }

  private:
    const TSKString userName_;
};

// The credentials of a request that has exactly one field for them.
std::optional<BasicCredentials> credentialsOf(const TSKHTTPRequest& request) {
    const auto isAuthorization = [](const TSKHTTPOperation::HeaderField& field) {
        return field.name.equalsIgnoreCase("Authorization");
    };
    const auto& fields = request.getHeaderFields();
    const auto field = std::ranges::find_if(fields, isAuthorization);
    if (field == fields.end() || std::any_of(field + 1, fields.end(), isAuthorization))
        return std::nullopt;
    return parseBasicCredentials(field->value);
}

}  // namespace

BasicAuthenticator::BasicAuthenticator(UserTable users, CredentialCheckerOptions options)
    : checker_(std::make_shared<CredentialChecker>(std::move(users), std::move(options))) {}

void BasicAuthenticator::setUsers(UserTable users) {
    auto checker = std::make_shared<CredentialChecker>(std::move(users), *this->checker());
    const std::lock_guard lock(mutex_);
    checker_.swap(checker);
}

bool BasicAuthenticator::authenticateRequest(TSKHTTPRequest& request,
                                             TSKGenericHTTPIStream& /*istr*/,
                                             TSKGenericHTTPOStream& /*ostr*/,
                                             TSKSmrPtr<urma::security::ISecurityToken>& token) {
    const std::optional<BasicCredentials> credentials = credentialsOf(request);
    if (!credentials || !checker()->check(credentials->user, credentials->password))
        return false;
    token = TSKSmrPtr<UserToken>::make(credentials->user);
    return true;
}

bool BasicAuthenticator::decidesQuickly(const TSKHTTPRequest& request) const {
    const std::optional<BasicCredentials> credentials = credentialsOf(request);
    return !credentials || checker()->decidesQuickly(credentials->user, credentials->password);
}

std::shared_ptr<CredentialChecker> BasicAuthenticator::checker() const {
    const std::lock_guard lock(mutex_);
    return checker_;
}

}  // namespace Security

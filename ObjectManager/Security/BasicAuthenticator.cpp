#include "ObjectManager/Security/BasicAuthenticator.h"

#include <algorithm>
#include <optional>
#include <string_view>
#include <utility>

#include "ObjectManager/Security/Credentials.h"

namespace Security {

namespace {

class UserToken : public urma::security::ISecurityToken {
  public:
    explicit UserToken(std::string_view userName) : userName_(userName) {}

    [[nodiscard]] TSKString getUserName() const override { return userName_; }

  private:
    const TSKString userName_;
};

// The value of the one field "Authorization"; null if there is none or more than one.
const TSKString* authorizationOf(const TSKHTTPRequest& request) {
    const auto isAuthorization = [](const TSKHTTPOperation::HeaderField& field) {
        return field.name.equalsIgnoreCase("Authorization");
    };
    const auto& fields = request.getHeaderFields();
    const auto field = std::ranges::find_if(fields, isAuthorization);
    if (field == fields.end() || std::any_of(field + 1, fields.end(), isAuthorization))
        return nullptr;
    return &field->value;
}

}  // namespace

// What the field "Authorization" of a request means for the users of one moment.
struct BasicAuthenticator::Login {
    TSKString fieldValue;
    Credentials credentials;
    std::shared_ptr<CredentialChecker> checker;
    CredentialChecker::Claim claim;  // of the credentials, made by the checker
};

// Providers hand this on as the TSKHTTPRequest that they got, without knowing more of it.
class BasicAuthenticator::PreparedRequest final : public TSKHTTPRequest {
  public:
    PreparedRequest(const TSKHTTPRequest& request, std::shared_ptr<const Login> login,
                    std::string certificateUser)
        : TSKHTTPRequest(request),
          login_(std::move(login)),
          certificateUser_(std::move(certificateUser)) {}

    [[nodiscard]] const std::shared_ptr<const Login>& login() const noexcept { return login_; }
    [[nodiscard]] const std::string& certificateUser() const noexcept { return certificateUser_; }
    void setLogin(std::shared_ptr<const Login> login) noexcept { login_ = std::move(login); }

  private:
    std::shared_ptr<const Login> login_;  // null without credentials
    const std::string certificateUser_;   // empty without a certificate
};

BasicAuthenticator::BasicAuthenticator(UserTable users, const Options& options, CheckerHooks hooks)
    : checker_(std::make_shared<CredentialChecker>(std::move(users), options, std::move(hooks))) {}

std::shared_ptr<CredentialChecker> BasicAuthenticator::makeChecker(UserTable users) const {
    return std::make_shared<CredentialChecker>(std::move(users), *checker());
}

void BasicAuthenticator::setChecker(std::shared_ptr<CredentialChecker> checker) noexcept {
    const std::lock_guard lock(mutex_);
    checker_.swap(checker);
}

void BasicAuthenticator::setUsers(UserTable users) {
    setChecker(makeChecker(std::move(users)));
}

std::unique_ptr<TSKHTTPRequest> BasicAuthenticator::prepare(
    const TSKHTTPRequest& request, const std::string& certificateUser) const {
    return std::make_unique<PreparedRequest>(request, loginOf(request), certificateUser);
}

std::optional<BasicAuthenticator::UnverifiedLogin> BasicAuthenticator::unverifiedLogin(
    const TSKHTTPRequest& request) const {
    if (certificateUserOf(request) != nullptr)
        return std::nullopt;
    const std::shared_ptr<const Login> login = loginOf(request);
    if (login == nullptr || !login->checker->needsPasswordHash(login->claim))
        return std::nullopt;
    const KeyedDigest& digest = login->claim.digest;
    return UnverifiedLogin{.user = login->credentials.user,
                           .credentials = std::string(digest.begin(), digest.end())};
}

bool BasicAuthenticator::verify(TSKHTTPRequest& request) const {
    const std::shared_ptr<const Login> login = loginOf(request);
    // The result is kept for the authentication, also if it was prepared for former users.
    if (auto* const prepared = dynamic_cast<PreparedRequest*>(&request))
        prepared->setLogin(login);
    return login != nullptr && login->checker->check(login->credentials, login->claim);
}

std::string BasicAuthenticator::userOf(const TSKHTTPRequest& request) const {
    if (const std::string* const user = certificateUserOf(request))
        return *user;
    const std::shared_ptr<const Login> login = loginOf(request);
    return login == nullptr ? std::string() : login->credentials.user;
}

bool BasicAuthenticator::authenticateRequest(TSKHTTPRequest& request,
                                             TSKGenericHTTPIStream& /*istr*/,
                                             TSKGenericHTTPOStream& /*ostr*/,
                                             TSKSmrPtr<urma::security::ISecurityToken>& token) {
    if (const std::string* const user = certificateUserOf(request)) {
        token = TSKSmrPtr<UserToken>::make(*user);
        return true;
    }
    const std::shared_ptr<const Login> login = loginOf(request);
    if (login == nullptr || !login->checker->check(login->credentials, login->claim))
        return false;
    token = TSKSmrPtr<UserToken>::make(login->credentials.user);
    return true;
}

// Null if the client has not proved by a certificate who it is.
const std::string* BasicAuthenticator::certificateUserOf(const TSKHTTPRequest& request) noexcept {
    const auto* const prepared = dynamic_cast<const PreparedRequest*>(&request);
    return prepared == nullptr || prepared->certificateUser().empty()
               ? nullptr
               : &prepared->certificateUser();
}

// Null if the request has no credentials. What was prepared counts only for the header field that
// it was made of, and for the users of now: a password that was revoked since must not be accepted.
std::shared_ptr<const BasicAuthenticator::Login> BasicAuthenticator::loginOf(
    const TSKHTTPRequest& request) const {
    const TSKString* const fieldValue = authorizationOf(request);
    if (fieldValue == nullptr)
        return nullptr;
    const std::shared_ptr<CredentialChecker> checker = this->checker();
    if (const auto* const prepared = dynamic_cast<const PreparedRequest*>(&request)) {
        const std::shared_ptr<const Login>& login = prepared->login();
        if (login != nullptr && login->checker == checker && login->fieldValue == *fieldValue)
            return login;
    }
    std::optional<Credentials> credentials = parseBasicCredentials(*fieldValue);
    if (!credentials)
        return nullptr;
    const CredentialChecker::Claim claim = checker->claim(*credentials);
    return std::make_shared<const Login>(Login{.fieldValue = *fieldValue,
                                               .credentials = *std::move(credentials),
                                               .checker = checker,
                                               .claim = claim});
}

std::shared_ptr<CredentialChecker> BasicAuthenticator::checker() const {
    const std::lock_guard lock(mutex_);
    return checker_;
}

}  // namespace Security

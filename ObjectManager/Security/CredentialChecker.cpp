#include "ObjectManager/Security/CredentialChecker.h"

#include <cstdint>
#include <cstring>
#include <utility>

namespace Security {

namespace {

// Waits for a place and holds it.
class Place {
  public:
    explicit Place(std::counting_semaphore<>& places) : places_(places) { places_.acquire(); }
    Place(const Place&) = delete;
    Place& operator=(const Place&) = delete;
    ~Place() { places_.release(); }

  private:
    std::counting_semaphore<>& places_;
};

}  // namespace

CredentialChecker::CredentialChecker(UserTable users, const Options& options, CheckerHooks hooks)
    : users_(std::move(users)),
      options_(options),
      hooks_(std::move(hooks)),
      key_(std::make_shared<const DigestKey>()),
      cache_(options_.credentialLifetime, options_.maxRememberedCredentials, hooks_.clock),
      freeHashes_(options_.maxConcurrentHashes) {}

CredentialChecker::CredentialChecker(UserTable users, const CredentialChecker& former)
    : users_(std::move(users)),
      options_(former.options_),
      hooks_(former.hooks_),
      key_(former.key_),
      cache_(former.cache_),
      freeHashes_(options_.maxConcurrentHashes) {}

CredentialChecker::Claim CredentialChecker::claim(const Credentials& credentials) const {
    // Without users there is no user name to hide.
    if (users_.users().empty())
        return {};
    const User& standIn = standInFor(credentials.user);
    const User* const known = users_.find(credentials.user);
    const std::string& hash = (known == nullptr ? standIn : *known).passwordHash;
    return {.passwordHash = &hash,
            .isOfUser = known != nullptr,
            .digest = key_->digest({credentials.user, credentials.password.view(), hash})};
}

bool CredentialChecker::check(const Credentials& credentials, const Claim& claim) {
    if (claim.passwordHash == nullptr)
        return false;
    if (cache_.contains(claim.digest))
        return true;
    return checks_.run(claim.digest, [&] {
        // It may have been verified since.
        if (cache_.contains(claim.digest))
            return true;
        const bool isRight = verify(credentials.password, *claim.passwordHash) && claim.isOfUser;
        if (isRight)
            cache_.remember(claim.digest);
        return isRight;
    });
}

bool CredentialChecker::check(const Credentials& credentials) {
    return check(credentials, claim(credentials));
}

bool CredentialChecker::needsPasswordHash(const Claim& claim) const {
    return claim.passwordHash != nullptr && !cache_.wasVerified(claim.digest);
}

// The user whose hash is tried for an unknown one.
const User& CredentialChecker::standInFor(std::string_view name) const {
    const KeyedDigest digest = key_->digest({name});
    std::uint64_t number = 0;
    std::memcpy(&number, digest.data(), sizeof number);
    return users_.users()[number % users_.users().size()];
}

bool CredentialChecker::verify(const SecretText& password, const std::string& passwordHash) {
    const Place place(freeHashes_);
    return hooks_.verify(password, passwordHash);
}

}  // namespace Security

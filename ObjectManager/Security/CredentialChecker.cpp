#include "ObjectManager/Security/CredentialChecker.h"

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

CredentialChecker::CredentialChecker(UserTable users, CredentialCheckerOptions options)
    : users_(std::move(users)),
      options_(std::move(options)),
      key_(std::make_shared<const CredentialKey>()),
      remembered_(options_.credentialLifetime, options_.mostRemembered, options_.clock),
      freeHashes_(options_.mostHashesAtOnce) {}

CredentialChecker::CredentialChecker(UserTable users, const CredentialChecker& former)
    : users_(std::move(users)),
      options_(former.options_),
      key_(former.key_),
      remembered_(former.remembered_),
      freeHashes_(options_.mostHashesAtOnce) {}

bool CredentialChecker::check(std::string_view user, const SecretText& password) {
    // Where nobody has a password there is nobody to keep secret.
    if (users_.users().empty())
        return false;
    const Claim claim = claimOf(user, password);
    if (remembered_.contains(claim.digest))
        return true;
    return checks_.run(claim.digest, [&] {
        // It may have been verified since.
        if (remembered_.contains(claim.digest))
            return true;
        const bool isRight = verify(password, claim.passwordHash) && claim.isOfUser;
        if (isRight)
            remembered_.remember(claim.digest);
        return isRight;
    });
}

bool CredentialChecker::decidesQuickly(std::string_view user, const SecretText& password) const {
    return users_.users().empty() || remembered_.hasHeld(claimOf(user, password).digest);
}

CredentialChecker::Claim CredentialChecker::claimOf(std::string_view user,
                                                    const SecretText& password) const {
    const std::vector<User>& all = users_.users();
    const User& stranger = all[key_->choose(user, all.size())];
    const User* const known = users_.find(user);
    const std::string& hash = (known == nullptr ? stranger : *known).passwordHash;
    return {.passwordHash = hash,
            .isOfUser = known != nullptr,
            .digest = key_->digest(user, password.view(), hash)};
}

bool CredentialChecker::verify(const SecretText& password, const std::string& passwordHash) {
    const Place place(freeHashes_);
    return options_.verify(password, passwordHash);
}

}  // namespace Security

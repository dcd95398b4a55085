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
      remembered_(options_.credentialLifetime, options_.mostRemembered, options_.clock),
      freeHashes_(options_.mostHashesAtOnce) {}

bool CredentialChecker::check(std::string_view user, const SecretText& password) {
    // Where nobody has a password there is nobody to keep secret.
    const std::vector<User>& all = users_.users();
    if (all.empty())
        return false;
    const User& stranger = all[key_.choose(user, all.size())];
    const User* const known = users_.find(user);
    const std::string& hash = (known == nullptr ? stranger : *known).passwordHash;

    const CredentialDigest digest = key_.digest(user, password.view(), hash);
    if (remembered_.contains(digest))
        return true;
    return checks_.run(digest, [&] {
        // It may have been verified since.
        if (remembered_.contains(digest))
            return true;
        const bool isRight = verify(password, hash) && known != nullptr;
        if (isRight)
            remembered_.remember(digest);
        return isRight;
    });
}

bool CredentialChecker::verify(const SecretText& password, const std::string& passwordHash) {
    const Place place(freeHashes_);
    return options_.verify(password, passwordHash);
}

}  // namespace Security

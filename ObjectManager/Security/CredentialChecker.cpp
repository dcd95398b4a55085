#include "ObjectManager/Security/CredentialChecker.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <utility>

namespace Security {

// The one hash of the claims that are equal and live at the same time.
class CredentialChecker::Check {
  public:
    Check(const CredentialChecker& checker, const KeyedDigest& digest)
        : checker_(checker), digest_(digest) {}
    Check(const Check&) = delete;
    Check& operator=(const Check&) = delete;
    ~Check() {
        const std::lock_guard lock(checker_.checksMutex_);
        const auto entry = checker_.checks_.find(digest_);
        // There may be a new one already.
        if (entry != checker_.checks_.end() && entry->second.expired())
            checker_.checks_.erase(entry);
    }

    [[nodiscard]] bool isDone() const noexcept { return state_ != State::kUnknown; }

    // The result; of several callers at once, one does the work. What that throws is thrown to this
    // caller only; the next one tries again.
    template <typename Work>
    [[nodiscard]] bool result(const Work& work) {
        const std::lock_guard lock(mutex_);
        if (!isDone())
            state_ = work() ? State::kRight : State::kWrong;
        return state_ == State::kRight;
    }

  private:
    enum class State : char { kUnknown, kWrong, kRight };

    const CredentialChecker& checker_;
    const KeyedDigest digest_;
    std::mutex mutex_;  // held during the work
    std::atomic<State> state_ = State::kUnknown;
};

CredentialChecker::CredentialChecker(UserTable users, const Options& options, CheckerHooks hooks)
    : users_(std::move(users)),
      options_(options),
      hooks_(std::move(hooks)),
      key_(std::make_shared<const DigestKey>()),
      cache_(options_.credentialLifetime, options_.maxRememberedCredentials, hooks_.clock) {}

CredentialChecker::CredentialChecker(UserTable users, const CredentialChecker& former)
    : users_(std::move(users)),
      options_(former.options_),
      hooks_(former.hooks_),
      key_(former.key_),
      cache_(former.cache_) {}

CredentialChecker::Claim CredentialChecker::claim(const Credentials& credentials) const {
    // Without users there is no user name to hide.
    if (users_.users().empty())
        return {};
    const User& standIn = standInFor(credentials.user);
    const User* const known = users_.find(credentials.user);
    const std::string& hash = (known == nullptr ? standIn : *known).passwordHash;
    Claim claim = {.passwordHash = &hash,
                   .isOfUser = known != nullptr,
                   .digest = key_->digest({credentials.user, credentials.password.view(), hash})};
    if (!cache_.contains(claim.digest))
        claim.check = checkOf(claim.digest);
    return claim;
}

bool CredentialChecker::check(const Credentials& credentials, const Claim& claim) {
    if (claim.passwordHash == nullptr)
        return false;
    if (cache_.contains(claim.digest))
        return true;
    const std::shared_ptr<Check> check =
        claim.check != nullptr ? claim.check : checkOf(claim.digest);
    return check->result([&] {
        const bool isRight =
            hooks_.verify(credentials.password, *claim.passwordHash) && claim.isOfUser;
        if (isRight)
            cache_.remember(claim.digest);
        return isRight;
    });
}

bool CredentialChecker::check(const Credentials& credentials) {
    return check(credentials, claim(credentials));
}

bool CredentialChecker::needsPasswordHash(const Claim& claim) const {
    return claim.passwordHash != nullptr && !cache_.wasVerified(claim.digest) &&
           (claim.check == nullptr || !claim.check->isDone());
}

// The user whose hash is tried for an unknown one.
const User& CredentialChecker::standInFor(std::string_view name) const {
    const KeyedDigest digest = key_->digest({name});
    std::uint64_t number = 0;
    std::memcpy(&number, digest.data(), sizeof number);
    return users_.users()[number % users_.users().size()];
}

std::shared_ptr<CredentialChecker::Check> CredentialChecker::checkOf(
    const KeyedDigest& digest) const {
    auto made = std::make_shared<Check>(*this, digest);  // destroyed without the lock
    const std::lock_guard lock(checksMutex_);
    std::weak_ptr<Check>& entry = checks_[digest];
    if (std::shared_ptr<Check> running = entry.lock())
        return running;
    entry = made;
    return made;
}

}  // namespace Security

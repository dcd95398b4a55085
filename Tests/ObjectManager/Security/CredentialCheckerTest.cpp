#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <latch>
#include <mutex>
#include <new>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "ObjectManager/Security/CredentialChecker.h"
#include "Tests/ObjectManager/Security/Hashes.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/Threads.h"

namespace {

using namespace std::chrono_literals;
using Security::CheckerHooks;
using Security::CredentialChecker;
using Security::Credentials;
using Security::Options;
using Security::SecretText;
using Security::User;
using Security::UserTable;

// In place of hashes: the hash of the password P is "hash of P".
class CredentialCheckerTest : public testing::Test {
  protected:
    CheckerHooks hooks() {
        CheckerHooks result;
        result.verify = [this](const SecretText& password, const std::string& hash) {
            const std::lock_guard lock(mutex_);
            verified_.push_back(std::string(password.view()) + " against " + hash);
            return hash == "hash of " + std::string(password.view());
        };
        result.clock = [this] { return now_; };
        return result;
    }

    static UserTable users() { return UserTable({{"alice", "hash of a"}, {"bob", "hash of b"}}); }

    static bool check(CredentialChecker& checker, std::string_view user,
                      std::string_view password) {
        return checker.check(credentials(user, password));
    }

    static bool needsPasswordHash(const CredentialChecker& checker, std::string_view user,
                                  std::string_view password) {
        return checker.needsPasswordHash(checker.claim(credentials(user, password)));
    }

    static Credentials credentials(std::string_view user, std::string_view password) {
        return {.user = std::string(user), .password = SecretText(password)};
    }

    // What was hashed since this was asked last.
    std::vector<std::string> takeVerified() {
        const std::lock_guard lock(mutex_);
        return std::exchange(verified_, {});
    }

    std::chrono::steady_clock::time_point now_;
    std::mutex mutex_;
    std::vector<std::string> verified_;  // guarded by mutex_
};

using Texts = std::vector<std::string>;

TEST_F(CredentialCheckerTest, AcceptsTheRightPasswordOfTheRightUser) {
    CredentialChecker checker(users(), {}, hooks());
    EXPECT_TRUE(check(checker, "alice", "a"));
    EXPECT_TRUE(check(checker, "bob", "b"));
    EXPECT_FALSE(check(checker, "alice", "b"));
    EXPECT_FALSE(check(checker, "bob", "a"));
    EXPECT_EQ(takeVerified(), (Texts{"a against hash of a", "b against hash of b",
                                     "b against hash of a", "a against hash of b"}));
}

TEST_F(CredentialCheckerTest, HashesForReal) {
    CredentialChecker checker(UserTable({User{"alice", kSha512OfSecret}}));
    EXPECT_TRUE(check(checker, "alice", "secret"));
    EXPECT_FALSE(check(checker, "alice", "secreT"));
    EXPECT_FALSE(check(checker, "Alice", "secret"));
}

TEST_F(CredentialCheckerTest, AnUnknownUserCostsOneHashLikeAWrongPassword) {
    CredentialChecker checker(UserTable({User{"alice", "hash of a"}}), {}, hooks());
    EXPECT_FALSE(check(checker, "alice", "wrong"));
    EXPECT_EQ(takeVerified(), Texts{"wrong against hash of a"});
    EXPECT_FALSE(check(checker, "nobody", "wrong"));
    EXPECT_EQ(takeVerified(), Texts{"wrong against hash of a"});
}

TEST_F(CredentialCheckerTest, AnUnknownUserIsRefusedEvenWithThePasswordOfAnother) {
    CredentialChecker checker(UserTable({User{"alice", "hash of a"}}), {}, hooks());
    EXPECT_FALSE(check(checker, "nobody", "a"));
    EXPECT_FALSE(check(checker, "nobody", "a"));
    EXPECT_FALSE(check(checker, "", "a"));
    EXPECT_EQ(takeVerified().size(), 3U);
}

TEST_F(CredentialCheckerTest, AnUnknownUserAlwaysCostsTheHashOfTheSameUser) {
    CredentialChecker checker(users(), {}, hooks());
    std::set<std::string> tried;
    for (int number = 0; number < 100; ++number) {
        const std::string name = "nobody" + std::to_string(number);
        EXPECT_FALSE(check(checker, name, "x"));
        const Texts first = takeVerified();
        EXPECT_FALSE(check(checker, name, "x"));
        EXPECT_EQ(takeVerified(), first);
        tried.insert(first.begin(), first.end());
    }
    EXPECT_EQ(tried, (std::set<std::string>{"x against hash of a", "x against hash of b"}));
}

TEST_F(CredentialCheckerTest, WhereThereAreNoUsersNothingIsHashed) {
    CredentialChecker checker(UserTable(), {}, hooks());
    EXPECT_FALSE(check(checker, "alice", "a"));
    EXPECT_EQ(takeVerified(), Texts{});
}

TEST_F(CredentialCheckerTest, ARightPasswordIsHashedOnceInItsLifetime) {
    CredentialChecker checker(users(), {}, hooks());
    EXPECT_TRUE(check(checker, "alice", "a"));
    now_ += 5min - 1ns;
    EXPECT_TRUE(check(checker, "alice", "a"));
    EXPECT_EQ(takeVerified(), Texts{"a against hash of a"});
    now_ += 1ns;
    EXPECT_TRUE(check(checker, "alice", "a"));
    EXPECT_EQ(takeVerified(), Texts{"a against hash of a"});
}

TEST_F(CredentialCheckerTest, NeedsAPasswordHashForWhatWasNeverVerified) {
    CredentialChecker checker(users(), {}, hooks());
    EXPECT_TRUE(needsPasswordHash(checker, "alice", "a"));
    EXPECT_TRUE(check(checker, "alice", "a"));
    EXPECT_FALSE(check(checker, "alice", "x"));
    EXPECT_FALSE(check(checker, "nobody", "a"));
    takeVerified();
    now_ += 1h;
    EXPECT_FALSE(needsPasswordHash(checker, "alice", "a"));
    EXPECT_TRUE(needsPasswordHash(checker, "alice", "x"));
    EXPECT_TRUE(needsPasswordHash(checker, "bob", "b"));
    EXPECT_TRUE(needsPasswordHash(checker, "nobody", "a"));
    EXPECT_EQ(takeVerified(), Texts{});
}

TEST_F(CredentialCheckerTest, WhereThereAreNoUsersItNeedsNoPasswordHash) {
    EXPECT_FALSE(needsPasswordHash(CredentialChecker(UserTable()), "alice", "a"));
}

TEST_F(CredentialCheckerTest, ASuccessorVerifiesAgainAndKnowsWhatWasRight) {
    CredentialChecker former(UserTable({{"alice", "hash of a"}, {"bob", "hash of b"}}), {},
                             hooks());
    EXPECT_TRUE(check(former, "alice", "a"));
    EXPECT_TRUE(check(former, "bob", "b"));
    takeVerified();
    CredentialChecker checker(UserTable({{"alice", "hash of a"}, {"bob", "hash of c"}}), former);
    EXPECT_FALSE(needsPasswordHash(checker, "alice", "a"));
    EXPECT_TRUE(needsPasswordHash(checker, "bob", "b"));
    EXPECT_TRUE(check(checker, "alice", "a"));
    EXPECT_FALSE(check(checker, "bob", "b"));
    EXPECT_EQ(takeVerified(), (Texts{"a against hash of a", "b against hash of c"}));
    CredentialChecker withoutBob(UserTable({User{"alice", "hash of a"}}), former);
    EXPECT_TRUE(needsPasswordHash(withoutBob, "bob", "b"));
    EXPECT_FALSE(check(withoutBob, "bob", "b"));
}

TEST_F(CredentialCheckerTest, AClaimIsCheckedAsTheCredentialsThatItWasMadeOf) {
    CredentialChecker checker(users(), {}, hooks());
    const Credentials alice = credentials("alice", "a");
    const CredentialChecker::Claim claim = checker.claim(alice);
    EXPECT_TRUE(checker.needsPasswordHash(claim));
    EXPECT_TRUE(checker.check(alice, claim));
    EXPECT_FALSE(checker.needsPasswordHash(claim));
    const Credentials wrong = credentials("alice", "b");
    EXPECT_FALSE(checker.check(wrong, checker.claim(wrong)));
}

TEST_F(CredentialCheckerTest, AWrongPasswordIsHashedEachTime) {
    CredentialChecker checker(users(), {}, hooks());
    EXPECT_TRUE(check(checker, "alice", "a"));
    takeVerified();
    EXPECT_FALSE(check(checker, "alice", "x"));
    EXPECT_FALSE(check(checker, "alice", "x"));
    EXPECT_EQ(takeVerified(), (Texts{"x against hash of a", "x against hash of a"}));
}

TEST_F(CredentialCheckerTest, RemembersNoMoreThanItMay) {
    CredentialChecker checker(users(), {.maxRememberedCredentials = 1}, hooks());
    EXPECT_TRUE(check(checker, "alice", "a"));
    EXPECT_TRUE(check(checker, "bob", "b"));
    EXPECT_TRUE(check(checker, "bob", "b"));
    EXPECT_EQ(takeVerified().size(), 2U);
    EXPECT_TRUE(check(checker, "alice", "a"));
    EXPECT_EQ(takeVerified().size(), 1U);
}

TEST_F(CredentialCheckerTest, ManyThreadsWithOneNewCredentialPayForOneHash) {
    CredentialChecker checker(users(), {}, hooks());
    std::atomic<int> accepted = 0;
    runOnThreads(8, [&](int) { accepted += check(checker, "alice", "a") ? 1 : 0; });
    EXPECT_EQ(accepted, 8);
    EXPECT_EQ(takeVerified(), Texts{"a against hash of a"});
}

TEST_F(CredentialCheckerTest, EqualClaimsThatLiveAtTheSameTimeShareOneHash) {
    CredentialChecker checker(users(), {}, hooks());
    for (const char* const password : {"a", "wrong"}) {
        const Credentials alice = credentials("alice", password);
        const CredentialChecker::Claim first = checker.claim(alice);
        const CredentialChecker::Claim second = checker.claim(alice);
        EXPECT_TRUE(checker.needsPasswordHash(second));
        EXPECT_EQ(checker.check(alice, first), checker.check(alice, second));
        EXPECT_FALSE(checker.needsPasswordHash(second));
        EXPECT_EQ(takeVerified(), Texts{std::string(password) + " against hash of a"});
    }
}

TEST_F(CredentialCheckerTest, WhoeverWasVerifiedBeforeDoesNotWaitForTheHashesOfOthers) {
    CheckerHooks waiting = hooks();
    std::promise<void> goOn;
    const std::shared_future<void> goesOn = goOn.get_future().share();
    std::latch begun(8);
    waiting.verify = [&](const SecretText& password, const std::string&) {
        if (password.view() == "a")
            return true;
        begun.count_down();
        goesOn.wait();
        return false;
    };
    CredentialChecker checker(users(), {}, waiting);
    EXPECT_TRUE(check(checker, "alice", "a"));
    now_ += 1h;
    std::vector<std::jthread> strangers;
    for (int index = 0; index < 8; ++index)
        strangers.emplace_back([&checker, index] {
            EXPECT_FALSE(check(checker, "mallory", "x" + std::to_string(index)));
        });
    begun.wait();
    EXPECT_TRUE(check(checker, "alice", "a"));
    goOn.set_value();
}

TEST_F(CredentialCheckerTest, AFailedHashIsReportedAndTriedAgain) {
    CheckerHooks failing = hooks();
    int calls = 0;
    failing.verify = [&](const SecretText&, const std::string&) -> bool {
        if (++calls == 1)
            throw std::bad_alloc();
        return true;
    };
    CredentialChecker checker(users(), {}, failing);
    const Credentials alice = credentials("alice", "a");
    const CredentialChecker::Claim claim = checker.claim(alice);
    EXPECT_THROW(static_cast<void>(checker.check(alice, claim)), std::bad_alloc);
    EXPECT_TRUE(checker.needsPasswordHash(claim));
    EXPECT_TRUE(checker.check(alice, claim));
}

TEST_F(CredentialCheckerTest, EveryFailedAllocationIsReportedAndForgotten) {
    CredentialChecker checker(UserTable({User{"alice", kSha512OfSecret}}));
    const Credentials alice = credentials("alice", "secret");
    const std::size_t failures = AllocationProbe::failEachAllocation(
        [&] { EXPECT_TRUE(checker.check(alice)); },
        [&] { EXPECT_FALSE(check(checker, "alice", "wrong")); });
    EXPECT_GT(failures, 2U);
    EXPECT_TRUE(checker.check(alice));
}

}  // namespace

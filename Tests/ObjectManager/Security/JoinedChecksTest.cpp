#include <atomic>
#include <gtest/gtest.h>
#include <latch>
#include <stdexcept>
#include <string>
#include <thread>

#include "ObjectManager/Security/JoinedChecks.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/Threads.h"

namespace {

using Security::CredentialDigest;
using Security::JoinedChecks;

constexpr CredentialDigest kFirst = {1};
constexpr CredentialDigest kSecond = {2};

TEST(JoinedChecks, GivesTheResultOfTheCheck) {
    JoinedChecks checks;
    EXPECT_TRUE(checks.run(kFirst, [] { return true; }));
    EXPECT_FALSE(checks.run(kFirst, [] { return false; }));
}

TEST(JoinedChecks, OneThreadChecksForAllThatCameMeanwhile) {
    constexpr int kThreads = 8;
    JoinedChecks checks;
    std::atomic<int> arrived = 0;
    std::atomic<int> checked = 0;
    std::atomic<int> accepted = 0;
    runOnThreads(kThreads, [&](int) {
        ++arrived;
        const bool result = checks.run(kFirst, [&] {
            ++checked;
            // Long enough for all the others to come; they cannot be seen to wait.
            while (arrived < kThreads)
                std::this_thread::yield();
            for (int turn = 0; turn < 1000; ++turn)
                std::this_thread::yield();
            return true;
        });
        accepted += result ? 1 : 0;
    });
    EXPECT_EQ(accepted, kThreads);
    EXPECT_GE(checked, 1);
    EXPECT_LT(checked, kThreads);
}

TEST(JoinedChecks, ChecksOfDifferentCredentialsRunAtOnce) {
    JoinedChecks checks;
    std::latch bothRun(2);
    runOnThreads(2, [&](int index) {
        EXPECT_TRUE(checks.run(index == 0 ? kFirst : kSecond, [&] {
            bothRun.arrive_and_wait();
            return true;
        }));
    });
}

TEST(JoinedChecks, AFailureIsThrownAndForgotten) {
    JoinedChecks checks;
    const auto fail = []() -> bool { throw std::runtime_error("broken"); };
    std::string message;
    try {
        static_cast<void>(checks.run(kFirst, fail));
    } catch (const std::runtime_error& error) {
        message = error.what();
    }
    EXPECT_EQ(message, "broken");
    EXPECT_TRUE(checks.run(kFirst, [] { return true; }));
}

TEST(JoinedChecks, AFailureReachesEverybodyWhoWaited) {
    constexpr int kThreads = 4;
    JoinedChecks checks;
    std::atomic<int> arrived = 0;
    std::atomic<int> failures = 0;
    runOnThreads(kThreads, [&](int) {
        ++arrived;
        try {
            static_cast<void>(checks.run(kFirst, [&]() -> bool {
                while (arrived < kThreads)
                    std::this_thread::yield();
                throw std::runtime_error("broken");
            }));
        } catch (const std::runtime_error&) {
            ++failures;
        }
    });
    EXPECT_EQ(failures, kThreads);
}

TEST(JoinedChecks, AFailedAllocationLeavesNoCheckBehind) {
    JoinedChecks checks;
    const std::size_t failures = AllocationProbe::failEachAllocation(
        [&] { EXPECT_TRUE(checks.run(kFirst, [] { return true; })); },
        [&] { EXPECT_FALSE(checks.run(kFirst, [] { return false; })); });
    EXPECT_GT(failures, 0U);
}

}  // namespace

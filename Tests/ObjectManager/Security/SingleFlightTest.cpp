#include <array>
#include <atomic>
#include <cstddef>
#include <gtest/gtest.h>
#include <latch>
#include <stdexcept>
#include <string>
#include <thread>

#include "ObjectManager/Security/SingleFlight.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/Threads.h"

namespace {

using Security::SingleFlight;
using Checks = SingleFlight<int, bool>;

// Equal to every other one; records which have been compared, which tells that a call was made
// while another one ran.
class Caller {
  public:
    explicit Caller(std::atomic<bool>& wasCompared) : wasCompared_(&wasCompared) {}

    friend bool operator<(const Caller& left, const Caller& right) {
        *left.wasCompared_ = true;
        *right.wasCompared_ = true;
        return false;
    }

  private:
    std::atomic<bool>* wasCompared_;
};

// Threads that all make the same call at once.
class SingleFlightTest : public testing::Test {
  protected:
    static constexpr int kThreads = 8;

    Caller caller(int index) { return Caller(wereCompared_[static_cast<std::size_t>(index)]); }

    // Returns when all threads have called.
    void waitForAll() const {
        for (const std::atomic<bool>& wasCompared : wereCompared_) {
            while (!wasCompared)
                std::this_thread::yield();
        }
    }

    SingleFlight<Caller, bool> flight_;
    std::array<std::atomic<bool>, kThreads> wereCompared_ = {};
};

TEST_F(SingleFlightTest, OneCallerWorksForAllThatCallMeanwhile) {
    std::atomic<int> worked = 0;
    std::atomic<int> accepted = 0;
    runOnThreads(kThreads, [&](int index) {
        accepted += flight_.run(caller(index), [&] {
            ++worked;
            waitForAll();
            return true;
        });
    });
    EXPECT_EQ(accepted, kThreads);
    EXPECT_EQ(worked, 1);
}

TEST_F(SingleFlightTest, AFailureReachesAllThatWaited) {
    std::atomic<int> failures = 0;
    runOnThreads(kThreads, [&](int index) {
        try {
            static_cast<void>(flight_.run(caller(index), [&]() -> bool {
                waitForAll();
                throw std::runtime_error("broken");
            }));
        } catch (const std::runtime_error&) {
            ++failures;
        }
    });
    EXPECT_EQ(failures, kThreads);
}

TEST(SingleFlight, GivesTheResultOfTheWork) {
    Checks checks;
    EXPECT_TRUE(checks.run(1, [] { return true; }));
    EXPECT_FALSE(checks.run(1, [] { return false; }));
}

TEST(SingleFlight, WorkForDifferentKeysRunsAtOnce) {
    Checks checks;
    std::latch bothRun(2);
    runOnThreads(2, [&](int index) {
        EXPECT_TRUE(checks.run(index, [&] {
            bothRun.arrive_and_wait();
            return true;
        }));
    });
}

TEST(SingleFlight, AFailureIsThrownAndForgotten) {
    Checks checks;
    std::string message;
    try {
        static_cast<void>(checks.run(1, []() -> bool { throw std::runtime_error("broken"); }));
    } catch (const std::runtime_error& error) {
        message = error.what();
    }
    EXPECT_EQ(message, "broken");
    EXPECT_TRUE(checks.run(1, [] { return true; }));
}

TEST(SingleFlight, AFailedAllocationLeavesNoCallBehind) {
    Checks checks;
    const std::size_t failures = AllocationProbe::failEachAllocation(
        [&] { EXPECT_TRUE(checks.run(1, [] { return true; })); },
        [&] { EXPECT_FALSE(checks.run(1, [] { return false; })); });
    EXPECT_GT(failures, 0U);
}

}  // namespace

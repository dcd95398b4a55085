#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Commands/Serve/RefreshSchedule.h"

namespace {

using Commands::RefreshSchedule;
using std::chrono::milliseconds;

class RefreshScheduleTest : public testing::Test {
  protected:
    // The seconds from now to the next time; empty when there is none within a day.
    std::string wait() {
        for (milliseconds time{0}; time < std::chrono::hours(24); time += milliseconds(500)) {
            if (schedule_.isDue(now_ + time))
                return std::to_string(time.count() / 1000) + "." +
                       std::to_string(time.count() % 1000 / 100);
        }
        return "";
    }

    const RefreshSchedule::Clock::time_point now_ = RefreshSchedule::Clock::now();
    double random_ = 1;
    RefreshSchedule schedule_{[this] { return random_; }};
};

TEST_F(RefreshScheduleTest, BeginsWithNothingToDo) {
    EXPECT_EQ(wait(), "");
}

TEST_F(RefreshScheduleTest, IsDueAfterTheInterval) {
    schedule_.succeed(now_, milliseconds(90'000));
    EXPECT_EQ(wait(), "90.0");
    schedule_.succeed(now_, milliseconds(0));
    EXPECT_EQ(wait(), "");
}

TEST_F(RefreshScheduleTest, WaitsLongerAfterEachFailureUpToFiveMinutes) {
    std::string waits;
    for (int failure = 0; failure < 9; ++failure) {
        schedule_.fail(now_);
        waits += wait() + " ";
    }
    EXPECT_EQ(waits, "5.0 10.0 20.0 40.0 80.0 160.0 300.0 300.0 300.0 ");
}

TEST_F(RefreshScheduleTest, BeginsAnewAfterASuccess) {
    schedule_.fail(now_);
    schedule_.fail(now_);
    schedule_.succeed(now_, milliseconds(0));
    EXPECT_EQ(wait(), "");
    schedule_.fail(now_);
    EXPECT_EQ(wait(), "5.0");
}

// Many services that have lost a server at once do not come back at once.
TEST_F(RefreshScheduleTest, WaitsHalfOfTheTimeAndARandomPartOfTheOtherHalf) {
    random_ = 0;
    schedule_.fail(now_);
    EXPECT_EQ(wait(), "2.5");
    random_ = 0.4;
    schedule_.fail(now_);
    EXPECT_EQ(wait(), "7.0");
}

}  // namespace

#include <array>
#include <chrono>
#include <cstddef>
#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Http/LoginAttempts.h"

namespace {

using namespace std::chrono_literals;
using Http::ClientKey;
using Http::LoginAttempts;

class LoginAttemptsTest : public testing::Test {
  protected:
    static ClientKey client(unsigned number) {
        return {{static_cast<unsigned char>(number >> 8U), static_cast<unsigned char>(number)}};
    }

    void fail(const ClientKey& client, int times) {
        for (int count = 0; count < times; ++count)
            attempts_.addWrong(client, now_);
    }

    [[nodiscard]] double delayInSeconds(const ClientKey& client) const {
        return std::chrono::duration<double>(attempts_.delay(client, now_)).count();
    }

    LoginAttempts attempts_;
    LoginAttempts::TimePoint now_ = LoginAttempts::TimePoint(24h);
};

TEST_F(LoginAttemptsTest, ADelayDoublesWithEachFailureAfterTheFirstOnes) {
    struct Case {
        int failures;
        double seconds;
    };
    constexpr std::array kCases = {Case{0, 0},    Case{4, 0},  Case{5, 0.1}, Case{6, 0.2},
                                   Case{10, 3.2}, Case{11, 5}, Case{1000, 5}};
    for (std::size_t index = 0; index < kCases.size(); ++index) {
        const ClientKey key = client(static_cast<unsigned>(index));
        fail(key, kCases[index].failures);
        EXPECT_NEAR(delayInSeconds(key), kCases[index].seconds, 1e-6) << kCases[index].failures;
    }
}

TEST_F(LoginAttemptsTest, TheNextTryIsAfterTheDelay) {
    EXPECT_LE(attempts_.nextTry(client(1)), now_);
    fail(client(1), 5);
    EXPECT_EQ(attempts_.nextTry(client(1)), now_ + 100ms);
    EXPECT_LE(attempts_.nextTry(client(2)), now_);
}

TEST_F(LoginAttemptsTest, ATryThatHasBegunDelaysTheNextOne) {
    attempts_.begin(client(1), now_);
    EXPECT_LE(attempts_.nextTry(client(1)), now_);
    fail(client(1), 6);
    now_ += 1ms;
    attempts_.begin(client(1), now_);
    EXPECT_GT(attempts_.nextTry(client(1)), now_ + 190ms);
}

TEST_F(LoginAttemptsTest, FailuresAreForgottenWithTime) {
    fail(client(1), 12);
    now_ += LoginAttempts::kHalfLife;
    EXPECT_NEAR(delayInSeconds(client(1)), 0.2, 1e-6);
    now_ += LoginAttempts::kHalfLife;
    EXPECT_EQ(delayInSeconds(client(1)), 0);
    fail(client(1), 2);
    EXPECT_NEAR(delayInSeconds(client(1)), 0.1, 1e-6);
}

TEST_F(LoginAttemptsTest, ManyClientsDoNotMakeThoseWithManyFailuresForgotten) {
    constexpr unsigned kClients = 1000 + LoginAttempts::kMaxClients;
    fail(client(0), 20);
    for (unsigned number = 1; number < kClients; ++number)
        fail(client(number), 1);
    EXPECT_EQ(delayInSeconds(client(0)), 5);
}

TEST_F(LoginAttemptsTest, AUserIsKnownFromWhereThePasswordWasRight) {
    attempts_.addRight(client(1), "alice");
    EXPECT_TRUE(attempts_.isKnown(client(1), "alice"));
    EXPECT_FALSE(attempts_.isKnown(client(2), "alice"));
    EXPECT_FALSE(attempts_.isKnown(client(1), "bob"));
}

TEST_F(LoginAttemptsTest, AUserCanOnlyMakeClientsOfTheirOwnUnknown) {
    attempts_.addRight(client(0), "bob");
    for (unsigned number = 0; number <= LoginAttempts::kMaxClientsPerUser; ++number) {
        for (int count = 0; count < 2; ++count)
            attempts_.addRight(client(number), "alice");
    }
    EXPECT_FALSE(attempts_.isKnown(client(0), "alice"));
    EXPECT_TRUE(attempts_.isKnown(client(1), "alice"));
    EXPECT_TRUE(attempts_.isKnown(client(0), "bob"));
}

}  // namespace

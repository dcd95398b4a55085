#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Security/CredentialCache.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/Threads.h"

namespace {

using namespace std::chrono_literals;
using Security::CredentialCache;
using Security::KeyedDigest;

KeyedDigest digest(int number) {
    KeyedDigest bytes = {};
    bytes[0] = static_cast<unsigned char>(number);
    bytes[1] = static_cast<unsigned char>(number >> 8);
    return bytes;
}

class CredentialCacheTest : public testing::Test {
  protected:
    // Which of the digests 0 to 9 are remembered, as "0 3".
    [[nodiscard]] std::string remembered() const {
        std::string text;
        for (int number = 0; number < 10; ++number) {
            if (cache_.contains(digest(number)))
                text += (text.empty() ? "" : " ") + std::to_string(number);
        }
        return text;
    }

    std::chrono::steady_clock::time_point now_;
    CredentialCache cache_{10s, 3, [this] { return now_; }};
};

TEST_F(CredentialCacheTest, IsEmptyAtFirst) {
    EXPECT_EQ(remembered(), "");
}

TEST_F(CredentialCacheTest, RemembersUntilTheLifetimeHasPassed) {
    cache_.remember(digest(1));
    now_ += 10s - 1ns;
    EXPECT_EQ(remembered(), "1");
    now_ += 1ns;
    EXPECT_EQ(remembered(), "");
}

TEST_F(CredentialCacheTest, RemembersAgainWhatHasExpired) {
    cache_.remember(digest(1));
    now_ += 10s;
    cache_.remember(digest(1));
    now_ += 9s;
    EXPECT_EQ(remembered(), "1");
}

TEST_F(CredentialCacheTest, TheLifetimeIsNotProlonged) {
    cache_.remember(digest(1));
    now_ += 9s;
    cache_.remember(digest(1));
    now_ += 1s;
    EXPECT_EQ(remembered(), "");
}

TEST_F(CredentialCacheTest, ForgetsTheOldestWhenThereAreTooMany) {
    for (int number = 0; number < 3; ++number)
        cache_.remember(digest(number));
    EXPECT_EQ(remembered(), "0 1 2");
    cache_.remember(digest(3));
    EXPECT_EQ(remembered(), "1 2 3");
    cache_.remember(digest(2));
    EXPECT_EQ(remembered(), "1 2 3");
    cache_.remember(digest(0));
    EXPECT_EQ(remembered(), "0 2 3");
}

TEST_F(CredentialCacheTest, WhatHasExpiredMakesRoomFirst) {
    cache_.remember(digest(1));
    now_ += 5s;
    cache_.remember(digest(2));
    cache_.remember(digest(3));
    now_ += 5s;
    cache_.remember(digest(4));
    EXPECT_EQ(remembered(), "2 3 4");
}

TEST_F(CredentialCacheTest, KnowsWhatHasExpiredUntilOthersTakeItsPlace) {
    EXPECT_FALSE(cache_.wasVerified(digest(1)));
    cache_.remember(digest(1));
    EXPECT_TRUE(cache_.wasVerified(digest(1)));
    now_ += 1h;
    EXPECT_FALSE(cache_.contains(digest(1)));
    EXPECT_TRUE(cache_.wasVerified(digest(1)));
    cache_.remember(digest(2));
    cache_.remember(digest(1));  // is the last one now
    cache_.remember(digest(3));
    cache_.remember(digest(4));
    EXPECT_FALSE(cache_.wasVerified(digest(2)));
    EXPECT_EQ(remembered(), "1 3 4");
    cache_.remember(digest(5));
    EXPECT_FALSE(cache_.wasVerified(digest(1)));
}

TEST_F(CredentialCacheTest, ASuccessorKnowsTheSameAndRemembersNothing) {
    for (int number = 0; number < 3; ++number)
        cache_.remember(digest(number));
    CredentialCache successor(cache_);
    for (int number = 0; number < 3; ++number) {
        EXPECT_FALSE(successor.contains(digest(number)));
        EXPECT_TRUE(successor.wasVerified(digest(number)));
    }
    successor.remember(digest(3));
    EXPECT_FALSE(successor.wasVerified(digest(0)));
    now_ += 10s - 1ns;
    EXPECT_TRUE(successor.contains(digest(3)));
    now_ += 1ns;
    EXPECT_FALSE(successor.contains(digest(3)));
}

TEST_F(CredentialCacheTest, NothingIsRememberedForNoTimeOrWithoutRoom) {
    CredentialCache shortLived(0s, 3, [this] { return now_; });
    shortLived.remember(digest(1));
    EXPECT_FALSE(shortLived.contains(digest(1)));
    CredentialCache small(10s, 0, [this] { return now_; });
    small.remember(digest(1));
    EXPECT_FALSE(small.contains(digest(1)));
}

TEST_F(CredentialCacheTest, AFailedAllocationLeavesItUsable) {
    AllocationProbe::failEachAllocation([this] { cache_.remember(digest(1)); },
                                        [this] { EXPECT_EQ(remembered(), ""); });
    EXPECT_EQ(remembered(), "1");
    now_ += 10s;
    for (int number = 2; number < 6; ++number)
        cache_.remember(digest(number));
    EXPECT_EQ(remembered(), "3 4 5");
}

TEST_F(CredentialCacheTest, ManyThreadsReadAndWriteIt) {
    CredentialCache cache(10s, 100, std::chrono::steady_clock::now);
    runOnThreads(8, [&](int index) {
        for (int turn = 0; turn < 500; ++turn) {
            cache.remember(digest(index * 500 + turn));
            static_cast<void>(cache.contains(digest(turn)));
        }
    });
    int count = 0;
    for (int number = 0; number < 4000; ++number)
        count += cache.contains(digest(number)) ? 1 : 0;
    EXPECT_EQ(count, 100);
}

}  // namespace

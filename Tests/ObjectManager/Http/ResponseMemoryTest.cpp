#include <atomic>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

#include "ObjectManager/Http/ResponseMemory.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/Threads.h"
#include "Tests/Support/WaitUntil.h"

namespace {

using Http::ResponseMemory;
using Share = ResponseMemory::Share;

class ResponseMemoryTest : public testing::Test {
  protected:
    // Has a share wait that needs `bytes`, for which there is no room.
    void wait(Share& share, std::size_t bytes, const std::string& name) {
        EXPECT_FALSE(share.growTo(bytes)) << name;
        share.wait([this, name] { served_ += name; });
    }

    ResponseMemory memory_{100};
    std::string served_;  // the names of those that have got room
};

TEST_F(ResponseMemoryTest, SharesTakeTheWholeBudgetAndNoMore) {
    Share first(memory_);
    Share second(memory_);
    EXPECT_TRUE(first.growTo(60));
    EXPECT_FALSE(second.growTo(41));
    EXPECT_TRUE(second.growTo(40));
    EXPECT_EQ(memory_.used(), 100U);
    EXPECT_FALSE(first.growTo(61));
    EXPECT_FALSE(second.growTo(static_cast<std::size_t>(-1)));
    EXPECT_EQ(memory_.used(), 100U);
}

TEST_F(ResponseMemoryTest, AShareDoesNotGrowByLess) {
    Share share(memory_);
    EXPECT_TRUE(share.growTo(60));
    EXPECT_TRUE(share.growTo(10));
    EXPECT_EQ(memory_.used(), 60U);
}

TEST_F(ResponseMemoryTest, AShareThatIsAloneMayTakeMore) {
    Share first(memory_);
    Share second(memory_);
    EXPECT_TRUE(first.growTo(101));
    EXPECT_TRUE(first.growTo(1000));
    EXPECT_FALSE(second.growTo(1));
    first.release();
    EXPECT_TRUE(second.growTo(1));
    EXPECT_FALSE(first.growTo(101));
    EXPECT_TRUE(first.growTo(99));
}

TEST_F(ResponseMemoryTest, WhatIsGivenBackIsFree) {
    Share first(memory_);
    EXPECT_TRUE(first.growTo(100));
    {
        Share second(memory_);
        first.shrinkTo(70);
        EXPECT_TRUE(second.growTo(30));
        EXPECT_EQ(memory_.used(), 100U);
    }
    EXPECT_EQ(memory_.used(), 70U);
    first.shrinkTo(80);
    EXPECT_EQ(memory_.used(), 70U);
    first.release();
    first.release();
    EXPECT_EQ(memory_.used(), 0U);
}

TEST_F(ResponseMemoryTest, WhoWaitsGetsRoomInTurn) {
    Share large(memory_);
    Share first(memory_);
    Share second(memory_);
    Share third(memory_);
    EXPECT_TRUE(large.growTo(100));
    wait(first, 50, "1");
    wait(second, 60, "2");
    wait(third, 10, "3");
    large.shrinkTo(51);
    EXPECT_EQ(served_, "");
    large.shrinkTo(50);
    EXPECT_EQ(served_, "1");
    EXPECT_EQ(memory_.used(), 100U);
    EXPECT_TRUE(first.growTo(50));
    large.release();
    EXPECT_EQ(served_, "1");
    first.release();
    EXPECT_EQ(served_, "123");
    EXPECT_EQ(memory_.used(), 70U);
}

TEST_F(ResponseMemoryTest, WhoWaitsHoldsNothing) {
    Share first(memory_);
    Share second(memory_);
    EXPECT_TRUE(first.growTo(50));
    EXPECT_TRUE(second.growTo(50));
    wait(first, 60, "1");
    EXPECT_EQ(memory_.used(), 50U);
    EXPECT_TRUE(second.growTo(100));
}

TEST_F(ResponseMemoryTest, RoomThatIsFreeAlreadyIsNotWaitedFor) {
    Share first(memory_);
    Share second(memory_);
    EXPECT_TRUE(first.growTo(100));
    EXPECT_FALSE(second.growTo(60));
    first.release();
    second.wait([this] { served_ += "2"; });
    EXPECT_EQ(served_, "2");
    EXPECT_EQ(memory_.used(), 60U);
}

TEST_F(ResponseMemoryTest, MoreThanThereIsIsWaitedForUntilNobodyTakesAnything) {
    Share first(memory_);
    Share second(memory_);
    EXPECT_TRUE(first.growTo(2));
    wait(second, 1000, "2");
    first.shrinkTo(1);
    EXPECT_EQ(served_, "");
    first.release();
    EXPECT_EQ(served_, "2");
}

TEST_F(ResponseMemoryTest, WhoReleasesOrEndsWaitsNoLonger) {
    Share large(memory_);
    Share first(memory_);
    EXPECT_TRUE(large.growTo(100));
    {
        Share second(memory_);
        wait(first, 60, "1");
        wait(second, 60, "2");
        first.release();
    }
    Share third(memory_);
    wait(third, 60, "3");
    large.release();
    EXPECT_EQ(served_, "3");
}

TEST_F(ResponseMemoryTest, AFailedAllocationLeavesAnEmptyShareThatDoesNotWait) {
    Share large(memory_);
    EXPECT_TRUE(large.growTo(100));
    Share share(memory_);
    EXPECT_FALSE(share.growTo(1));
    int calls = 0;
    const std::size_t failures =
        AllocationProbe::failEachAllocation([&] { share.wait([&calls] { ++calls; }); },
                                            [&] {
                                                EXPECT_EQ(memory_.used(), 100U);
                                                large.shrinkTo(99);
                                                EXPECT_TRUE(large.growTo(100));
                                                EXPECT_EQ(calls, 0);
                                            });
    EXPECT_GT(failures, 0U);
    large.release();
    EXPECT_EQ(calls, 1);
}

TEST_F(ResponseMemoryTest, ManyThreadsGetRoomInTheEnd) {
    constexpr int kThreads = 8;
    constexpr int kRounds = 200;
    runOnThreads(kThreads, [&](int index) {
        Share share(memory_);
        for (int round = 0; round < kRounds; ++round) {
            const auto bytes = static_cast<std::size_t>(10 + (index * kRounds + round) % 90);
            if (!share.growTo(bytes)) {
                std::atomic<bool> hasRoom = false;
                share.wait([&] { hasRoom = true; });
                EXPECT_TRUE(waitUntil([&] { return hasRoom.load(); }));
                EXPECT_TRUE(share.growTo(bytes));
            }
            EXPECT_LE(memory_.used(), 100U);
            share.shrinkTo(bytes / 2);
            share.release();
        }
    });
    EXPECT_EQ(memory_.used(), 0U);
}

}  // namespace

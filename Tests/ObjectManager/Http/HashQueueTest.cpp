#include <algorithm>
#include <chrono>
#include <cstddef>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/Http/HashQueue.h"
#include "Tests/Support/AllocationProbe.h"

namespace {

using namespace std::chrono_literals;
using Http::ClientKey;
using Http::HashQueue;

// A request is named by its credentials, and is that of the client whose letter these begin with.
class HashQueueTest : public testing::Test {
  protected:
    static ClientKey client(char letter) { return {{static_cast<unsigned char>(letter)}}; }

    void push(const std::string& credentials) { push(credentials.at(0), credentials); }
    void push(char letter, const std::string& credentials, const std::string& user = "user") {
        const HashQueue::Groups refused = queue_.push(
            {.client = client(letter),
             .user = user,
             .credentials = credentials,
             .hash =
                 [this, credentials] {
                     hashed_ += credentials + " ";
                     return isRight_;
                 },
             .done = [this, credentials](
                         bool isHashed) { (isHashed ? served_ : refused_) += credentials + " "; }},
            now_);
        end(refused);
    }

    static void end(const HashQueue::Groups& refused) {
        for (const auto& group : refused)
            HashQueue::end(*group, false);
    }

    void finish(const HashQueue::Turn& turn, std::optional<bool> isRight) {
        const HashQueue::Groups refused = queue_.finish(turn, isRight, now_);
        HashQueue::end(*turn.group, true);
        end(refused);
    }

    // Does the hash whose turn is next.
    void runOne(bool isRight) {
        isRight_ = isRight;
        const HashQueue::Turn turn = queue_.take(now_);
        finish(turn, HashQueue::hash(*turn.group));
    }

    // Does all hashes whose turn has come. Returns their credentials.
    std::string run(bool isRight = true) {
        hashed_.clear();
        while (queue_.nextTurn() && *queue_.nextTurn() <= now_)
            runOne(isRight);
        return hashed_;
    }

    HashQueue queue_{{.places = 8, .placesPerClient = 4}};
    HashQueue::TimePoint now_ = HashQueue::TimePoint(24h);
    bool isRight_ = true;
    std::string hashed_;
    std::string served_;
    std::string refused_;
};

TEST_F(HashQueueTest, ClientsTakeTurns) {
    for (const char* const credentials : {"a1", "a2", "a3", "b1", "b2", "c1"})
        push(credentials);
    EXPECT_EQ(run(), "a1 b1 c1 a2 b2 a3 ");
    EXPECT_EQ(served_, "a1 b1 c1 a2 b2 a3 ");
    EXPECT_EQ(refused_, "");
    EXPECT_FALSE(queue_.nextTurn());
}

TEST_F(HashQueueTest, EqualCredentialsTakeOnePlaceAndOneHash) {
    for (int count = 0; count < 20; ++count)
        push("a1");
    push("a2");
    EXPECT_EQ(run(), "a1 a2 ");
    EXPECT_EQ(served_.size(), 21U * 3);
    EXPECT_EQ(refused_, "");
}

TEST_F(HashQueueTest, EqualCredentialsJoinAHashThatRuns) {
    push("a1");
    const HashQueue::Turn turn = queue_.take(now_);
    push("a1");
    push('b', "a1");
    EXPECT_FALSE(queue_.nextTurn());
    finish(turn, true);
    EXPECT_EQ(served_, "a1 a1 a1 ");
    push("a1");
    EXPECT_TRUE(queue_.nextTurn());
}

TEST_F(HashQueueTest, EqualCredentialsAreHashedWhenTheFirstOfTheirClientsHasItsTurn) {
    for (const char* const credentials : {"a1", "a2", "a3"})
        push(credentials);
    push('b', "a3");
    EXPECT_EQ(run(), "a1 a3 a2 ");
}

TEST_F(HashQueueTest, AClientHasItsPlacesAndNoMore) {
    for (const char* const credentials : {"a1", "a2", "a3", "a4", "a5", "b1"})
        push(credentials);
    EXPECT_EQ(refused_, "a5 ");
    EXPECT_EQ(run(), "a1 b1 a2 a3 a4 ");
}

TEST_F(HashQueueTest, AClientWithMostPlacesGivesOneToAClientWithFewer) {
    for (const char* const credentials : {"a1", "a2", "a3", "a4", "b1", "b2", "b3", "b4"})
        push(credentials);
    push("c1");
    EXPECT_EQ(refused_, "a4 ");
    push("c2");
    EXPECT_EQ(refused_, "a4 b4 ");
    push("c3");
    EXPECT_EQ(refused_, "a4 b4 c3 ");
    EXPECT_EQ(run(), "a1 b1 c1 a2 b2 c2 a3 b3 ");
}

TEST_F(HashQueueTest, AClientThatSendsWrongPasswordsWaitsWhileOthersHaveTheirTurns) {
    for (int count = 0; count < 5; ++count) {
        push("a" + std::to_string(count));
        runOne(false);
    }
    push("a5");
    push("b1");
    EXPECT_EQ(run(), "b1 ");
    EXPECT_EQ(queue_.nextTurn(), now_ + 100ms);
    now_ += 100ms;
    EXPECT_EQ(run(), "a5 ");
}

TEST_F(HashQueueTest, ManyWrongPasswordsOfOneClientAreNotTriedAtOnce) {
    for (int count = 0; count < 20; ++count) {
        push("a" + std::to_string(count));
        now_ = std::max(now_, *queue_.nextTurn());
        runOne(false);
    }
    for (const char* const credentials : {"ax", "ay"})
        push(credentials);
    EXPECT_EQ(run(false), "");
    now_ = *queue_.nextTurn();
    EXPECT_EQ(run(false), "ax ");
    EXPECT_EQ(queue_.nextTurn(), now_ + 5s);
}

TEST_F(HashQueueTest, ThoseThatWouldWaitTooLongAreRefused) {
    HashQueue queue({.places = 100, .placesPerClient = 100});
    int served = 0;
    int refused = 0;
    const auto pushTo = [&](int number) {
        end(queue.push({.client = client('a'),
                        .user = "user",
                        .credentials = std::to_string(number),
                        .hash = [] { return false; },
                        .done = [&](bool isHashed) { ++(isHashed ? served : refused); }},
                       now_));
    };
    for (int number = 0; number < 50; ++number)
        pushTo(number);
    for (int count = 0; count < 11; ++count) {
        now_ = std::max(now_, *queue.nextTurn());
        const HashQueue::Turn turn = queue.take(now_);
        end(queue.finish(turn, false, now_));
        HashQueue::end(*turn.group, true);
    }
    // Four times five seconds is the longest wait.
    EXPECT_EQ(served, 11);
    EXPECT_EQ(refused, 50 - 11 - 4);
    pushTo(50);
    EXPECT_EQ(refused, 50 - 11 - 4);
    pushTo(51);
    EXPECT_EQ(refused, 50 - 11 - 3);
}

TEST_F(HashQueueTest, AKnownUserDoesNotWaitForOthersAtTheSameAddress) {
    push('a', "alice's old password", "alice");
    runOne(true);
    for (int count = 0; count < 10; ++count) {
        push("a" + std::to_string(count));
        now_ = std::max(now_, *queue_.nextTurn());
        runOne(false);
    }
    for (const char* const credentials : {"a11", "a12", "a13", "a14"})
        push(credentials);
    push('a', "alice's new password", "alice");
    push('b', "bob's password", "bob");
    EXPECT_EQ(run(), "alice's new password bob's password ");
    EXPECT_EQ(refused_, "");
}

TEST_F(HashQueueTest, AFailureToHashIsNoWrongPassword) {
    for (int count = 0; count < 10; ++count) {
        push("a" + std::to_string(count));
        finish(queue_.take(now_), std::nullopt);
    }
    push("a10");
    EXPECT_EQ(run(), "a10 ");
}

TEST_F(HashQueueTest, WhatIsDroppedIsNotTold) {
    for (const char* const credentials : {"a1", "a2", "b1"})
        push(credentials);
    push('b', "a2");
    int dropped = 0;
    while (queue_.drop() != nullptr)
        ++dropped;
    EXPECT_EQ(dropped, 3);
    EXPECT_FALSE(queue_.nextTurn());
    EXPECT_EQ(served_ + refused_, "");
    push("a1");
    EXPECT_EQ(run(), "a1 ");
}

TEST_F(HashQueueTest, AFailedAllocationLeavesTheQueueUsable) {
    push("b1");
    const std::size_t failures =
        AllocationProbe::failEachAllocation([&] { push("a1"); }, [&] { EXPECT_EQ(refused_, ""); });
    EXPECT_GT(failures, 3U);
    run();
    EXPECT_TRUE(hashed_ == "b1 a1 ") << hashed_;
    EXPECT_FALSE(queue_.nextTurn());
}

}  // namespace

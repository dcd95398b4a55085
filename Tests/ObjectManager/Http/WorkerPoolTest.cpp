#include <array>
#include <atomic>
#include <barrier>
#include <chrono>
#include <cstddef>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/Http/WorkerPool.h"
#include "Tests/Support/WaitUntil.h"

namespace {

using Http::WorkerPool;
using std::chrono::steady_clock;

const WorkerPool::Limits kLimits;

steady_clock::time_point soon() {
    return steady_clock::now() + kPatience;
}

// Posts a hash of a client and of credentials of its own. Returns whether there was a place.
bool postHash(WorkerPool& pool, const WorkerPool::Job& job) {
    static unsigned char clients = 0;
    static unsigned number = 0;
    const auto isRefused = std::make_shared<std::atomic<bool>>(false);
    Http::HashRequest request = {.client = {{0, 0, ++clients}},
                                 .user = "alice",
                                 .credentials = std::to_string(++number),
                                 .hash =
                                     [job] {
                                         job();
                                         return true;
                                     },
                                 .done = [isRefused](bool isHashed) { *isRefused = !isHashed; }};
    pool.postHash(std::move(request));
    return !*isRefused;
}

TEST(WorkerPool, RunsEveryJob) {
    std::atomic<int> sum = 0;
    WorkerPool pool(3, kLimits);
    for (int number = 1; number <= 1000; ++number)
        pool.postQuick([&sum, number] { sum += number; });
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(sum, 500'500);
}

TEST(WorkerPool, OneThreadRunsTheJobsInTheirOrder) {
    std::vector<int> numbers;
    std::vector<int> expected;
    WorkerPool pool(1, kLimits);
    for (int number = 0; number < 100; ++number) {
        pool.postQuick([&numbers, number] { numbers.push_back(number); });
        expected.push_back(number);
    }
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(numbers, expected);
}

TEST(WorkerPool, HasAtLeastOneThread) {
    WorkerPool pool(0, kLimits);
    std::promise<void> ran;
    pool.postQuick([&] { ran.set_value(); });
    ran.get_future().wait();
}

TEST(WorkerPool, ThreadsRunJobsAtTheSameTime) {
    WorkerPool pool(2, kLimits);
    std::promise<void> first;
    std::promise<void> second;
    pool.postQuick([&] {
        first.set_value();
        second.get_future().wait();
    });
    pool.postQuick([&] {
        first.get_future().wait();
        second.set_value();
    });
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
}

TEST(WorkerPool, AJobThatThrowsDoesNotAffectOthers) {
    WorkerPool pool(1, kLimits);
    std::atomic<int> ran = 0;
    pool.postQuick([] { throw std::runtime_error("reason"); });
    pool.postQuick([] { throw 42; });
    pool.postQuick([&] { ++ran; });
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(ran, 1);
}

TEST(WorkerPool, AJobIsDestroyedBeforeThePoolIsIdle) {
    WorkerPool pool(1, kLimits);
    const auto held = std::make_shared<int>(0);
    pool.postQuick([held] {});
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(held.use_count(), 1);
}

TEST(WorkerPool, IsNotIdleWhileAJobRuns) {
    WorkerPool pool(1, kLimits);
    std::promise<void> goOn;
    pool.postQuick([&] { goOn.get_future().wait(); });
    EXPECT_FALSE(pool.waitUntilIdle(steady_clock::now()));
    EXPECT_FALSE(pool.waitUntilIdle(steady_clock::now() + std::chrono::milliseconds(1)));
    goOn.set_value();
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
}

TEST(WorkerPool, DropsWaitingJobs) {
    WorkerPool pool(1, kLimits);
    std::promise<void> begun;
    std::promise<void> goOn;
    std::atomic<int> ran = 0;
    const auto held = std::make_shared<int>(0);
    pool.postQuick([&] {
        begun.set_value();
        goOn.get_future().wait();
    });
    begun.get_future().wait();
    pool.postQuick([&ran, held] { ++ran; });
    EXPECT_TRUE(postHash(pool, [&ran, held] { ++ran; }));
    pool.dropWaiting();
    EXPECT_EQ(held.use_count(), 1);
    goOn.set_value();
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(ran, 0);
}

// A job that waits until the test lets it go on. Belongs to the test.
class Blockade {
  public:
    WorkerPool::Job job() {
        return [this] {
            ++begun_;
            begun_.notify_all();
            ended_.wait(false);
        };
    }
    void waitUntilBegun() const { begun_.wait(0); }
    [[nodiscard]] int begun() const { return begun_; }
    void end() {
        ended_ = true;
        ended_.notify_all();
    }

  private:
    std::atomic<int> begun_ = 0;
    std::atomic<bool> ended_ = false;
};

// Whether the pool runs a quick job.
bool runsQuickJob(WorkerPool& pool) {
    const auto ran = std::make_shared<std::promise<void>>();
    pool.postQuick([ran] { ran->set_value(); });
    return ran->get_future().wait_until(soon()) == std::future_status::ready;
}

TEST(WorkerPool, SlowJobsNeverBlockQuickOnes) {
    for (const unsigned threads : {2U, 3U}) {
        Blockade blockade;
        WorkerPool pool(threads, kLimits);
        for (int count = 0; count < 10; ++count)
            EXPECT_TRUE(postHash(pool, blockade.job()));
        for (int count = 0; count < 10; ++count)
            EXPECT_TRUE(runsQuickJob(pool)) << "none of " << threads << " threads is free";
        blockade.end();
        EXPECT_TRUE(pool.waitUntilIdle(soon()));
        EXPECT_EQ(blockade.begun(), 10);
    }
}

TEST(WorkerPool, AllThreadsButOneRunSlowJobsAtTheSameTime) {
    WorkerPool pool(3, kLimits);
    std::promise<void> first;
    std::promise<void> second;
    EXPECT_TRUE(postHash(pool, [&] {
        first.set_value();
        second.get_future().wait();
    }));
    EXPECT_TRUE(postHash(pool, [&] {
        first.get_future().wait();
        second.set_value();
    }));
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
}

TEST(WorkerPool, AllThreadsRunQuickJobsAtTheSameTime) {
    WorkerPool pool(2, kLimits);
    Blockade blockades[2];
    for (Blockade& blockade : blockades)
        pool.postQuick(blockade.job());
    for (Blockade& blockade : blockades)
        blockade.waitUntilBegun();
    for (Blockade& blockade : blockades)
        blockade.end();
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
}

TEST(WorkerPool, ASingleThreadRunsQuickJobsFirstButDoesNotStarveSlowOnes) {
    Blockade blockade;
    std::string order;
    WorkerPool pool(1, kLimits);
    pool.postQuick(blockade.job());
    blockade.waitUntilBegun();
    for (const char slow : {'1', '2', '3'})
        EXPECT_TRUE(postHash(pool, [&order, slow] { order += slow; }));
    for (unsigned count = 0; count < 2 * WorkerPool::kMaxQuickInARow + 1; ++count)
        pool.postQuick([&order] { order += 'q'; });
    blockade.end();
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    const std::string row(WorkerPool::kMaxQuickInARow, 'q');
    EXPECT_EQ(order, row + "1" + row + "2" + "q" + "3");
}

TEST(WorkerPool, RefusesASlowJobIfTooManyWait) {
    Blockade blockade;
    std::atomic<int> ran = 0;
    const auto held = std::make_shared<int>(0);
    WorkerPool pool(2, {.hashes = {.places = 3}});
    EXPECT_TRUE(postHash(pool, blockade.job()));
    blockade.waitUntilBegun();
    for (int count = 0; count < 3; ++count)
        EXPECT_TRUE(postHash(pool, [&] { ++ran; }));
    EXPECT_FALSE(postHash(pool, [&ran, held] { ++ran; }));
    EXPECT_EQ(held.use_count(), 1);
    pool.postQuick([&] { ++ran; });
    blockade.end();
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(ran, 4);
    EXPECT_TRUE(postHash(pool, [&] { ++ran; }));
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(ran, 5);
}

TEST(WorkerPool, ComputesNoMoreHashesAtOnceThanMayBe) {
    Blockade blockade;
    std::atomic<int> ran = 0;
    WorkerPool pool(4, {.maxRunningHashes = 2});
    for (int count = 0; count < 10; ++count)
        EXPECT_TRUE(postHash(pool, blockade.job()));
    EXPECT_TRUE(waitUntil([&] { return blockade.begun() == 2; }));
    // Both threads that are left run quick jobs.
    std::barrier bothRun(2);
    for (int count = 0; count < 2; ++count)
        pool.postQuick([&] {
            bothRun.arrive_and_wait();
            ++ran;
        });
    EXPECT_TRUE(waitUntil([&] { return ran == 2; }));
    EXPECT_EQ(blockade.begun(), 2);
    blockade.end();
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(blockade.begun(), 10);
}

TEST(WorkerPool, AFailedHashEndsItsRequestsAsWell) {
    std::promise<bool> done;
    WorkerPool pool(1, kLimits);
    pool.postHash({.client = {},
                   .user = "alice",
                   .credentials = "a",
                   .hash = []() -> bool { throw std::bad_alloc(); },
                   .done = [&](bool isHashed) { done.set_value(isHashed); }});
    EXPECT_TRUE(done.get_future().get());
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
}

TEST(WorkerPool, AnotherThreadTakesThePlaceOfOneWhoseJobIsOverdue) {
    constexpr unsigned kThreads = 2;
    std::array<Blockade, kThreads + 2> blockades;
    int told = 0;
    WorkerPool pool(kThreads, kLimits);
    EXPECT_TRUE(pool.replaceOverdue(soon()).empty());
    for (unsigned index = 0; index < kThreads; ++index) {
        pool.postQuick(blockades[index].job(), [&] { ++told; });
        blockades[index].waitUntilBegun();
    }
    EXPECT_TRUE(pool.replaceOverdue({}).empty());
    std::vector<WorkerPool::Overdue> overdue = pool.replaceOverdue(soon());
    ASSERT_EQ(overdue.size(), kThreads);
    for (unsigned index = 0; index < kThreads; ++index) {
        EXPECT_TRUE(overdue[index].isReplaced);
        EXPECT_EQ(overdue[index].replacements, index + 1);
        overdue[index].whenOverdue();
    }
    EXPECT_EQ(told, 2);
    EXPECT_TRUE(pool.replaceOverdue(soon()).empty()) << "each is found once";
    EXPECT_TRUE(runsQuickJob(pool));

    // There are no more replacements.
    pool.postQuick(blockades[kThreads].job(), [&] { ++told; });
    blockades[kThreads].waitUntilBegun();
    overdue = pool.replaceOverdue(soon());
    ASSERT_EQ(overdue.size(), 1U);
    EXPECT_FALSE(overdue[0].isReplaced);
    EXPECT_EQ(overdue[0].replacements, kThreads);
    EXPECT_TRUE(runsQuickJob(pool)) << "by the last thread";
    EXPECT_FALSE(pool.waitUntilIdle(steady_clock::now()));

    // The thread that was not replaced goes on after its job, the others end.
    blockades[kThreads].end();
    pool.postQuick(blockades[kThreads + 1].job());
    blockades[kThreads + 1].waitUntilBegun();
    EXPECT_TRUE(runsQuickJob(pool));
    for (Blockade& blockade : blockades)
        blockade.end();
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
}

TEST(WorkerPool, AJobThatMayTakeAnyTimeIsNeverOverdue) {
    Blockade blockade;
    WorkerPool pool(1, kLimits);
    pool.postQuick(blockade.job());
    blockade.waitUntilBegun();
    EXPECT_TRUE(pool.replaceOverdue(soon()).empty());
    blockade.end();
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
}

TEST(WorkerPool, RunsEveryJobOfBothKinds) {
    constexpr int kJobs = 2000;
    std::atomic<int> quick = 0;
    std::atomic<int> slow = 0;
    std::atomic<int> slowRunning = 0;
    std::atomic<int> tooMany = 0;
    const auto slowJob = [&] {
        tooMany += ++slowRunning > 2 ? 1 : 0;
        ++slow;
        --slowRunning;
    };
    WorkerPool pool(3, {.hashes = {.places = kJobs, .placesPerClient = kJobs}});
    int refused = 0;
    for (int count = 0; count < kJobs; ++count) {
        pool.postQuick([&] { ++quick; });
        refused += postHash(pool, slowJob) ? 0 : 1;
    }
    EXPECT_EQ(refused, 0);
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(quick, kJobs);
    EXPECT_EQ(slow, kJobs);
    EXPECT_EQ(tooMany, 0);
}

TEST(WorkerPool, ItsEndDropsWaitingJobsAndWaitsForWhatRuns) {
    std::atomic<int> ran = 0;
    std::promise<void> begun;
    std::promise<void> dropped;
    {
        WorkerPool pool(1, kLimits);
        pool.postQuick([&] {
            begun.set_value();
            dropped.get_future().wait();
            ++ran;
        });
        begun.get_future().wait();
        const auto tellsItsEnd = [&](const int* number) {
            delete number;
            dropped.set_value();
        };
        pool.postQuick(
            [&ran, held = std::shared_ptr<int>(new int(0), tellsItsEnd)] { ran += 100; });
    }
    EXPECT_EQ(ran, 1);
}

}  // namespace

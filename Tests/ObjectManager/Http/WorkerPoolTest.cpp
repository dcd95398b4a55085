#include <atomic>
#include <chrono>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <vector>

#include "ObjectManager/Http/WorkerPool.h"

namespace {

using Http::WorkerPool;
using std::chrono::steady_clock;

steady_clock::time_point soon() {
    return steady_clock::now() + std::chrono::seconds(30);
}

TEST(WorkerPool, RunsEveryJob) {
    std::atomic<int> sum = 0;
    WorkerPool pool(3);
    for (int number = 1; number <= 1000; ++number)
        pool.post([&sum, number] { sum += number; });
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(sum, 500'500);
}

TEST(WorkerPool, OneThreadRunsTheJobsInTheirOrder) {
    std::vector<int> numbers;
    std::vector<int> expected;
    WorkerPool pool(1);
    for (int number = 0; number < 100; ++number) {
        pool.post([&numbers, number] { numbers.push_back(number); });
        expected.push_back(number);
    }
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(numbers, expected);
}

TEST(WorkerPool, HasAtLeastOneThread) {
    WorkerPool pool(0);
    std::promise<void> ran;
    pool.post([&] { ran.set_value(); });
    ran.get_future().wait();
}

TEST(WorkerPool, ThreadsRunJobsAtTheSameTime) {
    WorkerPool pool(2);
    std::promise<void> first;
    std::promise<void> second;
    pool.post([&] {
        first.set_value();
        second.get_future().wait();
    });
    pool.post([&] {
        first.get_future().wait();
        second.set_value();
    });
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
}

TEST(WorkerPool, AJobThatThrowsEndsAlone) {
    WorkerPool pool(1);
    std::atomic<int> ran = 0;
    pool.post([] { throw std::runtime_error("reason"); });
    pool.post([] { throw 42; });
    pool.post([&] { ++ran; });
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(ran, 1);
}

TEST(WorkerPool, AJobIsDestroyedBeforeThePoolIsIdle) {
    WorkerPool pool(1);
    const auto held = std::make_shared<int>(0);
    pool.post([held] {});
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(held.use_count(), 1);
}

TEST(WorkerPool, IsNotIdleWhileAJobRuns) {
    WorkerPool pool(1);
    std::promise<void> goOn;
    pool.post([&] { goOn.get_future().wait(); });
    EXPECT_FALSE(pool.waitUntilIdle(steady_clock::now()));
    EXPECT_FALSE(pool.waitUntilIdle(steady_clock::now() + std::chrono::milliseconds(1)));
    goOn.set_value();
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
}

TEST(WorkerPool, DropsWhatWaits) {
    WorkerPool pool(1);
    std::promise<void> begun;
    std::promise<void> goOn;
    std::atomic<int> ran = 0;
    const auto held = std::make_shared<int>(0);
    pool.post([&] {
        begun.set_value();
        goOn.get_future().wait();
    });
    begun.get_future().wait();
    pool.post([&ran, held] { ++ran; });
    pool.dropWaiting();
    EXPECT_EQ(held.use_count(), 1);
    goOn.set_value();
    EXPECT_TRUE(pool.waitUntilIdle(soon()));
    EXPECT_EQ(ran, 0);
}

TEST(WorkerPool, ItsEndDropsWhatWaitsAndWaitsForWhatRuns) {
    std::atomic<int> ran = 0;
    std::promise<void> begun;
    std::promise<void> dropped;
    {
        WorkerPool pool(1);
        pool.post([&] {
            begun.set_value();
            dropped.get_future().wait();
            ++ran;
        });
        begun.get_future().wait();
        const auto tellsItsEnd = [&](const int* number) {
            delete number;
            dropped.set_value();
        };
        pool.post([&ran, held = std::shared_ptr<int>(new int(0), tellsItsEnd)] { ran += 100; });
    }
    EXPECT_EQ(ran, 1);
}

}  // namespace

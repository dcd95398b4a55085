#include <algorithm>
#include <atomic>
#include <barrier>
#include <gtest/gtest.h>
#include <mutex>
#include <pthread.h>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

#include "ObjectManager/Commands/ParallelWork.h"

namespace {

using Commands::workInParallel;

// How often each number from 0 to before `count` was worked on.
std::vector<int> timesWorkedOn(std::size_t count, unsigned jobs) {
    std::vector<std::atomic<int>> times(count);
    workInParallel(count, jobs, [&](std::size_t number) { ++times.at(number); });
    return {times.begin(), times.end()};
}

TEST(ParallelWork, DoesEachNumberOnce) {
    for (const unsigned jobs : {1U, 2U, 8U, 64U}) {
        for (const std::size_t count : {1U, 2U, 63U, 64U, 65U, 1000U})
            EXPECT_EQ(timesWorkedOn(count, jobs), std::vector<int>(count, 1)) << jobs;
    }
}

TEST(ParallelWork, NeedsNoNumbersAndNoJobs) {
    EXPECT_EQ(timesWorkedOn(0, 4), std::vector<int>());
    EXPECT_EQ(timesWorkedOn(0, 0), std::vector<int>());
    EXPECT_EQ(timesWorkedOn(3, 0), std::vector<int>(3, 1));
}

// Each waits for the other three.
TEST(ParallelWork, UsesAsManyThreadsAsThereAreJobs) {
    std::barrier everybody(4);
    workInParallel(4, 4, [&](std::size_t) { everybody.arrive_and_wait(); });
}

// Whose memory may be in pieces.
TEST(ParallelWork, NothingRunsInTheCallersThread) {
    for (const unsigned jobs : {1U, 3U}) {
        std::mutex mutex;
        std::set<std::thread::id> threads;
        workInParallel(10, jobs, [&](std::size_t) {
            const std::lock_guard lock(mutex);
            threads.insert(std::this_thread::get_id());
        });
        EXPECT_FALSE(threads.contains(std::this_thread::get_id()));
        EXPECT_LE(threads.size(), jobs);
    }
}

TEST(ParallelWork, PassesOnAnExceptionAndBeginsNothingMore) {
    for (std::size_t failing = 0; failing < 5; ++failing) {
        std::vector<std::size_t> begun;
        const auto work = [&](std::size_t number) {
            begun.push_back(number);
            if (number == failing)
                throw std::runtime_error("number " + std::to_string(number));
        };
        try {
            workInParallel(5, 1, work);
            ADD_FAILURE();
        } catch (const std::runtime_error& error) {
            EXPECT_EQ(error.what(), "number " + std::to_string(failing));
        }
        EXPECT_EQ(begun.size(), failing + 1);
    }
}

// All four throw at the same time; the threads have ended when one of the exceptions arrives.
TEST(ParallelWork, PassesOnOneExceptionOfMany) {
    std::barrier everybody(4);
    std::atomic<int> thrown = 0;
    const auto work = [&](std::size_t) {
        everybody.arrive_and_wait();
        ++thrown;
        throw 42;
    };
    EXPECT_THROW(workInParallel(4, 4, work), int);
    EXPECT_EQ(thrown, 4);
}

// Stacks that fit into no memory keep the system from starting threads.
class NoThreads {
  public:
    NoThreads() {
        pthread_getattr_default_np(&before_);
        pthread_attr_t attributes;
        pthread_getattr_default_np(&attributes);
        pthread_attr_setstacksize(&attributes, std::size_t{1} << 47U);
        pthread_setattr_default_np(&attributes);
        pthread_attr_destroy(&attributes);
    }
    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;
    ~NoThreads() {
        pthread_setattr_default_np(&before_);
        pthread_attr_destroy(&before_);
    }

  private:
    pthread_attr_t before_ = {};
};

TEST(ParallelWork, DoesEverythingWhereNoThreadCanBeStarted) {
    const NoThreads limit;
    EXPECT_THROW(std::thread([] {}).join(), std::system_error);
    EXPECT_EQ(timesWorkedOn(100, 8), std::vector<int>(100, 1));
}

TEST(ParallelWork, RunsAtLeastOneJobByDefault) {
    EXPECT_GE(Commands::defaultJobs(), 1U);
}

}  // namespace

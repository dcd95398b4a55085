#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Http {

/// Threads that run jobs of two kinds: quick ones, and slow ones for which nobody shall wait who
/// has a quick one. Of each kind, those that were posted first run first.
///
/// A pool of several threads never has slow jobs on all of them, so that a quick one finds a thread
/// whatever the slow ones do. Elsewhere quick jobs go before slow ones, but not for ever: slow ones
/// have their turn, too, while quick ones come without end.
///
/// Thread safety: may be used by several threads at once, but destroyed only by one that is not of
/// the pool.
class WorkerPool {
  public:
    /// What it throws ends the job and nothing else.
    using Job = std::function<void()>;

    /// After so many quick jobs in a row a slow one is run, if any waits. A quick job takes some
    /// 0.2 ms and a slow one 15 ms, so that this halves what a thread does for either.
    static constexpr unsigned kMostQuickInARow = 64;

    /// Starts `threads` threads, 1 at least. At most `mostSlowWaiting` slow jobs wait.
    /// Errors: std::system_error when a thread cannot be started.
    WorkerPool(unsigned threads, std::size_t mostSlowWaiting);
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;
    /// Drops the jobs that wait and waits for those that run.
    ~WorkerPool();

    /// Errors: std::bad_alloc.
    void postQuick(Job job);

    /// Returns false, and destroys the job, when too many wait already.
    /// Errors: std::bad_alloc.
    [[nodiscard]] bool postSlow(Job job);

    /// Destroys the jobs that no thread has begun.
    void dropWaiting();

    /// Returns true as soon as no job waits or runs, false if that is not so at the deadline.
    [[nodiscard]] bool waitUntilIdle(std::chrono::steady_clock::time_point deadline);

  private:
    void runJobs();
    void runQuick(std::unique_lock<std::mutex>& lock);
    void runSlow(std::unique_lock<std::mutex>& lock);
    void join();

    // To be called with the lock.
    [[nodiscard]] bool mayRunSlow() const;
    [[nodiscard]] bool isSlowNext() const;
    [[nodiscard]] bool isIdle() const;

    const std::size_t mostSlowWaiting_;
    const unsigned mostSlowRunning_;

    std::mutex mutex_;
    std::condition_variable jobWaits_;
    std::condition_variable idle_;
    std::deque<Job> quick_;      // that wait; guarded by mutex_
    std::deque<Job> slow_;       // that wait; guarded by mutex_
    unsigned quickRunning_ = 0;  // guarded by mutex_
    unsigned slowRunning_ = 0;   // guarded by mutex_
    unsigned quickInARow_ = 0;   // begun while a slow one might have been; guarded by mutex_
    bool isEnding_ = false;      // guarded by mutex_
    std::vector<std::thread> threads_;
};

}  // namespace Http

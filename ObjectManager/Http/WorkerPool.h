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

/// Threads that run quick jobs and slow jobs such that slow jobs never block quick ones. Jobs of
/// the same kind run in the order in which they were posted.
///
/// A pool of two or more threads keeps one of them free of slow jobs. Otherwise quick jobs run
/// first, but slow jobs do not starve: see kMaxQuickInARow.
///
/// Thread safety: may be used by several threads at once. Must not be destroyed by one of its own
/// threads.
class WorkerPool {
  public:
    /// What a job throws is ignored.
    using Job = std::function<void()>;

    /// After this number of quick jobs a waiting slow job is run. A quick job takes about 0.2 ms
    /// and a slow one 15 ms, so both kinds get about the same time.
    static constexpr unsigned kMaxQuickInARow = 64;

    /// Starts `threads` threads, at least 1. At most `maxSlowWaiting` slow jobs wait.
    /// Errors: std::system_error when a thread cannot be started.
    WorkerPool(unsigned threads, std::size_t maxSlowWaiting);
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;
    /// Drops the waiting jobs and waits for the running ones.
    ~WorkerPool();

    /// Errors: std::bad_alloc.
    void postQuick(Job job);

    /// Returns false, and destroys the job, if too many slow jobs wait already.
    /// Errors: std::bad_alloc.
    [[nodiscard]] bool postSlow(Job job);

    /// Destroys the waiting jobs.
    void dropWaiting();

    /// Returns true as soon as no job waits or runs, false if one still does at the deadline.
    [[nodiscard]] bool waitUntilIdle(std::chrono::steady_clock::time_point deadline);

  private:
    void runJobs();
    void runQuick(std::unique_lock<std::mutex>& lock);
    void runSlow(std::unique_lock<std::mutex>& lock);
    void join();

    // To be called with mutex_ locked.
    [[nodiscard]] bool mayRunSlow() const;
    [[nodiscard]] bool isSlowNext() const;
    [[nodiscard]] bool isIdle() const;

    const std::size_t maxSlowWaiting_;
    const unsigned maxSlowRunning_;

    std::mutex mutex_;
    std::condition_variable jobWaits_;
    std::condition_variable idle_;
    std::deque<Job> quick_;      // waiting; guarded by mutex_
    std::deque<Job> slow_;       // waiting; guarded by mutex_
    unsigned quickRunning_ = 0;  // guarded by mutex_
    unsigned slowRunning_ = 0;   // guarded by mutex_
    unsigned quickInARow_ = 0;   // run while a slow job was waiting; guarded by mutex_
    bool isEnding_ = false;      // guarded by mutex_
    std::vector<std::thread> threads_;
};

}  // namespace Http

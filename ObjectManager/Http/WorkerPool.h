#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace Http {

/// Threads that run jobs, those that were posted first before others.
///
/// Thread safety: may be used by several threads at once, but destroyed only by one that is not of
/// the pool.
class WorkerPool {
  public:
    /// What it throws ends the job and nothing else.
    using Job = std::function<void()>;

    /// Starts `threads` threads, 1 at least.
    /// Errors: std::system_error when a thread cannot be started.
    explicit WorkerPool(unsigned threads);
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;
    /// Drops the jobs that wait and waits for those that run.
    ~WorkerPool();

    /// Errors: std::bad_alloc.
    void post(Job job);

    /// Destroys the jobs that no thread has begun.
    void dropWaiting();

    /// Returns true as soon as no job waits or runs, false if that is not so at the deadline.
    [[nodiscard]] bool waitUntilIdle(std::chrono::steady_clock::time_point deadline);

  private:
    void runJobs();
    void join();

    std::mutex mutex_;
    std::condition_variable jobWaits_;
    std::condition_variable idle_;
    std::deque<Job> waiting_;  // guarded by mutex_
    unsigned running_ = 0;     // guarded by mutex_
    bool isEnding_ = false;    // guarded by mutex_
    std::vector<std::thread> threads_;
};

}  // namespace Http

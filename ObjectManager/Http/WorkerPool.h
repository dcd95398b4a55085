#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <list>
#include <mutex>
#include <thread>
#include <vector>

#include "ObjectManager/Http/HashQueue.h"

namespace Http {

/// Threads that run quick jobs, which are run in the order in which they were posted, and hash
/// passwords, which takes long, such that hashes never block quick jobs.
///
/// A pool of two or more threads keeps one of them free of hashes. Otherwise quick jobs run first,
/// but hashes do not starve: see kMaxQuickInARow.
///
/// A quick job that never ends takes its thread away from the others; replaceOverdue() starts
/// another one instead.
///
/// Thread safety: may be used by several threads at once. Must not be destroyed by one of its own
/// threads.
class WorkerPool {
  public:
    /// What a job throws is ignored.
    using Job = std::function<void()>;
    using TimePoint = std::chrono::steady_clock::time_point;

    /// After this number of quick jobs a waiting hash is computed. A quick job takes about 0.2 ms
    /// and a hash 15 ms, so both kinds get about the same time.
    static constexpr unsigned kMaxQuickInARow = 64;

    struct Limits {
        unsigned maxRunningHashes = 4;
        HashQueue::Limits hashes = {};
    };

    /// What replaceOverdue() has found.
    struct Overdue {
        Job whenOverdue;            ///< to be called by the caller
        bool isReplaced = false;    ///< another thread has taken the place of this one
        unsigned replacements = 0;  ///< in total, with this one
    };

    /// Starts `threads` threads, at least 1.
    /// Errors: std::system_error when a thread cannot be started.
    WorkerPool(unsigned threads, const Limits& limits);
    WorkerPool(const WorkerPool&) = delete;
    WorkerPool& operator=(const WorkerPool&) = delete;
    /// Drops the waiting jobs and waits for the running ones.
    ~WorkerPool();

    /// `whenOverdue` is what replaceOverdue() gives if the job takes too long; without it the job
    /// may take any time. Both are destroyed at the end of the job.
    /// Errors: std::bad_alloc.
    void postQuick(Job job, Job whenOverdue = nullptr);

    /// HashRequest::hash is called by a thread of the pool; HashRequest::done by one, or by the
    /// caller of this if there is no place for the request.
    /// Errors: std::bad_alloc.
    void postHash(HashRequest request);

    /// Finds jobs that were begun before `begin` and still run, each once. Starts a thread instead
    /// of each, but in the life of the pool no more of them than the pool has threads. The replaced
    /// thread ends with its job.
    /// Errors: std::bad_alloc.
    [[nodiscard]] std::vector<Overdue> replaceOverdue(TimePoint begin);

    /// Destroys the waiting jobs and hash requests.
    void dropWaiting();

    /// Returns true as soon as no job waits or runs, false if one still does at the deadline.
    [[nodiscard]] bool waitUntilIdle(TimePoint deadline);

  private:
    struct QuickJob {
        Job run;
        Job whenOverdue;
    };

    struct Worker {
        std::thread thread;
        TimePoint begin;  // of the quick job that runs; guarded by mutex_
        Job whenOverdue;  // of that job; empty without, and once it is taken; guarded by mutex_
        bool isReplaced = false;  // guarded by mutex_
    };

    // To be called with mutex_ locked.
    void startWorker();
    void runJobs(Worker& worker);
    void runQuick(Worker& worker, std::unique_lock<std::mutex>& lock);
    void runHash(std::unique_lock<std::mutex>& lock);
    void waitForJob(std::unique_lock<std::mutex>& lock);
    [[nodiscard]] bool mayHash() const;
    [[nodiscard]] bool isHashNext() const;
    [[nodiscard]] bool isIdle() const;

    void join();

    const unsigned threads_;
    const unsigned maxHashing_;

    std::mutex mutex_;
    std::condition_variable jobWaits_;
    std::condition_variable idle_;
    std::deque<QuickJob> quick_;  // waiting; guarded by mutex_
    HashQueue hashes_;            // guarded by mutex_
    unsigned running_ = 0;  // jobs and hashes, also those of replaced threads; guarded by mutex_
    unsigned hashing_ = 0;  // guarded by mutex_
    unsigned quickInARow_ = 0;   // run while a hash was waiting; guarded by mutex_
    unsigned replacements_ = 0;  // guarded by mutex_
    bool isEnding_ = false;      // guarded by mutex_
    std::list<Worker> workers_;  // guarded by mutex_
};

}  // namespace Http

#include "ObjectManager/Http/WorkerPool.h"

#include <algorithm>
#include <exception>
#include <memory>
#include <optional>
#include <utility>

namespace Http {

using std::chrono::steady_clock;

WorkerPool::WorkerPool(unsigned threads, const Limits& limits)
    : threads_(std::max(1U, threads)),
      maxHashing_(std::clamp(limits.maxRunningHashes, 1U, std::max(2U, threads_) - 1)),
      hashes_(limits.hashes) {
    try {
        std::unique_lock lock(mutex_);
        while (workers_.size() < threads_)
            startWorker();
    } catch (...) {
        join();
        throw;
    }
}

WorkerPool::~WorkerPool() {
    dropWaiting();
    join();
}

void WorkerPool::postQuick(Job job, Job whenOverdue) {
    {
        const std::lock_guard lock(mutex_);
        quick_.push_back({.run = std::move(job), .whenOverdue = std::move(whenOverdue)});
    }
    jobWaits_.notify_one();
}

void WorkerPool::postHash(HashRequest request) {
    HashQueue::Groups refused;
    {
        const std::lock_guard lock(mutex_);
        refused = hashes_.push(std::move(request), steady_clock::now());
    }
    jobWaits_.notify_one();
    for (const auto& group : refused)
        HashQueue::end(*group, false);
}

std::vector<WorkerPool::Overdue> WorkerPool::replaceOverdue(TimePoint begin) {
    std::vector<Overdue> found;
    const std::lock_guard lock(mutex_);
    found.reserve(workers_.size());
    // Threads that are started meanwhile have no job yet.
    for (Worker& worker : workers_) {
        if (!worker.whenOverdue || worker.begin >= begin)
            continue;
        if (replacements_ < threads_) {
            try {
                startWorker();
                worker.isReplaced = true;
                ++replacements_;
            } catch (const std::exception&) {
                // The system has no thread or no memory for it.
            }
        }
        found.push_back({.whenOverdue = std::exchange(worker.whenOverdue, nullptr),
                         .isReplaced = worker.isReplaced,
                         .replacements = replacements_});
    }
    return found;
}

// One by one, since the destructor must not allocate, and without the lock, since a job may hold
// anything.
void WorkerPool::dropWaiting() {
    std::unique_lock lock(mutex_);
    for (;;) {
        QuickJob job;
        std::shared_ptr<HashQueue::Group> group;
        if (!quick_.empty()) {
            job = std::move(quick_.front());
            quick_.pop_front();
        } else if (group = hashes_.drop(); group == nullptr) {
            break;
        }
        lock.unlock();
        job = {};
        group.reset();
        lock.lock();
    }
    if (isIdle())
        idle_.notify_all();
}

bool WorkerPool::waitUntilIdle(TimePoint deadline) {
    std::unique_lock lock(mutex_);
    return idle_.wait_until(lock, deadline, [this] { return isIdle(); });
}

void WorkerPool::startWorker() {
    Worker& worker = workers_.emplace_back();
    try {
        worker.thread = std::thread([this, &worker] { runJobs(worker); });
    } catch (...) {
        workers_.pop_back();
        throw;
    }
}

// A thread looks for jobs of both kinds, and again after each job. So no job is overlooked,
// although a hash may wake a thread that must not compute it.
void WorkerPool::runJobs(Worker& worker) {
    std::unique_lock lock(mutex_);
    while (!isEnding_ && !worker.isReplaced) {
        if (isHashNext())
            runHash(lock);
        else if (!quick_.empty())
            runQuick(worker, lock);
        else
            waitForJob(lock);
        if (isIdle())
            idle_.notify_all();
    }
}

void WorkerPool::waitForJob(std::unique_lock<std::mutex>& lock) {
    const std::optional<TimePoint> turn = hashes_.nextTurn();
    if (turn && hashing_ < maxHashing_)
        jobWaits_.wait_until(lock, *turn);
    else
        jobWaits_.wait(lock);
}

void WorkerPool::runQuick(Worker& worker, std::unique_lock<std::mutex>& lock) {
    quickInARow_ = mayHash() ? quickInARow_ + 1 : 0;
    QuickJob job = std::move(quick_.front());
    quick_.pop_front();
    worker.whenOverdue = std::move(job.whenOverdue);
    if (worker.whenOverdue)
        worker.begin = steady_clock::now();
    ++running_;
    lock.unlock();
    try {
        job.run();
    } catch (...) {
        // The job has reported its failure, or there is no memory to do so.
    }
    job.run = nullptr;
    lock.lock();
    if (Job whenOverdue = std::exchange(worker.whenOverdue, nullptr)) {
        lock.unlock();
        whenOverdue = nullptr;
        lock.lock();
    }
    --running_;
}

void WorkerPool::runHash(std::unique_lock<std::mutex>& lock) {
    quickInARow_ = 0;
    HashQueue::Turn turn = hashes_.take(steady_clock::now());
    ++running_;
    ++hashing_;
    lock.unlock();
    std::optional<bool> isRight;
    try {
        isRight = HashQueue::hash(*turn.group);
    } catch (...) {
        // The requests are served as if there was a result, and report the failure.
    }
    lock.lock();
    --hashing_;
    HashQueue::Groups refused = hashes_.finish(turn, isRight, steady_clock::now());
    lock.unlock();
    HashQueue::end(*turn.group, true);
    for (const auto& group : refused)
        HashQueue::end(*group, false);
    turn = {};
    refused.clear();
    lock.lock();
    --running_;
}

void WorkerPool::join() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    jobWaits_.notify_all();
    for (Worker& worker : workers_)
        worker.thread.join();
}

bool WorkerPool::mayHash() const {
    const std::optional<TimePoint> turn = hashes_.nextTurn();
    return turn && hashing_ < maxHashing_ && *turn <= steady_clock::now();
}

bool WorkerPool::isHashNext() const {
    return mayHash() && (quick_.empty() || quickInARow_ >= kMaxQuickInARow);
}

bool WorkerPool::isIdle() const {
    return quick_.empty() && !hashes_.nextTurn() && running_ == 0;
}

}  // namespace Http

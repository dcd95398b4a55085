#include "ObjectManager/Http/WorkerPool.h"

#include <algorithm>
#include <utility>

namespace Http {

namespace {

// Takes the first job out, runs it without the lock and destroys it.
void runFirst(std::deque<WorkerPool::Job>& waiting, std::unique_lock<std::mutex>& lock) {
    WorkerPool::Job job = std::move(waiting.front());
    waiting.pop_front();
    lock.unlock();
    try {
        job();
    } catch (...) {
        // The job has reported its failure, or there is no memory to do so.
    }
    job = nullptr;
    lock.lock();
}

}  // namespace

WorkerPool::WorkerPool(unsigned threads, std::size_t maxSlowWaiting)
    : maxSlowWaiting_(maxSlowWaiting), maxSlowRunning_(threads > 1 ? threads - 1 : 1) {
    const unsigned count = std::max(1U, threads);
    threads_.reserve(count);
    try {
        while (threads_.size() < count)
            threads_.emplace_back([this] { runJobs(); });
    } catch (...) {
        join();
        throw;
    }
}

WorkerPool::~WorkerPool() {
    dropWaiting();
    join();
}

void WorkerPool::postQuick(Job job) {
    {
        const std::lock_guard lock(mutex_);
        quick_.push_back(std::move(job));
    }
    jobWaits_.notify_one();
}

bool WorkerPool::postSlow(Job job) {
    {
        const std::lock_guard lock(mutex_);
        if (slow_.size() >= maxSlowWaiting_)
            return false;
        slow_.push_back(std::move(job));
    }
    jobWaits_.notify_one();
    return true;
}

// One by one, since the destructor must not allocate, and without the lock, since a job may hold
// anything.
void WorkerPool::dropWaiting() {
    std::unique_lock lock(mutex_);
    while (!quick_.empty() || !slow_.empty()) {
        std::deque<Job>& jobs = quick_.empty() ? slow_ : quick_;
        Job dropped = std::move(jobs.front());
        jobs.pop_front();
        lock.unlock();
        dropped = nullptr;
        lock.lock();
    }
    if (isIdle())
        idle_.notify_all();
}

bool WorkerPool::waitUntilIdle(std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(mutex_);
    return idle_.wait_until(lock, deadline, [this] { return isIdle(); });
}

// A thread looks for jobs of both kinds, and again after each job. So no job is overlooked,
// although a slow one may wake a thread that must not run it.
void WorkerPool::runJobs() {
    std::unique_lock lock(mutex_);
    for (;;) {
        jobWaits_.wait(lock, [this] { return isEnding_ || !quick_.empty() || mayRunSlow(); });
        if (isEnding_)
            return;
        if (isSlowNext())
            runSlow(lock);
        else
            runQuick(lock);
        if (isIdle())
            idle_.notify_all();
    }
}

void WorkerPool::runQuick(std::unique_lock<std::mutex>& lock) {
    quickInARow_ = mayRunSlow() ? quickInARow_ + 1 : 0;
    ++quickRunning_;
    runFirst(quick_, lock);
    --quickRunning_;
}

void WorkerPool::runSlow(std::unique_lock<std::mutex>& lock) {
    quickInARow_ = 0;
    ++slowRunning_;
    runFirst(slow_, lock);
    --slowRunning_;
}

void WorkerPool::join() {
    {
        const std::lock_guard lock(mutex_);
        isEnding_ = true;
    }
    jobWaits_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
}

bool WorkerPool::mayRunSlow() const {
    return !slow_.empty() && slowRunning_ < maxSlowRunning_;
}

bool WorkerPool::isSlowNext() const {
    return mayRunSlow() && (quick_.empty() || quickInARow_ >= kMaxQuickInARow);
}

bool WorkerPool::isIdle() const {
    return quick_.empty() && slow_.empty() && quickRunning_ == 0 && slowRunning_ == 0;
}

}  // namespace Http

#include "ObjectManager/Http/WorkerPool.h"

#include <algorithm>
#include <utility>

namespace Http {

WorkerPool::WorkerPool(unsigned threads) {
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

void WorkerPool::post(Job job) {
    {
        const std::lock_guard lock(mutex_);
        waiting_.push_back(std::move(job));
    }
    jobWaits_.notify_one();
}

void WorkerPool::dropWaiting() {
    std::deque<Job> dropped;  // destroyed without the lock, since a job may hold anything
    const std::lock_guard lock(mutex_);
    dropped.swap(waiting_);
    if (running_ == 0)
        idle_.notify_all();
}

bool WorkerPool::waitUntilIdle(std::chrono::steady_clock::time_point deadline) {
    std::unique_lock lock(mutex_);
    return idle_.wait_until(lock, deadline, [this] { return waiting_.empty() && running_ == 0; });
}

void WorkerPool::runJobs() {
    std::unique_lock lock(mutex_);
    for (;;) {
        jobWaits_.wait(lock, [this] { return isEnding_ || !waiting_.empty(); });
        if (isEnding_)
            return;
        Job job = std::move(waiting_.front());
        waiting_.pop_front();
        ++running_;
        lock.unlock();
        try {
            job();
        } catch (...) {
            // The job has told whom it concerns, or there is no memory to do so.
        }
        job = nullptr;
        lock.lock();
        --running_;
        if (running_ == 0 && waiting_.empty())
            idle_.notify_all();
    }
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

}  // namespace Http

#include "ObjectManager/Commands/ParallelWork.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace Commands {

namespace {

class Work {
  public:
    Work(std::size_t count, const std::function<void(std::size_t)>& work)
        : count_(count), work_(work) {}

    void run() noexcept {
        try {
            for (std::size_t number = next_++; number < count_; number = next_++)
                work_(number);
        } catch (...) {
            const std::lock_guard lock(mutex_);
            if (!failure_)
                failure_ = std::current_exception();
            next_ = count_;
        }
    }

    void rethrowFailure() const {
        if (failure_)
            std::rethrow_exception(failure_);
    }

  private:
    std::size_t count_;
    const std::function<void(std::size_t)>& work_;
    std::atomic<std::size_t> next_ = 0;
    std::mutex mutex_;
    std::exception_ptr failure_;  // guarded by mutex_ while threads run
};

// Fewer than `count` if the system allows the process no more: those do all the work.
std::vector<std::thread> startThreads(std::size_t count, Work& work) {
    std::vector<std::thread> threads;
    threads.reserve(count);
    try {
        while (threads.size() < count)
            threads.emplace_back([&work] { work.run(); });
    } catch (const std::exception&) {
        return threads;
    }
    return threads;
}

}  // namespace

void workInParallel(std::size_t count, unsigned jobs,
                    const std::function<void(std::size_t)>& work) {
    Work shared(count, work);
    const std::size_t useful = std::max<std::size_t>(1, std::min<std::size_t>(jobs, count));
    // New threads, since each has its own heap. That of this thread may be fragmented after a large
    // model was loaded; generating documents in it takes several times as long.
    std::vector<std::thread> threads = startThreads(useful, shared);
    if (threads.empty())
        shared.run();
    for (std::thread& thread : threads)
        thread.join();
    shared.rethrowFailure();
}

unsigned defaultJobs() noexcept {
    return std::max(1U, std::thread::hardware_concurrency());
}

}  // namespace Commands

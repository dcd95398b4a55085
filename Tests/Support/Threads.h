#pragma once

#include <barrier>
#include <thread>
#include <vector>

/// Runs `work(index)` on `count` threads that start it at the same moment; returns when all are
/// done.
template <typename Work>
void runOnThreads(int count, const Work& work) {
    std::barrier start(count);
    std::vector<std::jthread> threads;
    threads.reserve(static_cast<std::size_t>(count));
    for (int index = 0; index < count; ++index) {
        threads.emplace_back([&start, &work, index] {
            start.arrive_and_wait();
            work(index);
        });
    }
}

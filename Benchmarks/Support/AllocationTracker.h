#pragma once

#include <cstddef>
#include <thread>

/// Measures how much memory an operation holds at its peak: what operator new and libxml2 allocate,
/// in bytes as the C library hands them out.
///
/// Thread safety: to be used by one thread while no other allocates.
namespace AllocationTracker {

void start() noexcept;
[[nodiscard]] std::size_t stop() noexcept;

/// Runs `operation`, on a thread of its own that has no memory kept from before, and returns its
/// peak.
template <typename Operation>
std::size_t peakOf(const Operation& operation) {
    std::size_t peak = 0;
    std::thread([&] {
        start();
        operation();
        peak = stop();
    }).join();
    return peak;
}

}  // namespace AllocationTracker

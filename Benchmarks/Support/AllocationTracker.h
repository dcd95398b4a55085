#pragma once

#include <cstddef>

/// Measures how much memory an operation holds at its peak: what operator new and libxml2 allocate,
/// in bytes as the C library hands them out.
///
/// Thread safety: belongs to one thread.
namespace AllocationTracker {

/// Runs `operation` and returns its peak.
template <typename Operation>
std::size_t peakOf(const Operation& operation);

void start() noexcept;
[[nodiscard]] std::size_t stop() noexcept;

template <typename Operation>
std::size_t peakOf(const Operation& operation) {
    start();
    operation();
    return stop();
}

}  // namespace AllocationTracker

#pragma once

#include <cstddef>
#include <new>
#include <string_view>
#include <thread>

/// Watches the allocations that go through operator new, in this program and in every library that
/// it loads, and makes chosen ones fail.
namespace AllocationProbe {

/// Makes the `occurrence`th allocation of this thread from now on fail, counted from 1; 0 none.
void failAt(std::size_t occurrence) noexcept;

/// Whether the chosen allocation has failed.
[[nodiscard]] bool hasFailed() noexcept;

/// Counts, from now on, the allocations of `size` bytes by all threads. Each gives way to other
/// threads, so that those that race for one allocation show.
void countAllocationsOf(std::size_t size) noexcept;
[[nodiscard]] std::size_t countedAllocations() noexcept;

/// Looks for `text`, of at most 64 bytes, in all memory that is given back from now on; empty for
/// none.
void lookFor(std::string_view text) noexcept;
/// How many pieces of memory were given back that held the text.
[[nodiscard]] std::size_t remainsFound() noexcept;

/// Runs `operation` with its 1st, 2nd, 3rd … allocation failing until it gets through without a
/// failure, and `check` after each failure. Each time on a thread of its own, which has no memory
/// kept from the time before. Returns how many failures there were.
template <typename Operation, typename Check>
std::size_t failEachAllocation(const Operation& operation, const Check& check) {
    for (std::size_t occurrence = 1;; ++occurrence) {
        bool failed = false;
        std::thread([&] {
            failAt(occurrence);
            try {
                operation();
            } catch (const std::bad_alloc&) {
            }
            failed = hasFailed();
            failAt(0);
        }).join();
        if (!failed)
            return occurrence - 1;
        check();
    }
}

}  // namespace AllocationProbe

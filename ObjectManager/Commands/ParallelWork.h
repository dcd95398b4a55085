#pragma once

#include <cstddef>
#include <functional>

namespace Commands {

/// Calls `work` once with each number below `count`, in `jobs` new threads, or fewer if the system
/// does not allow so many; in the thread of the caller if it allows none.
/// Errors: the first exception of `work`, after all threads have ended. The numbers that were not
/// begun by then are left out.
void workInParallel(std::size_t count, unsigned jobs, const std::function<void(std::size_t)>& work);

/// One job for each processor.
[[nodiscard]] unsigned defaultJobs() noexcept;

}  // namespace Commands

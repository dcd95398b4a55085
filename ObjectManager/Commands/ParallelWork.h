#pragma once

#include <cstddef>
#include <functional>

namespace Commands {

/// Calls `work` with each number from 0 to before `count`, in `jobs` new threads at once, or as
/// many as the system allows; in the caller's if it allows none. Errors: the first exception out of
/// `work`, after all threads have ended; numbers that nobody had begun with are left out then.
void workInParallel(std::size_t count, unsigned jobs, const std::function<void(std::size_t)>& work);

/// As many jobs as the machine runs at once.
[[nodiscard]] unsigned defaultJobs() noexcept;

}  // namespace Commands

#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <mutex>
#include <string>

namespace Commands {

/// Shows on a terminal how far some work is, how fast it goes, and how long it will take; shows
/// nothing elsewhere. The line is gone when this is.
///
/// Thread safety: may be used by several threads at once.
class ProgressBar {
  public:
    /// `total` steps of `unit`, such as "classes", are to be done; shown on `terminal` if it is
    /// one.
    ProgressBar(std::FILE* terminal, std::size_t total, std::string unit);
    ProgressBar(const ProgressBar&) = delete;
    ProgressBar& operator=(const ProgressBar&) = delete;
    ~ProgressBar();

    /// One step is done.
    void step();

    /// The line for `done` of `total` steps after `elapsed`: "[####    ] 1,200/2,400 classes,
    /// 600/s, 2 s left".
    [[nodiscard]] static std::string line(std::size_t done, std::size_t total,
                                          const std::string& unit,
                                          std::chrono::duration<double> elapsed);

  private:
    using Clock = std::chrono::steady_clock;

    void show(Clock::time_point now);

    std::FILE* terminal_;
    bool isShown_;
    std::size_t total_;
    std::string unit_;
    Clock::time_point start_ = Clock::now();
    std::atomic<std::size_t> done_ = 0;
    std::mutex mutex_;
    Clock::time_point lastShown_;  // guarded by mutex_
};

}  // namespace Commands

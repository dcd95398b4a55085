#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdio>
#include <mutex>
#include <string>

namespace Commands {

/// Shows on a terminal how much of some work is done, "1,200 of 2,400 documents", if the work lasts
/// longer than a second. The line is erased at the end. Elsewhere nothing is shown.
///
/// Thread safety: step() may be called by several threads at once.
class ProgressLine {
  public:
    /// `total` steps of `unit`, such as "documents", are to be done. Nothing is shown unless
    /// `output` is a terminal, and not before `delay` has passed.
    ProgressLine(std::FILE* output, std::size_t total, const std::string& unit,
                 std::chrono::milliseconds delay = std::chrono::seconds(1));
    ProgressLine(const ProgressLine&) = delete;
    ProgressLine& operator=(const ProgressLine&) = delete;
    ~ProgressLine();

    /// One step is done.
    void step();

  private:
    using Clock = std::chrono::steady_clock;

    void write(const std::string& text);

    std::FILE* output_;
    bool isTerminal_;
    std::string ofTotal_;  // " of 2,400 documents"
    std::atomic<std::size_t> done_ = 0;
    std::mutex mutex_;
    Clock::time_point nextTime_;  // when to show the line again; guarded by mutex_
    bool isShown_ = false;        // guarded by mutex_
};

}  // namespace Commands

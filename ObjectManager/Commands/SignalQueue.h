#pragma once

#include <chrono>
#include <csignal>
#include <vector>

namespace Commands {

/// While this lives, some signals do nothing to the process: they wait until somebody asks for
/// them. To be made before other threads, which inherit that.
///
/// Thread safety: made, changed and destroyed by one thread; waitFor() may be called by several
/// threads at once, of which one gets a signal.
class SignalQueue {
  public:
    /// Takes `signals` out of the way of the threads.
    explicit SignalQueue(const std::vector<int>& signals);
    SignalQueue(const SignalQueue&) = delete;
    SignalQueue& operator=(const SignalQueue&) = delete;
    /// A signal that still waits has its effect now.
    ~SignalQueue();

    /// A signal that has come or will come within `time`; 0 when none does.
    [[nodiscard]] int waitFor(std::chrono::seconds time) const;

    /// From now on they do to the process what they do to others.
    void letThrough() const;

  private:
    sigset_t signals_ = {};
    sigset_t before_ = {};
};

}  // namespace Commands

#pragma once

#include <chrono>
#include <csignal>

namespace Commands {

/// Takes the signals that steer a service out of the way of its threads, so that one thread waits
/// for them. To be made before other threads, which inherit that.
///
/// Thread safety: made and waited for by one thread.
class SignalQueue {
  public:
    /// SIGTERM, SIGINT and SIGHUP. SIGPIPE is ignored: a client that goes away ends nothing.
    SignalQueue();
    SignalQueue(const SignalQueue&) = delete;
    SignalQueue& operator=(const SignalQueue&) = delete;
    ~SignalQueue();

    /// The next signal that has come or will come within `time`; 0 when none does.
    [[nodiscard]] int waitFor(std::chrono::seconds time) const;

    /// From now on SIGTERM and SIGINT do to the process what they do to others: who presses Ctrl-C
    /// twice does not want to wait. SIGHUP is ignored: what ends reads nothing again.
    void letThrough() const;

  private:
    sigset_t signals_ = {};
    sigset_t before_ = {};
};

}  // namespace Commands

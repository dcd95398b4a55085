#pragma once

#include <atomic>
#include <chrono>
#include <csignal>
#include <string>
#include <vector>

namespace Base {

/// While this lives, some signals do nothing to the process: they wait until waitFor() takes them.
/// Make it before other threads, which inherit that.
///
/// Thread safety: made, changed and destroyed by one thread; waitFor() may be called by several
/// threads at once, of which one gets a signal.
class SignalQueue {
  public:
    /// `signals` are numbers such as SIGTERM.
    explicit SignalQueue(const std::vector<int>& signals);
    SignalQueue(const SignalQueue&) = delete;
    SignalQueue& operator=(const SignalQueue&) = delete;
    /// A signal that still waits has its effect now.
    ~SignalQueue();

    /// A signal that has come or comes within `time`; 0 when none does, and after wake().
    [[nodiscard]] int waitFor(std::chrono::seconds time) const;

    /// Ends a waitFor() that runs, or the next one. May be called by any thread at any time.
    static void wake() noexcept;

    /// From now on the signals have their usual effect again.
    void letThrough() const;

  private:
    sigset_t signals_ = {};
    sigset_t before_ = {};
};

/// While this lives, the signals by which users and systems end a program (SIGINT, SIGTERM, SIGHUP)
/// do not end it: received() tells of them, so that work can be ended properly. A signal that is
/// ignored, as in the background of a shell or under nohup, stays ignored. Make it before other
/// threads, which inherit that.
///
/// Thread safety: made and destroyed by one thread; received() may be called by several threads at
/// once.
class StopSignals {
  public:
    StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;
    /// Signals that received() did not tell of are discarded.
    ~StopSignals();

    /// The number of the signal that was found first; 0 while none has come.
    [[nodiscard]] int received() const;

    /// "SIGINT"; "signal 42" for a signal that this class does not handle.
    [[nodiscard]] static std::string nameOf(int signal);

    /// The exit status of a program that `signal` ended, by the custom of shells.
    [[nodiscard]] static int exitStatus(int signal) noexcept { return 128 + signal; }

  private:
    SignalQueue queue_;
    mutable std::atomic<int> first_ = 0;
};

}  // namespace Base

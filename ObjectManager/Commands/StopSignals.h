#pragma once

#include <atomic>
#include <string>

#include "ObjectManager/Commands/SignalQueue.h"

namespace Commands {

/// While this lives, the signals by which users and systems end a program (SIGINT, SIGTERM, SIGHUP)
/// do not end it: they wait until somebody asks for them, so that work comes to a good end. One of
/// them that is ignored, as in the background of a shell or under nohup, stays ignored. To be made
/// before other threads, which inherit that.
///
/// Thread safety: made and destroyed by one thread; received() may be called by several threads at
/// once.
class StopSignals {
  public:
    StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;
    /// Signals that came and nobody asked for are forgotten.
    ~StopSignals();

    /// The number of the signal that was found first; 0 while none has come.
    [[nodiscard]] int received() const;

    /// "SIGINT"; "signal 42" for one that is not waited for.
    [[nodiscard]] static std::string nameOf(int signal);

    /// The exit status of a program that `signal` ended, by the custom of shells.
    [[nodiscard]] static int exitStatus(int signal) noexcept { return 128 + signal; }

  private:
    SignalQueue queue_;
    mutable std::atomic<int> first_ = 0;
};

}  // namespace Commands

#pragma once

#include <csignal>
#include <string>
#include <vector>

namespace Commands {

/// While this lives, the signals by which users and systems end a program (SIGINT, SIGTERM, SIGHUP)
/// do not end it: they are remembered, so that work comes to a good end. One of them that is
/// ignored, as in the background of a shell or under nohup, stays ignored. One at a time.
///
/// Thread safety: made and destroyed by one thread; received() may be called by several threads at
/// once.
class StopSignals {
  public:
    StopSignals();
    StopSignals(const StopSignals&) = delete;
    StopSignals& operator=(const StopSignals&) = delete;
    ~StopSignals();

    /// The number of the first signal that came; 0 while none has.
    [[nodiscard]] static int received() noexcept;

    /// "SIGINT"; "signal 42" for one that is not remembered.
    [[nodiscard]] static std::string nameOf(int signal);

    /// The exit status of a program that `signal` ended, by the custom of shells.
    [[nodiscard]] static int exitStatus(int signal) noexcept { return 128 + signal; }

  private:
    struct Replaced {
        int signal;
        struct sigaction action;
    };

    std::vector<Replaced> replaced_;
};

}  // namespace Commands

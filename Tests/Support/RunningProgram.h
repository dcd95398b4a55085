#pragma once

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

#include "Tests/Support/ProgramRun.h"
#include "Tests/Support/TemporaryDirectory.h"

/// A program in a process of its own, without standard input and with the signals as they are by
/// default.
class RunningProgram {
  public:
    /// Starts the program of that path, or of that name in one of the directories for programs.
    /// `prepare` runs in the new process, before the program does.
    explicit RunningProgram(const std::vector<std::string>& command,
                            const std::function<void()>& prepare = {});
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;
    /// Ends the program if it runs.
    ~RunningProgram();

    void sendSignal(int signal) const;

    /// The same to all processes of a program that `prepare` has given a group of its own.
    void sendSignalToGroup(int signal) const;

    /// Stops the program and waits until it stands still, or has ended; SIGCONT lets it go on.
    void pause() const;

    [[nodiscard]] bool isRunning() const;

    /// A program that runs longer than anybody is patient is killed, and its end tells so.
    [[nodiscard]] ProgramRun waitForEnd();

  private:
    [[nodiscard]] std::string waitForStatus();

    TemporaryDirectory directory_;
    pid_t process_ = -1;
};

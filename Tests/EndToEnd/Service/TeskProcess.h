#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <vector>

#include "Tests/Support/TemporaryDirectory.h"

/// The program `tesk` in a process of its own. Whatever it takes longer for than a minute fails the
/// test.
///
/// Thread safety: belongs to one thread.
class TeskProcess {
  public:
    /// Starts it. `input` is what it finds on its standard input.
    /// Errors: std::system_error.
    explicit TeskProcess(const std::vector<std::string>& arguments, std::string_view input = "",
                         const std::filesystem::path& program = TESK_PROGRAM);
    TeskProcess(const TeskProcess&) = delete;
    TeskProcess& operator=(const TeskProcess&) = delete;
    /// Kills it if it still runs.
    ~TeskProcess();

    [[nodiscard]] pid_t id() const noexcept { return id_; }

    /// The next line of its standard output, without the end of the line.
    [[nodiscard]] std::string readLine();

    /// What else comes of its standard output until it closes that.
    [[nodiscard]] std::string readRest();

    /// What it has written to its standard error, which the log is part of.
    [[nodiscard]] std::string log() const;

    /// Returns as soon as the log holds that text so often.
    void waitForLog(std::string_view text, int times = 1) const;

    void signal(int signal) const;

    [[nodiscard]] bool isRunning();

    /// Waits until it has ended. Returns its exit status, or the negative number of the signal that
    /// has ended it.
    [[nodiscard]] int wait();

  private:
    void start(const std::vector<std::string>& arguments, const std::filesystem::path& program);
    [[nodiscard]] bool hasEndedWithin(int milliseconds);
    [[nodiscard]] bool readMore();

    TemporaryDirectory directory_;
    pid_t id_ = -1;
    int handle_ = -1;  // becomes readable when the process ends
    int output_ = -1;
    std::string unread_;
    bool hasEnded_ = false;
    int status_ = 0;
};

#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <sys/types.h>

/// A process that runs at a terminal of its own, which is its standard input, output and error, and
/// the person who sits there.
class PseudoTerminal {
  public:
    /// Starts a process that does `work` and ends with the status that it returns.
    explicit PseudoTerminal(const std::function<int()>& work);
    PseudoTerminal(const PseudoTerminal&) = delete;
    PseudoTerminal& operator=(const PseudoTerminal&) = delete;
    /// Ends the process if it runs.
    ~PseudoTerminal();

    /// Waits until `text` is shown. Returns whether it was while anybody is patient.
    [[nodiscard]] bool waitFor(std::string_view text);

    /// The same, and then waits until the process sleeps, so that it gets what is typed and the
    /// signals that are sent from now on while it reads.
    [[nodiscard]] bool waitForPrompt(std::string_view text);

    void type(std::string_view text) const;
    void sendSignal(int signal) const;

    /// Whether the terminal shows what is typed.
    [[nodiscard]] bool echoes() const;

    /// Waits until the process has ended. Returns how: "status 0", "signal 2".
    [[nodiscard]] std::string waitForEnd();

    /// All that was shown since the beginning, with "\r\n" at the end of lines.
    [[nodiscard]] const std::string& shown() const noexcept { return shown_; }

  private:
    // Reads what is shown next. Returns whether there was something.
    bool readMore();

    int terminal_ = -1;
    // Held open, so that the terminal keeps its settings when the process has ended.
    int otherSide_ = -1;
    pid_t process_ = -1;
    std::string shown_;
    std::size_t searched_ = 0;
};

#include "ObjectManager/Commands/Passwd/HiddenInput.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <optional>
#include <poll.h>
#include <sys/signalfd.h>
#include <termios.h>
#include <unistd.h>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

using Security::SecretText;

// More than any password has. What a line has beyond it is thrown away.
constexpr std::size_t kBufferSize = 1024;

void require(bool done) {
    if (!done) {
        throw TeskBaseException("Commands::readHidden",
                                "The password cannot be read: " + TSKString(std::strerror(errno)),
                                CIM_ERR_FAILED);
    }
}

// While this lives, signals that would end or stop the process wait here to be taken.
class HeldSignals {
  public:
    HeldSignals() {
        sigset_t signals;
        sigemptyset(&signals);
        for (const int signal : {SIGHUP, SIGINT, SIGQUIT, SIGTERM, SIGTSTP})
            sigaddset(&signals, signal);
        descriptor_ = signalfd(-1, &signals, SFD_CLOEXEC);
        require(descriptor_ >= 0);
        pthread_sigmask(SIG_BLOCK, &signals, &previous_);
    }
    HeldSignals(const HeldSignals&) = delete;
    HeldSignals& operator=(const HeldSignals&) = delete;
    ~HeldSignals() {
        pthread_sigmask(SIG_SETMASK, &previous_, nullptr);
        close(descriptor_);
    }

    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

    // The number of the signal that came.
    [[nodiscard]] int take() const {
        signalfd_siginfo information = {};
        require(read(descriptor_, &information, sizeof information) == sizeof information);
        return static_cast<int>(information.ssi_signo);
    }

  private:
    int descriptor_ = -1;
    sigset_t previous_ = {};
};

// While this lives, the terminal gives whole lines and does not show them.
class EchoOff {
  public:
    explicit EchoOff(int terminal) : terminal_(terminal) {
        require(tcgetattr(terminal_, &previous_) == 0);
        termios hidden = previous_;
        hidden.c_lflag |= ICANON;
        hidden.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL);
        require(tcsetattr(terminal_, TCSAFLUSH, &hidden) == 0);
    }
    EchoOff(const EchoOff&) = delete;
    EchoOff& operator=(const EchoOff&) = delete;
    ~EchoOff() { tcsetattr(terminal_, TCSAFLUSH, &previous_); }

  private:
    int terminal_;
    termios previous_ = {};
};

void show(int prompts, std::string_view text) {
    // Who cannot be prompted can still type.
    [[maybe_unused]] const ssize_t count = write(prompts, text.data(), text.size());
}

// Whether there is a line; else there is a signal.
bool waitForLine(int terminal, const HeldSignals& signals) {
    std::array<pollfd, 2> files = {{
        {.fd = terminal, .events = POLLIN, .revents = 0},
        {.fd = signals.descriptor(), .events = POLLIN, .revents = 0},
    }};
    int count = 0;
    do {
        count = poll(files.data(), files.size(), -1);
    } while (count < 0 && errno == EINTR);
    require(count > 0);
    return files[1].revents == 0;
}

SecretText readLine(int terminal) {
    std::array<char, kBufferSize> buffer = {};
    const ssize_t count = read(terminal, buffer.data(), buffer.size());
    require(count >= 0);
    std::string_view line(buffer.data(), static_cast<std::size_t>(count));
    if (line.ends_with('\n'))
        line.remove_suffix(1);
    SecretText text(line);
    explicit_bzero(buffer.data(), buffer.size());
    return text;
}

// One attempt: the line, or nothing and the signal that came instead.
std::optional<SecretText> tryToRead(int input, int prompts, std::string_view prompt, int& signal) {
    const HeldSignals signals;
    const EchoOff echoOff(input);
    show(prompts, prompt);
    std::optional<SecretText> line;
    if (waitForLine(input, signals))
        line = readLine(input);
    else
        signal = signals.take();
    // The one that was typed is not shown either.
    show(prompts, "\n");
    return line;
}

}  // namespace

SecretText readHidden(int input, int prompts, std::string_view prompt) {
    for (;;) {
        int signal = 0;
        std::optional<SecretText> line = tryToRead(input, prompts, prompt, signal);
        if (line)
            return std::move(*line);
        static_cast<void>(raise(signal));
    }
}

}  // namespace Commands

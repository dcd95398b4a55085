#include "Tests/Support/PseudoTerminal.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>
#include <utility>
#include <utmp.h>

#include "Tests/Support/WaitUntil.h"

namespace {

void require(bool done) {
    if (!done)
        throw std::system_error(errno, std::generic_category(), "PseudoTerminal");
}

// The state of a process as proc(5) shows it: S while it sleeps, R while it runs.
char stateOf(pid_t process) {
    std::ifstream file("/proc/" + std::to_string(process) + "/stat");
    std::string text;
    std::getline(file, text);
    const std::size_t endOfName = text.rfind(") ");
    return endOfName == std::string::npos ? '\0' : text.at(endOfName + 2);
}

}  // namespace

PseudoTerminal::PseudoTerminal(const std::function<int()>& work) {
    require(openpty(&terminal_, &otherSide_, nullptr, nullptr, nullptr) == 0);
    // Else the new process would show again what this one has not written yet.
    std::fflush(nullptr);
    process_ = fork();
    require(process_ >= 0);
    if (process_ == 0) {
        close(terminal_);
        login_tty(otherSide_);
        _exit(work());
    }
}

PseudoTerminal::~PseudoTerminal() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
    close(otherSide_);
    close(terminal_);
}

bool PseudoTerminal::waitFor(std::string_view text) {
    for (;;) {
        const std::size_t position = shown_.find(text, searched_);
        if (position != std::string::npos) {
            searched_ = position + text.size();
            return true;
        }
        if (!readMore())
            return false;
    }
}

bool PseudoTerminal::waitForPrompt(std::string_view text) {
    return waitFor(text) && waitUntil([this] { return stateOf(process_) == 'S'; });
}

void PseudoTerminal::type(std::string_view text) const {
    require(write(terminal_, text.data(), text.size()) == static_cast<ssize_t>(text.size()));
}

void PseudoTerminal::sendSignal(int signal) const {
    require(kill(process_, signal) == 0);
}

bool PseudoTerminal::echoes() const {
    termios settings = {};
    require(tcgetattr(otherSide_, &settings) == 0);
    return (settings.c_lflag & ECHO) != 0;
}

std::string PseudoTerminal::waitForEnd() {
    int status = 0;
    require(waitpid(std::exchange(process_, -1), &status, 0) > 0);
    // What is still on its way; nothing more comes.
    fcntl(terminal_, F_SETFL, O_NONBLOCK);
    std::array<char, 4096> buffer = {};
    for (ssize_t count = 1; count > 0;) {
        count = read(terminal_, buffer.data(), buffer.size());
        if (count > 0)
            shown_.append(buffer.data(), static_cast<std::size_t>(count));
    }
    return WIFSIGNALED(status) ? "signal " + std::to_string(WTERMSIG(status))
                               : "status " + std::to_string(WEXITSTATUS(status));
}

bool PseudoTerminal::readMore() {
    pollfd file = {.fd = terminal_, .events = POLLIN, .revents = 0};
    if (poll(&file, 1, kPatienceMilliseconds) != 1)
        return false;
    std::array<char, 4096> buffer = {};
    const ssize_t count = read(terminal_, buffer.data(), buffer.size());
    if (count <= 0)
        return false;
    shown_.append(buffer.data(), static_cast<std::size_t>(count));
    return true;
}

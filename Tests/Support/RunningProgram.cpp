#include "Tests/Support/RunningProgram.h"

#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/WaitUntil.h"

namespace {

constexpr int kNotStarted = 127;

void require(bool done) {
    if (!done)
        throw std::system_error(errno, std::generic_category(), "RunningProgram");
}

void redirect(int descriptor, const std::string& file, int flags) {
    const int opened = open(file.c_str(), flags | O_CLOEXEC, 0600);
    if (opened < 0 || dup2(opened, descriptor) < 0)
        _exit(kNotStarted);
}

void resetSignals() {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
        (void)std::signal(signal, SIG_DFL);
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

}  // namespace

RunningProgram::RunningProgram(const std::vector<std::string>& command,
                               const std::function<void()>& prepare) {
    const std::string output = directory_ / "output";
    const std::string errors = directory_ / "errors";
    std::vector<char*> arguments;
    for (const std::string& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    process_ = fork();
    require(process_ >= 0);
    if (process_ > 0)
        return;
    redirect(STDIN_FILENO, "/dev/null", O_RDONLY);
    redirect(STDOUT_FILENO, output, O_WRONLY | O_CREAT);
    redirect(STDERR_FILENO, errors, O_WRONLY | O_CREAT);
    resetSignals();
    if (prepare)
        prepare();
    execvp(arguments.front(), arguments.data());
    _exit(kNotStarted);
}

RunningProgram::~RunningProgram() {
    if (process_ > 0) {
        kill(process_, SIGKILL);
        waitpid(process_, nullptr, 0);
    }
}

void RunningProgram::sendSignal(int signal) const {
    require(kill(process_, signal) == 0);
}

void RunningProgram::sendSignalToGroup(int signal) const {
    require(kill(-process_, signal) == 0);
}

void RunningProgram::pause() const {
    sendSignal(SIGSTOP);
    siginfo_t stopped = {};
    // One that has ended does not keep anybody waiting either.
    require(waitid(P_PID, static_cast<id_t>(process_), &stopped, WSTOPPED | WEXITED | WNOWAIT) ==
            0);
}

bool RunningProgram::isRunning() const {
    siginfo_t ended = {};
    require(waitid(P_PID, static_cast<id_t>(process_), &ended, WEXITED | WNOHANG | WNOWAIT) == 0);
    return ended.si_pid == 0;
}

std::string RunningProgram::waitForStatus() {
    // By its number: the header of glibc 2.36 declares pidfd_open in a way that C++ cannot link.
    const int descriptor = static_cast<int>(syscall(SYS_pidfd_open, process_, 0));
    require(descriptor >= 0);
    pollfd ended = {.fd = descriptor, .events = POLLIN, .revents = 0};
    const bool hasEnded = poll(&ended, 1, kPatienceMilliseconds) == 1;
    close(descriptor);
    if (!hasEnded)
        kill(process_, SIGKILL);
    int status = 0;
    require(waitpid(process_, &status, 0) == process_);
    process_ = -1;
    if (!hasEnded)
        return "not ended in time";
    return WIFEXITED(status) ? "status " + std::to_string(WEXITSTATUS(status))
                             : "signal " + std::to_string(WTERMSIG(status));
}

ProgramRun RunningProgram::waitForEnd() {
    ProgramRun run;
    run.end = waitForStatus();
    run.output = contentOfFile(directory_ / "output");
    run.errors = contentOfFile(directory_ / "errors");
    return run;
}

#include "Tests/EndToEnd/Service/TeskProcess.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <spawn.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

#include "Tests/ObjectManager/Security/Files.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/WaitUntil.h"

namespace {

void require(int error, const char* what) {
    if (error != 0)
        throw std::system_error(error, std::generic_category(), what);
}

// Whether the descriptor can be read, or is at its end, in time.
bool waitFor(int descriptor, int milliseconds) {
    pollfd waited{.fd = descriptor, .events = POLLIN, .revents = 0};
    int result = 0;
    do {
        result = poll(&waited, 1, milliseconds);
    } while (result < 0 && errno == EINTR);
    return result == 1;
}

// What a new process finds in the place of standard input, output and error.
class Streams {
  public:
    Streams(const std::filesystem::path& input, int output, const std::filesystem::path& error) {
        require(posix_spawn_file_actions_init(&actions_), "posix_spawn_file_actions_init");
        open(STDIN_FILENO, input, O_RDONLY);
        require(posix_spawn_file_actions_adddup2(&actions_, output, STDOUT_FILENO), "adddup2");
        open(STDERR_FILENO, error, O_WRONLY | O_CREAT | O_APPEND);
    }
    Streams(const Streams&) = delete;
    Streams& operator=(const Streams&) = delete;
    ~Streams() { posix_spawn_file_actions_destroy(&actions_); }

    [[nodiscard]] const posix_spawn_file_actions_t* actions() const { return &actions_; }

  private:
    void open(int descriptor, const std::filesystem::path& file, int flags) {
        require(
            posix_spawn_file_actions_addopen(&actions_, descriptor, file.c_str(), flags, S_IRWXU),
            "addopen");
    }

    posix_spawn_file_actions_t actions_{};
};

// Signals as they are in a terminal: who runs the tests in the background may ignore some.
class UsualSignals {
  public:
    UsualSignals() {
        require(posix_spawnattr_init(&attributes_), "posix_spawnattr_init");
        sigset_t signals;
        sigemptyset(&signals);
        require(posix_spawnattr_setsigmask(&attributes_, &signals), "setsigmask");
        for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGPIPE})
            sigaddset(&signals, signal);
        require(posix_spawnattr_setsigdefault(&attributes_, &signals), "setsigdefault");
        require(
            posix_spawnattr_setflags(&attributes_, POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF),
            "setflags");
    }
    UsualSignals(const UsualSignals&) = delete;
    UsualSignals& operator=(const UsualSignals&) = delete;
    ~UsualSignals() { posix_spawnattr_destroy(&attributes_); }

    [[nodiscard]] const posix_spawnattr_t* attributes() const { return &attributes_; }

  private:
    posix_spawnattr_t attributes_{};
};

int count(std::string_view text, std::string_view part) {
    int found = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size()))
        ++found;
    return found;
}

}  // namespace

TeskProcess::TeskProcess(const std::vector<std::string>& arguments, std::string_view input,
                         const std::filesystem::path& program) {
    directory_.write("input", input);
    start(arguments, program);
}

TeskProcess::~TeskProcess() {
    if (!hasEnded_ && id_ > 0) {
        kill(id_, SIGKILL);
        waitpid(id_, nullptr, 0);
    }
    for (const int descriptor : {handle_, output_}) {
        if (descriptor >= 0)
            close(descriptor);
    }
}

void TeskProcess::start(const std::vector<std::string>& arguments,
                        const std::filesystem::path& program) {
    std::array<int, 2> pipe{};
    require(pipe2(pipe.data(), O_CLOEXEC) == 0 ? 0 : errno, "pipe2");
    output_ = pipe[0];
    const Streams streams(directory_ / "input", pipe[1], directory_ / "log");
    const UsualSignals signals;
    std::vector<std::string> words = arguments;
    words.insert(words.begin(), program);
    std::vector<char*> pointers;
    pointers.reserve(words.size() + 1);
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    const int error = posix_spawn(&id_, program.c_str(), streams.actions(), signals.attributes(),
                                  pointers.data(), environ);
    close(pipe[1]);
    require(error, program.c_str());
    // The declaration in <sys/pidfd.h> of Debian 12 is one of C alone.
    handle_ = static_cast<int>(syscall(SYS_pidfd_open, id_, 0));
    require(handle_ >= 0 ? 0 : errno, "pidfd_open");
}

std::string TeskProcess::readLine() {
    while (unread_.find('\n') == std::string::npos && readMore()) {
    }
    const std::size_t end = unread_.find('\n');
    EXPECT_NE(end, std::string::npos) << "no line was written, but:\n" << unread_ << log();
    std::string line = unread_.substr(0, end);
    unread_.erase(0, end == std::string::npos ? end : end + 1);
    return line;
}

std::string TeskProcess::readRest() {
    while (readMore()) {
    }
    return std::exchange(unread_, {});
}

bool TeskProcess::readMore() {
    if (!waitFor(output_, kPatienceMilliseconds)) {
        ADD_FAILURE() << "nothing was written for " << kPatience.count() << " minutes";
        return false;
    }
    std::array<char, 4096> buffer{};
    const ssize_t length = read(output_, buffer.data(), buffer.size());
    if (length > 0)
        unread_.append(buffer.data(), static_cast<std::size_t>(length));
    return length > 0;
}

std::string TeskProcess::log() const {
    return contentOfFile(directory_ / "log");
}

void TeskProcess::waitForLog(std::string_view text, int times) const {
    EXPECT_TRUE(waitUntil([&] { return count(log(), text) >= times; }))
        << "the log does not come to say \"" << text << "\", but:\n"
        << log();
}

void TeskProcess::signal(int signal) const {
    EXPECT_EQ(kill(id_, signal), 0);
}

bool TeskProcess::isRunning() {
    return !hasEndedWithin(0);
}

int TeskProcess::wait() {
    if (!hasEndedWithin(kPatienceMilliseconds)) {
        ADD_FAILURE() << "the process does not end; its log is:\n" << log();
        kill(id_, SIGKILL);
        static_cast<void>(hasEndedWithin(kPatienceMilliseconds));
    }
    return status_;
}

bool TeskProcess::hasEndedWithin(int milliseconds) {
    if (hasEnded_ || !waitFor(handle_, milliseconds))
        return hasEnded_;
    int status = 0;
    hasEnded_ = waitpid(id_, &status, 0) == id_;
    status_ = WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
    return hasEnded_;
}

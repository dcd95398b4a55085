#include "ObjectManager/Base/Signals.h"

#include <cerrno>
#include <ctime>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace Base {

namespace {

constexpr std::pair<int, const char*> kSignals[] = {
    {SIGINT, "SIGINT"}, {SIGTERM, "SIGTERM"}, {SIGHUP, "SIGHUP"}};

bool isIgnored(int signal) noexcept {
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Without those that are ignored: a blocked signal would wait all the same.
std::vector<int> signalsThatEnd() {
    std::vector<int> signals;
    for (const auto& [signal, name] : kSignals) {
        if (!isIgnored(signal))
            signals.push_back(signal);
    }
    return signals;
}

constexpr std::chrono::seconds kAtOnce(0);

// Ends a wait. By itself the signal does nothing to a process, so it does no harm when it comes too
// late.
constexpr int kWake = SIGURG;

}  // namespace

SignalQueue::SignalQueue(const std::vector<int>& signals) {
    sigemptyset(&signals_);
    sigaddset(&signals_, kWake);
    for (const int signal : signals)
        sigaddset(&signals_, signal);
    pthread_sigmask(SIG_BLOCK, &signals_, &before_);
}

SignalQueue::~SignalQueue() {
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

int SignalQueue::waitFor(std::chrono::seconds time) const {
    const timespec timeout = {.tv_sec = time.count(), .tv_nsec = 0};
    const int signal = sigtimedwait(&signals_, nullptr, &timeout);
    if (signal >= 0)
        return signal == kWake ? 0 : signal;
    // Interrupted when the process was stopped and goes on.
    if (errno == EAGAIN || errno == EINTR)
        return 0;
    throw std::system_error(errno, std::generic_category(), "sigtimedwait");
}

void SignalQueue::wake() noexcept {
    (void)kill(getpid(), kWake);
}

void SignalQueue::letThrough() const {
    pthread_sigmask(SIG_UNBLOCK, &signals_, nullptr);
}

StopSignals::StopSignals() : queue_(signalsThatEnd()) {}

StopSignals::~StopSignals() {
    while (queue_.waitFor(kAtOnce) != 0) {
    }
}

int StopSignals::received() const {
    if (first_ == 0) {
        int none = 0;
        first_.compare_exchange_strong(none, queue_.waitFor(kAtOnce));
    }
    return first_;
}

std::string StopSignals::nameOf(int signal) {
    for (const auto& [number, name] : kSignals) {
        if (number == signal)
            return name;
    }
    return "signal " + std::to_string(signal);
}

}  // namespace Base

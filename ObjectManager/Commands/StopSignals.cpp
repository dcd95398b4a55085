#include "ObjectManager/Commands/StopSignals.h"

#include <ctime>
#include <utility>

namespace Commands {

namespace {

constexpr std::pair<int, const char*> kSignals[] = {
    {SIGINT, "SIGINT"}, {SIGTERM, "SIGTERM"}, {SIGHUP, "SIGHUP"}};

bool isIgnored(int signal) noexcept {
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// One of the blocked `signals` that has come, which is taken; none when not positive.
int take(const sigset_t& signals) noexcept {
    const timespec noTime = {};
    return sigtimedwait(&signals, nullptr, &noTime);
}

}  // namespace

StopSignals::StopSignals() {
    sigemptyset(&signals_);
    for (const auto& [signal, name] : kSignals) {
        // A signal that is blocked waits even where it is ignored.
        if (!isIgnored(signal))
            sigaddset(&signals_, signal);
    }
    pthread_sigmask(SIG_BLOCK, &signals_, &before_);
}

StopSignals::~StopSignals() {
    while (take(signals_) > 0) {
    }
    pthread_sigmask(SIG_SETMASK, &before_, nullptr);
}

int StopSignals::received() const noexcept {
    if (first_ == 0) {
        const int signal = take(signals_);
        int none = 0;
        if (signal > 0)
            first_.compare_exchange_strong(none, signal);
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

}  // namespace Commands

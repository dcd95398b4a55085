#include "ObjectManager/Commands/StopSignals.h"

#include <chrono>
#include <csignal>
#include <utility>
#include <vector>

namespace Commands {

namespace {

constexpr std::pair<int, const char*> kSignals[] = {
    {SIGINT, "SIGINT"}, {SIGTERM, "SIGTERM"}, {SIGHUP, "SIGHUP"}};

bool isIgnored(int signal) noexcept {
    struct sigaction action = {};
    return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// A signal that is blocked waits even where it is ignored.
std::vector<int> signalsThatEnd() {
    std::vector<int> signals;
    for (const auto& [signal, name] : kSignals) {
        if (!isIgnored(signal))
            signals.push_back(signal);
    }
    return signals;
}

constexpr std::chrono::seconds kAtOnce(0);

}  // namespace

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

}  // namespace Commands

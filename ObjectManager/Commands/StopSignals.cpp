#include "ObjectManager/Commands/StopSignals.h"

#include <atomic>
#include <utility>

namespace Commands {

namespace {

constexpr std::pair<int, const char*> kSignals[] = {
    {SIGINT, "SIGINT"}, {SIGTERM, "SIGTERM"}, {SIGHUP, "SIGHUP"}};

std::atomic<int> firstSignal = 0;
static_assert(std::atomic<int>::is_always_lock_free, "a signal handler may not wait for a lock");

extern "C" void rememberSignal(int signal) {
    int none = 0;
    firstSignal.compare_exchange_strong(none, signal);
}

}  // namespace

StopSignals::StopSignals() {
    firstSignal = 0;
    for (const auto& [signal, name] : kSignals) {
        struct sigaction action = {};
        action.sa_handler = rememberSignal;
        // Reads and writes that are under way go on; work is stopped between two documents.
        action.sa_flags = SA_RESTART;
        struct sigaction before = {};
        sigaction(signal, nullptr, &before);
        if (before.sa_handler == SIG_IGN)
            continue;
        sigaction(signal, &action, nullptr);
        replaced_.push_back({signal, before});
    }
}

StopSignals::~StopSignals() {
    for (const Replaced& replaced : replaced_)
        sigaction(replaced.signal, &replaced.action, nullptr);
}

int StopSignals::received() noexcept {
    return firstSignal;
}

std::string StopSignals::nameOf(int signal) {
    for (const auto& [number, name] : kSignals) {
        if (number == signal)
            return name;
    }
    return "signal " + std::to_string(signal);
}

}  // namespace Commands

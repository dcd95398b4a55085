#include "Tests/Support/HostCalls.h"

namespace HostCalls {

namespace {

thread_local std::size_t callsUntilFailure = 0;
thread_local bool counting = false;
thread_local std::size_t counted = 0;

void updateWatched() noexcept {
    watched = callsUntilFailure != 0 || counting;
}

}  // namespace

constinit thread_local bool watched = false;

void noteWatched(const char* operation) {
    ++counted;
    if (callsUntilFailure != 0 && --callsUntilFailure == 0) {
        updateWatched();
        throw Failure(operation);
    }
}

void failAt(std::size_t occurrence) noexcept {
    callsUntilFailure = occurrence;
    updateWatched();
}

void startCounting() noexcept {
    counted = 0;
    counting = true;
    updateWatched();
}

std::size_t stopCounting() noexcept {
    counting = false;
    updateWatched();
    return counted;
}

}  // namespace HostCalls

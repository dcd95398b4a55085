#include "Tests/Support/HostCalls.h"

#include <algorithm>
#include <iterator>

namespace HostCalls {

namespace {

thread_local std::size_t callsUntilFailure = 0;
thread_local Recording* activeRecording = nullptr;

void updateWatched() noexcept {
    watched = callsUntilFailure != 0 || activeRecording != nullptr;
}

}  // namespace

constinit thread_local bool watched = false;

void noteWatched(const char* operation, const std::string& argument) {
    if (activeRecording != nullptr)
        activeRecording->calls_.push_back(operation + argument);
    if (callsUntilFailure != 0 && --callsUntilFailure == 0) {
        updateWatched();
        throw Failure(operation);
    }
}

void failAt(std::size_t occurrence) noexcept {
    callsUntilFailure = occurrence;
    updateWatched();
}

Recording::Recording() {
    activeRecording = this;
    updateWatched();
}

Recording::~Recording() {
    activeRecording = nullptr;
    updateWatched();
}

std::vector<std::string> Recording::callsOf(const std::string& operation) const {
    std::vector<std::string> found;
    std::copy_if(calls_.begin(), calls_.end(), std::back_inserter(found),
                 [&](const std::string& call) {
                     return call == operation || call.starts_with(operation + " ");
                 });
    return found;
}

}  // namespace HostCalls

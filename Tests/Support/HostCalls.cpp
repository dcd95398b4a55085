#include "Tests/Support/HostCalls.h"

#include <algorithm>
#include <iterator>

namespace HostCalls {

namespace {

thread_local std::size_t callsUntilFailure = 0;
thread_local Recording* activeRecording = nullptr;

void failIfChosen(const char* operation) {
    if (callsUntilFailure != 0 && --callsUntilFailure == 0)
        throw Failure(operation);
}

}  // namespace

void note(const char* operation) {
    if (activeRecording != nullptr)
        activeRecording->calls_.emplace_back(operation);
    failIfChosen(operation);
}

void note(const char* operation, const std::string& argument) {
    if (activeRecording != nullptr)
        activeRecording->calls_.push_back(std::string(operation) + " " + argument);
    failIfChosen(operation);
}

void note(const char* operation, const char* argument, bool flag) {
    if (activeRecording != nullptr)
        activeRecording->calls_.push_back(std::string(operation) + " " + argument +
                                          (flag ? " true" : " false"));
    failIfChosen(operation);
}

void failAt(std::size_t occurrence) noexcept {
    callsUntilFailure = occurrence;
}

Recording::Recording() {
    activeRecording = this;
}

Recording::~Recording() {
    activeRecording = nullptr;
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

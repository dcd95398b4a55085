#pragma once

#include <chrono>
#include <thread>

/// How long a test waits for what must come: so long that only what never comes is missed, on a
/// busy machine and under sanitizers, too.
inline constexpr std::chrono::minutes kPatience(5);

/// The same for poll(2).
inline constexpr int kPatienceMilliseconds = std::chrono::milliseconds(kPatience).count();

/// Whether `condition()` comes to hold while anybody is patient.
template <typename Condition>
[[nodiscard]] bool waitUntil(const Condition& condition) {
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (!condition()) {
        if (std::chrono::steady_clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

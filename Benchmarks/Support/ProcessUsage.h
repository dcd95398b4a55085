#pragma once

#include <fstream>
#include <string>
#include <sys/resource.h>

// What this process has used so far.

/// Microseconds of processor time.
inline long processorTime() {
    const auto microsecondsOf = [](const timeval& time) {
        constexpr long kMicrosecondsInSecond = 1'000'000;
        return time.tv_sec * kMicrosecondsInSecond + time.tv_usec;
    };
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return microsecondsOf(usage.ru_utime) + microsecondsOf(usage.ru_stime);
}

/// Kilobytes of memory at the peak. Not what getrusage says, which counts the process that started
/// this one.
inline long peakMemory() {
    std::ifstream status("/proc/self/status");
    std::string word;
    while (status >> word) {
        long kilobytes = 0;
        if (word == "VmHWM:" && status >> kilobytes)
            return kilobytes;
    }
    return 0;
}

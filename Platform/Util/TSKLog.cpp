#include "Platform/Util/TSKLog.h"

#include <atomic>
#include <cstdio>

#include "Platform/Internal/TSKInstalled.h"
#include "Platform/Util/TSKStreamLogSink.h"

namespace {

std::atomic<TeskTraceLog::Severity> currentLevel = TeskTraceLog::SeverityInformation;
constinit TSKInstalled<TSKLogSink> installedSink;

void writeToSink(const TSKLogEntry& entry) {
    if (const TSKSmrPtr<TSKLogSink> sink = installedSink.get())
        sink->write(entry);
    else
        TSKStreamLogSink(stderr).write(entry);
}

}  // namespace

const int TSKLog::CIMOMLOG = 1;

void TSKLog::log(const TSKString& component, const TSKString& message,
                 TeskTraceLog::Severity severity, TeskTraceLog::Verbosity verbosity,
                 int /*reserved*/, int channel) noexcept {
    if (!isEnabled(severity))
        return;
    try {
        writeToSink({.component = component,
                     .message = message,
                     .severity = severity,
                     .verbosity = verbosity,
                     .channel = channel});
    } catch (...) {
        // The work that the line tells of goes on without it.
    }
}

bool TSKLog::isEnabled(TeskTraceLog::Severity severity) noexcept {
    return severity > TeskTraceLog::SeverityOff && severity <= getLevel();
}

void TSKLog::setLevel(TeskTraceLog::Severity level) noexcept {
    currentLevel = level;
}

TeskTraceLog::Severity TSKLog::getLevel() noexcept {
    return currentLevel;
}

TSKSmrPtr<TSKLogSink> TSKLog::setSink(TSKSmrPtr<TSKLogSink> sink) {
    return installedSink.install(std::move(sink));
}

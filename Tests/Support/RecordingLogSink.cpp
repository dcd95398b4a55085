#include "Tests/Support/RecordingLogSink.h"

#include <gtest/gtest.h>

void RecordingLogSink::write(const TSKLogEntry& entry) {
    EXPECT_EQ(entry.channel, TSKLog::CIMOMLOG);
    TSKString line = entry.component;
    line += TSKString().sprintf("|%d|%d|", entry.severity, entry.verbosity);
    line += entry.message;
    const std::lock_guard lock(mutex_);
    lines_.emplace_back(line.data());
}

std::vector<std::string> RecordingLogSink::lines() const {
    const std::lock_guard lock(mutex_);
    return lines_;
}

LogRecording::LogRecording(TeskTraceLog::Severity level)
    : sink_(TSKSmrPtr<RecordingLogSink>::make()),
      previousSink_(TSKLog::setSink(sink_)),
      previousLevel_(TSKLog::getLevel()) {
    TSKLog::setLevel(level);
}

LogRecording::~LogRecording() {
    TSKLog::setSink(previousSink_);
    TSKLog::setLevel(previousLevel_);
}

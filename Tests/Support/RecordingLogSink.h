#pragma once

#include <mutex>
#include <string>
#include <vector>

#include "Platform/Util/TSKLog.h"

/// Keeps log lines as "COMPONENT|SEVERITY|VERBOSITY|MESSAGE" texts.
class RecordingLogSink : public TSKLogSink {
  public:
    void write(const TSKLogEntry& entry) override;

    [[nodiscard]] std::vector<std::string> lines() const;

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> lines_;  // guarded by mutex_
};

/// Records the log while it lives, then puts things back as they were.
class LogRecording {
  public:
    explicit LogRecording(TeskTraceLog::Severity level = TeskTraceLog::SeverityTrace);
    LogRecording(const LogRecording&) = delete;
    LogRecording& operator=(const LogRecording&) = delete;
    ~LogRecording();

    [[nodiscard]] std::vector<std::string> lines() const { return sink_->lines(); }

  private:
    TSKSmrPtr<RecordingLogSink> sink_;
    TSKSmrPtr<TSKLogSink> previousSink_;
    TeskTraceLog::Severity previousLevel_;
};

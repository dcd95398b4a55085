#include <atomic>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "Platform/Util/TSKLog.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/Threads.h"

namespace {

using Lines = std::vector<std::string>;

void logLine(const TSKString& message, TeskTraceLog::Severity severity) {
    TSKLog::log("Component", message, severity, TeskTraceLog::VerbosityNormal, 0, TSKLog::CIMOMLOG);
}

TEST(TSKLog, HandsLinesToTheSink) {
    const LogRecording log;
    logLine("a failure", TeskTraceLog::SeverityError);
    TSKLog::log("Other", "a detail", static_cast<TeskTraceLog::Severity>(4),
                static_cast<TeskTraceLog::Verbosity>(3), 0, TSKLog::CIMOMLOG);
    EXPECT_EQ(log.lines(), Lines({"Component|1|2|a failure", "Other|4|3|a detail"}));
}

TEST(TSKLog, DropsLinesAboveTheLevel) {
    const LogRecording log(TeskTraceLog::SeverityWarning);
    logLine("error", TeskTraceLog::SeverityError);
    logLine("warning", TeskTraceLog::SeverityWarning);
    logLine("information", TeskTraceLog::SeverityInformation);
    TSKLog::setLevel(TeskTraceLog::SeverityOff);
    logLine("error again", TeskTraceLog::SeverityError);
    logLine("of no severity", TeskTraceLog::SeverityOff);
    EXPECT_EQ(log.lines(), Lines({"Component|1|2|error", "Component|2|2|warning"}));
    EXPECT_FALSE(TSKLog::isEnabled(TeskTraceLog::SeverityError));
}

TEST(TSKLog, TracesAreOffAtFirst) {
    EXPECT_EQ(TSKLog::getLevel(), TeskTraceLog::SeverityInformation);
    EXPECT_TRUE(TSKLog::isEnabled(TeskTraceLog::SeverityInformation));
    EXPECT_FALSE(TSKLog::isEnabled(TeskTraceLog::SeverityTrace));
}

TEST(TSKLog, WritesToStandardErrorWithoutASink) {
    testing::internal::CaptureStderr();
    logLine("to standard error", TeskTraceLog::SeverityError);
    const std::string output = testing::internal::GetCapturedStderr();
    EXPECT_TRUE(output.ends_with(" error Component: to standard error\n")) << output;
}

TEST(TSKLog, SetSinkReturnsThePreviousOne) {
    const auto sink = TSKSmrPtr<RecordingLogSink>::make();
    EXPECT_EQ(TSKLog::setSink(sink), nullptr);
    EXPECT_EQ(TSKLog::setSink(nullptr), sink);
}

class ThrowingSink : public TSKLogSink {
  public:
    void write(const TSKLogEntry& /*entry*/) override { throw std::runtime_error("disk full"); }
};

TEST(TSKLog, GoesOnWhenTheSinkFails) {
    TSKLog::setSink(TSKSmrPtr<ThrowingSink>::make());
    EXPECT_NO_THROW(logLine("lost", TeskTraceLog::SeverityError));
    TSKLog::setSink(nullptr);
}

TEST(TSKLog, KeepsEveryLineOfManyThreads) {
    const LogRecording log;
    runOnThreads(8, [](int) {
        for (int round = 0; round < 100; ++round)
            logLine("line", TeskTraceLog::SeverityError);
    });
    EXPECT_EQ(log.lines(), Lines(800, "Component|1|2|line"));
}

class CountingSink : public TSKLogSink {
  public:
    explicit CountingSink(std::atomic<int>& lines) : lines_(lines) {}
    void write(const TSKLogEntry& /*entry*/) override { ++lines_; }

  private:
    std::atomic<int>& lines_;
};

TEST(TSKLog, NoLineIsLostWhileTheSinkIsReplaced) {
    std::atomic<int> lines = 0;
    TSKLog::setSink(TSKSmrPtr<CountingSink>::make(lines));
    runOnThreads(4, [&](int index) {
        for (int round = 0; round < 100; ++round) {
            if (index == 0)
                TSKLog::setSink(TSKSmrPtr<CountingSink>::make(lines));
            else
                logLine("line", TeskTraceLog::SeverityError);
        }
    });
    TSKLog::setSink(nullptr);
    EXPECT_EQ(lines, 300);
}

}  // namespace

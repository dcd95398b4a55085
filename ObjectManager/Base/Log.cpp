#include "ObjectManager/Base/Log.h"

#include <cstdint>
#include <new>
#include <utility>

#include "ObjectManager/Base/Text.h"
#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TSKStreamLogSink.h"
#include "Platform/Util/TSKString.h"

namespace Base {

namespace {

class FileLogSink final : public TSKLogSink {
  public:
    explicit FileLogSink(std::shared_ptr<LogFile> file) : file_(std::move(file)) {}

    void write(const TSKLogEntry& entry) override {
        const std::uint64_t lost = file_->write(TSKStreamLogSink::lineOf(entry));
        if (lost == 0)
            return;
        const TSKString component = "tesk";
        const TSKString message(counted(lost, "line", "lines") +
                                " of the log could not be written until now");
        (void)file_->write(TSKStreamLogSink::lineOf({.component = component,
                                                     .message = message,
                                                     .severity = TeskTraceLog::SeverityWarning,
                                                     .verbosity = TeskTraceLog::VerbosityNormal,
                                                     .channel = TSKLog::CIMOMLOG}));
    }

  private:
    std::shared_ptr<LogFile> file_;
};

}  // namespace

void log(std::string_view component, TeskTraceLog::Severity severity, std::string_view text) {
    try {
        TSKLog::log(TSKString(component), TSKString(text), severity, TeskTraceLog::VerbosityNormal,
                    0, TSKLog::CIMOMLOG);
    } catch (const std::bad_alloc&) {
        // The line is lost; the caller goes on.
    }
}

LogOutput::LogOutput(const std::string& path, TeskTraceLog::Severity level) {
    TSKLog::setLevel(level);
    if (path.empty())
        return;
    file_ = std::make_shared<LogFile>(path);
    before_ = TSKLog::setSink(TSKSmrPtr<FileLogSink>::make(file_));
}

LogOutput::~LogOutput() {
    if (file_)
        TSKLog::setSink(before_);
}

void LogOutput::reopen() const {
    if (file_)
        file_->reopen();
}

}  // namespace Base

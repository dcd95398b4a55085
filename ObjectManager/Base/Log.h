#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "ObjectManager/Base/LogFile.h"
#include "Platform/Util/TSKLogSink.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TeskTraceLog.h"

namespace Base {

/// Writes a line to the log of the process. `component` names the part of the program, as in
/// "HttpFrontEnd". Pass what comes from outside through logText() first. A line that cannot be
/// written is lost. May be called by several threads at once.
void log(std::string_view component, TeskTraceLog::Severity severity, std::string_view text);

/// Sends the log of the process to a file while this lives.
///
/// Thread safety: belongs to one thread; the log may be used by several at once.
class LogOutput {
  public:
    /// Appends to the file at `path`, see LogFile; an empty path leaves the log on standard error.
    /// Lines that matter less than `level` are not written; the level stays after the end of this
    /// object. Errors: TeskBaseException when the file cannot be written.
    LogOutput(const std::string& path, TeskTraceLog::Severity level);
    LogOutput(const LogOutput&) = delete;
    LogOutput& operator=(const LogOutput&) = delete;
    /// The log goes again where it went before.
    ~LogOutput();

    /// Opens the file by its name again, after a log rotation has renamed it.
    /// Errors: TeskBaseException when it cannot be written; the log goes on as before then.
    void reopen() const;

  private:
    std::shared_ptr<LogFile> file_;  // null for standard error
    TSKSmrPtr<TSKLogSink> before_;
};

}  // namespace Base

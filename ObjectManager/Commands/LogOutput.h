#pragma once

#include <string>

#include "ObjectManager/Configuration/Settings.h"
#include "Platform/Util/TSKLogSink.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Commands {

/// Sends the log of the process where the settings say, while this lives.
///
/// Thread safety: belongs to one thread; the log may be used by several at once.
class LogOutput {
  public:
    /// Errors: TeskBaseException when the file cannot be written.
    explicit LogOutput(const Configuration::LogSettings& settings);
    LogOutput(const LogOutput&) = delete;
    LogOutput& operator=(const LogOutput&) = delete;
    ~LogOutput();

    /// Opens the file by its name again: whoever keeps logs for a while has moved it away.
    /// Errors: TeskBaseException when it cannot be written; the log goes on as before then.
    void reopen() const;

  private:
    std::string path_;  // empty for standard error
    TSKSmrPtr<TSKLogSink> before_;
};

}  // namespace Commands

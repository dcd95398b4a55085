#pragma once

#include <cstdio>
#include <memory>

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

  private:
    struct Close {
        void operator()(std::FILE* file) const noexcept { std::fclose(file); }
    };

    std::unique_ptr<std::FILE, Close> file_;  // null for standard error
    TSKSmrPtr<TSKLogSink> before_;
};

}  // namespace Commands

#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKLogSink.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"
#include "Platform/Util/TeskTraceLog.h"

/// The log of the process: object manager and providers write their lines through it.
///
/// Lines go to the installed sink, by default a TSKStreamLogSink on standard error. Lines whose
/// severity number lies above the level are dropped; the level is SeverityInformation at first.
///
/// Thread safety: may be used by several threads at once.
class TESK_PLATFORM_EXPORT TSKLog {
  public:
    /// The channel of the object manager's log.
    static const int CIMOMLOG;

    /// Writes one line. `reserved` is 0. Never throws: a line that the sink cannot write is lost.
    static void log(const TSKString& component, const TSKString& message,
                    TeskTraceLog::Severity severity, TeskTraceLog::Verbosity verbosity,
                    int reserved, int channel) noexcept;

    /// Whether a line of that severity would be written; spares the making of costly messages.
    [[nodiscard]] static bool isEnabled(TeskTraceLog::Severity severity) noexcept;

    static void setLevel(TeskTraceLog::Severity level) noexcept;
    [[nodiscard]] static TeskTraceLog::Severity getLevel() noexcept;

    /// Sends all further lines to `sink`; null stands for the default one. Returns the sink that
    /// was installed before, null when it was the default.
    static TSKSmrPtr<TSKLogSink> setSink(TSKSmrPtr<TSKLogSink> sink);
};

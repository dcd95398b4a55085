#pragma once

#include "Platform/Util/TSKString.h"
#include "Platform/Util/TeskTraceLog.h"

/// One line of the log, as a TSKLogSink gets it. Refers to the caller's texts, so it is valid
/// during the call only.
///
/// Thread safety: immutable, may be used by several threads at once.
struct TSKLogEntry {
    const TSKString& component;  ///< who speaks, such as "WsdlWebProvider"
    const TSKString& message;    ///< any bytes, possibly from outside
    TeskTraceLog::Severity severity;
    TeskTraceLog::Verbosity verbosity;
    int channel;  ///< TSKLog::CIMOMLOG, the only one there is
};

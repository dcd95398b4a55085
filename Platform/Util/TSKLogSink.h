#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKLogEntry.h"

/// Where log lines go. Install one with TSKLog::setSink.
///
/// Thread safety: implementations must be usable by several threads at once.
class TESK_PLATFORM_EXPORT TSKLogSink {
  public:
    virtual ~TSKLogSink();

    /// Takes one line. Must escape or reject control characters if lines are what it writes.
    /// Errors: what it throws is dropped, since logging must not stop the work it tells of.
    virtual void write(const TSKLogEntry& entry) = 0;
};

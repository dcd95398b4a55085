#pragma once

#include <cstdio>

#include "Platform/Util/TSKLogSink.h"

/// Writes "TIME SEVERITY COMPONENT: MESSAGE" lines to a C stream: the time in UTC as
/// 2026-01-31T23:59:59.999Z, the severity as a word. Control characters are written as \xHH, so
/// that no message can forge a line.
///
/// Thread safety: may be used by several threads at once; each line is written whole.
class TESK_PLATFORM_EXPORT TSKStreamLogSink : public TSKLogSink {
  public:
    /// `stream` must outlive the sink; it is not closed.
    explicit TSKStreamLogSink(std::FILE* stream) noexcept : stream_(stream) {}
    ~TSKStreamLogSink() override;

    void write(const TSKLogEntry& entry) override;

    /// The line for an entry of this moment, with its line end; for sinks that write elsewhere.
    [[nodiscard]] static TSKString lineOf(const TSKLogEntry& entry);

  private:
    std::FILE* stream_;
};

#pragma once

#include "Platform/Util/TSKString.h"

class TeskTraceLog {
  public:
    enum Severity : int {};
    enum Verbosity : int {};
};

class TSKLog {
  public:
    static const int CIMOMLOG;
    static void log(const TSKString& component, const TSKString& message,
                    TeskTraceLog::Severity severity, TeskTraceLog::Verbosity verbosity,
                    int reserved, int channel);
};

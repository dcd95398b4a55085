#pragma once

/// How important a log line is, and to whom it is of use.
///
/// Thread safety: holds constants only.
class TeskTraceLog {
  public:
    /// A lower number is more important. TSKLog drops what lies above its level.
    enum Severity : int {
        SeverityOff = 0,  ///< as a level: nothing is logged
        SeverityError = 1,
        SeverityWarning = 2,
        SeverityInformation = 3,
        SeverityTrace = 4,  ///< a line at begin and end of each request
    };

    /// How much detail a line carries.
    enum Verbosity : int {
        VerbosityTerse = 1,
        VerbosityNormal = 2,
        VerbosityDetailed = 3,
    };
};

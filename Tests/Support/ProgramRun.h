#pragma once

#include <string>

/// How a program ended, and what it wrote.
struct ProgramRun {
    std::string end;     ///< "status 0", "signal 6"
    std::string output;  ///< what went to standard output
    std::string errors;  ///< what went to standard error
};

/// Runs a shell command and waits for its end. Its standard input is empty.
/// Errors: std::runtime_error when no shell can be run.
[[nodiscard]] ProgramRun runProgram(const std::string& command);

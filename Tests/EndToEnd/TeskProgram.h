#pragma once

#include <regex>
#include <string>

#include "Tests/Support/ProgramRun.h"

/// Runs the program with arguments and redirections, as a shell reads them.
inline ProgramRun runTesk(const std::string& arguments) {
    return runProgram("'" PROGRAM "' " + arguments);
}

/// A text with each of the places where `part` stands replaced.
inline std::string replaced(std::string text, const std::string& part, const std::string& by) {
    for (auto at = text.find(part); at != std::string::npos; at = text.find(part, at + by.size()))
        text.replace(at, part.size(), by);
    return text;
}

/// The output of `tesk check` without the time that it took: "TIME" stands there.
inline std::string withoutTime(const std::string& output) {
    return std::regex_replace(output, std::regex(", [0-9]+\\.[0-9][0-9] s:"), ", TIME:");
}

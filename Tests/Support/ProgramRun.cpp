#include "Tests/Support/ProgramRun.h"

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <sys/wait.h>

#include "Tests/Support/TemporaryDirectory.h"

namespace {

std::string contentOf(const std::string& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

// A shell tells of a signal by a status above 128.
std::string endOf(int status) {
    if (WIFSIGNALED(status))
        return "signal " + std::to_string(WTERMSIG(status));
    constexpr int kSignalBase = 128;
    const int code = WEXITSTATUS(status);
    return code > kSignalBase && code <= kSignalBase + SIGRTMAX
               ? "signal " + std::to_string(code - kSignalBase)
               : "status " + std::to_string(code);
}

}  // namespace

ProgramRun runProgram(const std::string& command) {
    const TemporaryDirectory directory;
    const std::string output = directory / "output";
    const std::string errors = directory / "errors";
    // The command's own redirections come later, so they count.
    const std::string line =
        "{ " + command + "\n} < /dev/null > '" + output + "' 2> '" + errors + "'";
    const int status = std::system(line.c_str());
    if (status == -1)
        throw std::runtime_error("Cannot run " + command);
    return {.end = endOf(status), .output = contentOf(output), .errors = contentOf(errors)};
}

#include "Tests/EndToEnd/HelpText.h"

#include <gtest/gtest.h>
#include <regex>

#include "Tests/EndToEnd/TeskProgram.h"

namespace {

// What `pattern` takes of each line, without spaces at the end.
std::vector<std::string> linesOfHelp(const std::string& command, const std::string& pattern) {
    const ProgramRun run = runTesk(command + " --help");
    EXPECT_EQ(run.end, "status 0") << command;
    const std::regex line(pattern);
    std::vector<std::string> found;
    for (std::sregex_iterator match(run.output.begin(), run.output.end(), line), end; match != end;
         ++match)
        found.push_back((*match)[1]);
    EXPECT_FALSE(found.empty()) << run.output;
    return found;
}

}  // namespace

std::vector<std::string> commandsOfHelp() {
    return linesOfHelp("", "\n  ([a-z]+)  ");
}

std::set<std::string> optionsOfHelp(const std::string& command) {
    const std::vector<std::string> options =
        linesOfHelp(command, "\n  (?:-[a-z],)?(--[a-z-]+(?: [A-Z][A-Z:=\\[\\]]*(?= |\n))?)");
    return {options.begin(), options.end()};
}

std::string withoutValue(const std::string& option) {
    return option.substr(0, option.find(' '));
}

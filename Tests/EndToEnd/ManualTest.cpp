// The manual page of the program, as its reader sees it, beside the program's own help.

#include <gtest/gtest.h>
#include <map>
#include <regex>
#include <set>
#include <sstream>
#include <string>

#include "Tests/EndToEnd/HelpText.h"
#include "Tests/EndToEnd/TeskProgram.h"

namespace {

constexpr const char* kModelSection = "Where classes come from";

std::string shownPage() {
    const ProgramRun run = runProgram("mandoc -T ascii -O width=200 '" MANUAL_DIRECTORY
                                      "/tesk.1' | sed 's/.\\x08//g'");
    EXPECT_EQ(run.end, "status 0");
    EXPECT_EQ(run.errors, "");
    return run.output;
}

// The options that the page describes, by the heading above them.
std::map<std::string, std::set<std::string>> describedOptions() {
    const std::regex heading("(?:   )?([A-Za-z].*)");
    const std::regex option("     (?:-[a-z], )?(--[a-z-]+(?: \\S+)?)");
    std::map<std::string, std::set<std::string>> found;
    std::istringstream lines(shownPage());
    std::string above;
    for (std::string line; std::getline(lines, line);) {
        std::smatch match;
        if (std::regex_match(line, match, heading))
            above = match[1];
        else if (std::regex_match(line, match, option))
            found[above].insert(match[1]);
    }
    return found;
}

// The names of the options in the overview at the top of the page, by command.
std::map<std::string, std::set<std::string>> overviewOptions() {
    const std::string page = shownPage();
    const std::size_t begin = page.find("\nSYNOPSIS\n");
    const std::string overview = page.substr(begin, page.find("\nDESCRIPTION\n") - begin);
    const std::regex part("     tesk ([a-z]*)|(--[a-z-]+)");
    std::map<std::string, std::set<std::string>> found;
    std::string command;
    for (std::sregex_iterator match(overview.begin(), overview.end(), part), end; match != end;
         ++match) {
        if ((*match)[1].matched)
            command = (*match)[1];
        else
            found[command].insert((*match)[2]);
    }
    return found;
}

std::set<std::string> withoutValues(const std::set<std::string>& options) {
    std::set<std::string> names;
    for (const std::string& option : options)
        names.insert(withoutValue(option));
    return names;
}

TEST(Manual, DescribesTheOptionsOfTheHelpAndNoOthers) {
    std::map<std::string, std::set<std::string>> described = describedOptions();
    EXPECT_EQ(described["DESCRIPTION"], optionsOfHelp(""));
    std::set<std::string> headings = {"DESCRIPTION", kModelSection};
    for (const std::string& command : commandsOfHelp()) {
        const std::string heading = "tesk " + command;
        headings.insert(heading);
        std::set<std::string> expected = optionsOfHelp(command);
        std::set<std::string> actual = described[heading];
        actual.insert("--help");
        // Of these, a command has all or those of a server.
        for (const std::string& option : described[kModelSection]) {
            if (expected.contains("--config FILE") ||
                (option.starts_with("--server") && expected.contains(option)))
                actual.insert(option);
        }
        EXPECT_EQ(actual, expected) << command;
    }
    for (const auto& [heading, options] : described)
        EXPECT_TRUE(headings.contains(heading)) << heading;
}

TEST(Manual, OverviewHasTheOptionsOfTheHelpAndNoOthers) {
    std::map<std::string, std::set<std::string>> expected;
    expected[""] = optionsOfHelp("");
    for (const std::string& command : commandsOfHelp()) {
        expected[command] = withoutValues(optionsOfHelp(command));
        expected[command].erase("--help");
    }
    EXPECT_EQ(overviewOptions(), expected);
}

TEST(Manual, PagesAreWithoutFaults) {
    const ProgramRun lint = runProgram("mandoc -T lint -W warning '" MANUAL_DIRECTORY
                                       "/tesk.1' '" MANUAL_DIRECTORY "/tesk.toml.5'");
    EXPECT_EQ(lint.end, "status 0");
    EXPECT_EQ(lint.output, "");
    EXPECT_EQ(lint.errors, "");
}

// Where a page says what is the default, the help says the same.
TEST(Manual, DefaultsAreThoseOfTheHelp) {
    const std::string page = shownPage();
    EXPECT_NE(page.find(" by default 127.0.0.1:5985."), std::string::npos);
    EXPECT_NE(runTesk("serve --help").output.find(" 127.0.0.1:5985 by default;"),
              std::string::npos);
    EXPECT_NE(page.find(" by default localhost:5985."), std::string::npos);
    EXPECT_NE(runTesk("export --help").output.find("(default: localhost:5985)"), std::string::npos);
}

}  // namespace

#pragma once

#include <set>
#include <string>
#include <vector>

/// What the program's help says that there is, for those who check that nothing else is promised.

/// The commands, in the order of the help.
[[nodiscard]] std::vector<std::string> commandsOfHelp();

/// The long options of a command, with the name of their value: "--help", "--jobs N". Those of the
/// program itself for an empty command.
[[nodiscard]] std::set<std::string> optionsOfHelp(const std::string& command);

/// "--jobs" of "--jobs N".
[[nodiscard]] std::string withoutValue(const std::string& option);

#pragma once

#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/Commands/CommandLine.h"

/// Reads `arguments` into the options of a command. Returns what is wrong with them; empty when
/// nothing is.
inline std::string parseOptions(Commands::Command command,
                                const std::vector<std::string>& arguments) {
    command.name = "command";
    command.run = [] { return 0; };
    std::vector<std::string> words = {command.name};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::ostringstream output;
    std::ostringstream errors;
    const Commands::Program program = {.name = "program",
                                       .version = "1",
                                       .summary = "",
                                       .details = "",
                                       .commands = {std::move(command)}};
    if (Commands::parseCommandLine(program, words, output, errors).action)
        return errors.str();
    const std::string start = "program command: ";
    std::string message = errors.str().substr(0, errors.str().find('\n'));
    return message.starts_with(start) ? message.substr(start.size()) : message;
}

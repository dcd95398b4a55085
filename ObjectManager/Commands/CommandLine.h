#pragma once

#include <functional>
#include <iosfwd>
#include <optional>
#include <string>
#include <variant>
#include <vector>

// The commands of a program and their options, and how a command line is read into them. Only
// CommandLine.cpp knows the library that does so, which takes long to compile.

namespace Commands {

/// What a command does. Returns the exit status of the program: 0 done, 1 the work failed, after a
/// message that says why; 128 and the number of the signal that stopped it.
using Action = std::function<int()>;

/// An option such as `--output DIR`, or an argument such as `CLASS`.
struct Option {
    /// Takes a value, or throws a TeskBaseException that says what is wrong with it.
    using TakeText = std::function<void(const std::string& value)>;

    /// "--output"; an argument is named without hyphens.
    std::string name;

    /// What the value is called in the help, "DIR". Flags and arguments have none.
    std::string value = {};

    std::string help;

    /// Where the value goes; it must live until the command line is read. A `bool` is a flag. An
    /// option with a list may be given several times; an argument with one takes all that follows.
    std::variant<bool*, std::string*, std::optional<std::string>*, std::vector<std::string>*,
                 unsigned*, std::optional<unsigned>*, TakeText>
        target;

    /// Throws a TeskBaseException that says what is wrong with a value.
    TakeText check = {};

    /// The least and the greatest number that is allowed.
    struct Range {
        unsigned least;
        unsigned most;
    };
    std::optional<Range> range = {};

    bool isRequired = false;

    /// The name of an option before this one that cannot be given together with it.
    std::string excludes = {};

    /// The name of an option before this one without which this one makes no sense.
    std::string needs = {};
};

/// A command, such as `tesk export`.
struct Command {
    std::string name;
    std::string summary;          ///< one line
    std::string details;          ///< what the help shows below the options
    std::vector<Option> options;  ///< in the order of the help
    Action run;                   ///< called when all options have their values

    /// Called before that; throws a TeskBaseException that says which options do not fit together.
    std::function<void()> check = {};
};

/// A program that consists of commands.
struct Program {
    std::string name;
    std::string version;
    std::string summary;
    std::string details;
    std::vector<Command> commands;
};

/// What a command line asks for.
struct ParsedCommandLine {
    Action action;   ///< none when there is nothing left to do, such as after --help
    int status = 0;  ///< the exit status where there is no action: 2 after wrong usage
};

/// Reads the arguments behind the program's name into the options of a command. What was asked for,
/// such as the help, is written to `output`, what is wrong with the arguments to `errors`.
[[nodiscard]] ParsedCommandLine parseCommandLine(const Program& program,
                                                 std::vector<std::string> arguments,
                                                 std::ostream& output, std::ostream& errors);

}  // namespace Commands

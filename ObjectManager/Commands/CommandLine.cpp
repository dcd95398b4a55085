#include "ObjectManager/Commands/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <algorithm>
#include <map>
#include <ostream>
#include <type_traits>
#include <utility>

#include "ObjectManager/Base/Text.h"
#include "Platform/Util/TeskBaseException.h"

namespace Commands {

namespace {

constexpr int kWrongUsage = 2;

std::string commandNames(const CLI::App& program) {
    std::string names;
    for (const CLI::App* command : program.get_subcommands({}))
        names += (names.empty() ? "" : ", ") + command->get_name();
    return names;
}

std::string whereToReadMore(const std::string& command) {
    return "\n" + Base::quoted(command + " --help") + " tells more.\n";
}

// Whether `word` stands where a command is expected and is none.
bool isUnknownCommand(const Program& program, const std::string& word) {
    return !word.starts_with('-') &&
           std::ranges::find(program.commands, word, &Command::name) == program.commands.end();
}

// The first word that looks like an option and is none of the command; empty if there is none.
std::string unknownOption(const CLI::App& program) {
    const std::vector<std::string> unused = program.remaining(true);
    const auto option =
        std::ranges::find_if(unused, [](const std::string& word) { return word.starts_with('-'); });
    return option == unused.end() ? std::string() : option->substr(0, option->find('='));
}

std::string reasonOf(const CLI::App& program, const CLI::Error& error) {
    // A mistyped option comes first: it may be why a required one is missing.
    const std::string unknown = unknownOption(program);
    if (!unknown.empty())
        return "there is no option " + Base::quoted(unknown);
    if (program.get_subcommands().empty() && error.get_name() == "RequiredError")
        return "no command is given; there are: " + commandNames(program);
    return error.what();
}

// What is wrong with the command line, and where to read more.
std::string usageMessage(const CLI::App* program, const CLI::Error& error) {
    std::string command = program->get_name();
    for (const CLI::App* given : program->get_subcommands())
        command += " " + given->get_name();
    return command + ": " + reasonOf(*program, error) + whereToReadMore(command);
}

// Calls `check`; returns what is wrong, nothing if all is right.
template <typename Check>
std::string faultOf(const Check& check) {
    try {
        check();
        return {};
    } catch (const TeskBaseException& error) {
        return error.getMessage().data();
    }
}

CLI::Option* addOption(CLI::App& command, const std::string& name, const std::string& help,
                       const Option::TakeText& take) {
    return command.add_option_function<std::string>(
        name,
        [name, take](const std::string& value) {
            const std::string fault = faultOf([&] { take(value); });
            if (!fault.empty())
                throw CLI::ValidationError(name, fault);
        },
        help);
}

template <typename Value>
CLI::Option* addOption(CLI::App& command, const std::string& name, const std::string& help,
                       Value* target) {
    if constexpr (std::is_same_v<Value, bool>)
        return command.add_flag(name, *target, help);
    else
        return command.add_option(name, *target, help);
}

// The options of a command by their names. The library's own search ends the process when memory
// runs out.
using AddedOptions = std::map<std::string, CLI::Option*>;

void addOption(CLI::App& command, const Option& option, AddedOptions& options) {
    CLI::Option* const added = std::visit(
        [&](const auto& target) { return addOption(command, option.name, option.help, target); },
        option.target);
    added->required(option.isRequired);
    if (!option.value.empty())
        added->type_name(option.value)->allow_extra_args(false);
    if (option.check) {
        added->check([check = option.check](const std::string& value) {
            return faultOf([&] { (void)check(value); });
        });
    }
    if (option.range)
        added->check(CLI::Range(option.range->least, option.range->most).description(""));
    if (!option.excludes.empty())
        added->excludes(options.at(option.excludes));
    if (!option.needs.empty())
        added->needs(options.at(option.needs));
    options.emplace(option.name, added);
}

// A command that is not given needs no options: making them takes most of the time until a command
// begins.
void addCommand(CLI::App& app, const Command& command, bool isGiven) {
    CLI::App* const added = app.add_subcommand(command.name, command.summary);
    added->footer(command.details);
    added->group("Commands");
    if (!isGiven)
        return;
    AddedOptions options;
    for (const Option& option : command.options)
        addOption(*added, option, options);
    if (!command.check)
        return;
    added->final_callback([check = command.check] {
        const std::string fault = faultOf(check);
        // The message names the options itself.
        if (!fault.empty())
            throw CLI::ValidationError(fault);
    });
}

}  // namespace

ParsedCommandLine parseCommandLine(const Program& program, std::vector<std::string> arguments,
                                   std::ostream& output, std::ostream& errors) {
    CLI::App app(program.summary, program.name);
    app.set_version_flag("--version", program.name + " " + program.version,
                         "Prints the version and exits");
    app.require_subcommand(1);
    for (const Command& command : program.commands)
        addCommand(app, command, std::ranges::count(arguments, command.name) > 0);
    app.footer(program.details);
    app.failure_message(usageMessage);
    app.get_formatter()->label("SUBCOMMAND", "COMMAND");
    if (!arguments.empty() && isUnknownCommand(program, arguments.front())) {
        errors << program.name << ": there is no command " << Base::quoted(arguments.front())
               << "; there are: " << commandNames(app) << whereToReadMore(program.name);
        return {.action = {}, .status = kWrongUsage};
    }
    try {
        // The library takes the last one first.
        std::ranges::reverse(arguments);
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        const bool isAnswered = app.exit(error, output, errors) == 0;
        return {.action = {}, .status = isAnswered ? 0 : kWrongUsage};
    }
    const std::string given = app.get_subcommands().front()->get_name();
    return {.action = std::ranges::find(program.commands, given, &Command::name)->run, .status = 0};
}

}  // namespace Commands

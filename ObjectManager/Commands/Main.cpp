// The program `tesk`.

#include <CLI/CLI.hpp>
#include <algorithm>
#include <exception>
#include <iostream>
#include <new>
#include <string>
#include <vector>

#include "ObjectManager/Commands/Action.h"
#include "ObjectManager/Commands/Check.h"
#include "ObjectManager/Commands/Classes.h"
#include "ObjectManager/Commands/Export.h"
#include "ObjectManager/Commands/Passwd.h"
#include "ObjectManager/Commands/Serve.h"
#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TeskBaseException.h"

namespace {

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

constexpr const char* kFooter = R"(Examples:
  tesk serve
  tesk export --output documents
  tesk check --namespace root/cimv2=schema/cim.mof
  tesk classes root/cimv2 CIM_ComputerSystem
"tesk COMMAND --help" tells more about a command.)";

std::string commandNames(const CLI::App& program) {
    std::string names;
    for (const CLI::App* command : program.get_subcommands({}))
        names += (names.empty() ? "" : ", ") + command->get_name();
    return names;
}

std::string whereToReadMore(const std::string& command) {
    return "\n\"" + command + " --help\" tells more.\n";
}

// Says which commands there are, if `word` stands in the place of one and is none.
bool isUnknownCommand(const CLI::App& program, const std::string& word) {
    if (word.starts_with('-'))
        return false;
    for (const CLI::App* command : program.get_subcommands({})) {
        if (command->get_name() == word)
            return false;
    }
    std::cerr << "tesk: there is no command \"" << word
              << "\"; there are: " << commandNames(program) << whereToReadMore("tesk");
    return true;
}

// The first word that looks like an option and is none of the command; empty if there is none.
std::string unknownOption(const CLI::App& program) {
    const std::vector<std::string> unused = program.remaining(true);
    const auto option = std::find_if(unused.begin(), unused.end(),
                                     [](const std::string& word) { return word.starts_with('-'); });
    return option == unused.end() ? std::string() : option->substr(0, option->find('='));
}

std::string faultOf(const CLI::App& program, const CLI::Error& error) {
    // A mistyped option is what the user wants to hear of, even if something is missing, too.
    const std::string unknown = unknownOption(program);
    if (!unknown.empty())
        return "there is no option \"" + unknown + "\"";
    if (program.get_subcommands().empty() && error.get_name() == "RequiredError")
        return "no command is given; there are: " + commandNames(program);
    return error.what();
}

// What is wrong with the command line, and where to read more.
std::string usageMessage(const CLI::App* program, const CLI::Error& error) {
    std::string command = "tesk";
    for (const CLI::App* given : program->get_subcommands())
        command += " " + given->get_name();
    return command + ": " + faultOf(*program, error) + whereToReadMore(command);
}

void setWording(CLI::App& program) {
    program.footer(kFooter);
    program.failure_message(usageMessage);
    program.get_formatter()->label("SUBCOMMAND", "COMMAND");
    for (CLI::App* command : program.get_subcommands([](CLI::App*) { return true; }))
        command->group("Commands");
}

// What the command line asks for; empty when it was answered already, such as --help.
Commands::Action parse(CLI::App& program, int argc, char** argv, int& status) {
    Commands::Action action;
    program.set_version_flag("--version", "tesk " TESK_VERSION, "Prints the version and exits");
    program.require_subcommand(1);
    Commands::addServeCommand(program, action);
    Commands::addExportCommand(program, action);
    Commands::addCheckCommand(program, action);
    Commands::addClassesCommand(program, action);
    Commands::addPasswdCommand(program, action);
    setWording(program);
    if (argc > 1 && isUnknownCommand(program, argv[1])) {
        status = kWrongUsage;
        return {};
    }
    try {
        program.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        status = program.exit(error) == 0 ? kDone : kWrongUsage;
        return {};
    }
    return action;
}

// Runs the command that is given. Returns the exit status.
int run(int argc, char** argv) {
    CLI::App program(
        "A small CIM object manager that publishes WSDL and XML Schema documents of its classes",
        "tesk");
    int status = kDone;
    TSKLog::setLevel(TeskTraceLog::SeverityError);
    const Commands::Action action = parse(program, argc, argv, status);
    return action ? action() : status;
}

}  // namespace

int main(int argc, char** argv) {
    int status = kFailed;
    try {
        status = run(argc, argv);
    } catch (const TeskBaseException& error) {
        std::cerr << "tesk: " << error.getMessage() << "\n";
    } catch (const std::bad_alloc&) {
        std::cerr << "tesk: there is not enough memory\n";
    } catch (const std::exception& error) {
        std::cerr << "tesk: " << error.what() << "\n";
    }
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "tesk: the output cannot be written\n";
        return kFailed;
    }
    return status;
}

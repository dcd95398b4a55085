// The program `tesk`.

#include <CLI/CLI.hpp>
#include <exception>
#include <iostream>
#include <string>

#include "ObjectManager/Commands/Action.h"
#include "ObjectManager/Commands/Check.h"
#include "ObjectManager/Commands/Classes.h"
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
  tesk check --namespace root/cimv2=schema/cim.mof
  tesk classes root/cimv2 CIM_ComputerSystem
"tesk COMMAND --help" tells more about a command.)";

// Says which commands there are, if `word` stands in the place of one and is none.
bool isUnknownCommand(const CLI::App& program, const std::string& word) {
    if (word.starts_with('-'))
        return false;
    std::string names;
    for (const CLI::App* command : program.get_subcommands({})) {
        if (command->get_name() == word)
            return false;
        names += (names.empty() ? "" : ", ") + command->get_name();
    }
    std::cerr << "tesk: there is no command \"" << word << "\"; there are: " << names << "\n";
    return true;
}

// What the command line asks for; empty when it was answered already, such as --help.
Commands::Action parse(CLI::App& program, int argc, char** argv, int& status) {
    Commands::Action action;
    program.footer(kFooter);
    program.set_version_flag("--version", "tesk " TESK_VERSION, "Prints the version and exits");
    program.require_subcommand(1);
    Commands::addServeCommand(program, action);
    Commands::addCheckCommand(program, action);
    Commands::addClassesCommand(program, action);
    Commands::addPasswdCommand(program, action);
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

int run(const Commands::Action& action) {
    try {
        return action();
    } catch (const TeskBaseException& error) {
        std::cerr << "tesk: " << error.getMessage() << "\n";
    } catch (const std::exception& error) {
        std::cerr << "tesk: " << error.what() << "\n";
    }
    return kFailed;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App program(
        "A small CIM object manager that publishes WSDL and XML Schema documents of its classes",
        "tesk");
    int status = kDone;
    TSKLog::setLevel(TeskTraceLog::SeverityError);
    const Commands::Action action = parse(program, argc, argv, status);
    if (action)
        status = run(action);
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "tesk: the output cannot be written\n";
        return kFailed;
    }
    return status;
}

// The program `tesk`.

#include <exception>
#include <iostream>
#include <string>

#include "ObjectManager/Commands/Commands.h"
#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TeskBaseException.h"

namespace {

constexpr int kFailed = 1;

constexpr const char* kExamples = R"(Examples:
  tesk serve
  tesk export --output documents
  tesk check --namespace root/cimv2=schema/cim.mof
  tesk classes root/cimv2 CIM_ComputerSystem
"tesk COMMAND --help" tells more about a command.)";

Commands::Program makeProgram() {
    return {
        .name = "tesk",
        .version = TESK_VERSION,
        .summary =
            "A small CIM object manager that publishes WSDL and XML Schema documents of "
            "its classes",
        .details = kExamples,
        .commands = {Commands::serveCommand(), Commands::exportCommand(), Commands::checkCommand(),
                     Commands::classesCommand(), Commands::passwdCommand()}};
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
    TSKLog::setLevel(TeskTraceLog::SeverityError);
    const Commands::ParsedCommandLine commandLine =
        Commands::parseCommandLine(makeProgram(), {argv + 1, argv + argc}, std::cout, std::cerr);
    const int status = commandLine.action ? run(commandLine.action) : commandLine.status;
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "tesk: the output cannot be written\n";
        return kFailed;
    }
    return status;
}

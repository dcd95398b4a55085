// The program `tesk`.

#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/Commands.h"
#include "Platform/Util/TSKLog.h"

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
        .commands = {Commands::serveCommand(), Commands::exportCommand(), Commands::importCommand(),
                     Commands::checkCommand(), Commands::diffCommand(), Commands::classesCommand(),
                     Commands::passwdCommand()}};
}

// Does what the command line asks for. Returns the exit status.
int run(const std::vector<std::string>& arguments) {
    const Commands::ParsedCommandLine commandLine =
        Commands::parseCommandLine(makeProgram(), arguments, std::cout, std::cerr);
    return commandLine.action ? commandLine.action() : commandLine.status;
}

}  // namespace

int main(int argc, char** argv) {
    int status = kFailed;
    try {
        TSKLog::setLevel(TeskTraceLog::SeverityError);
        status = run({argv + 1, argv + argc});
    } catch (const std::exception& error) {
        std::cerr << "tesk: " << Base::reasonOf(error) << "\n";
    }
    std::cout.flush();
    if (!std::cout) {
        std::cerr << "tesk: the output cannot be written\n";
        return kFailed;
    }
    return status;
}

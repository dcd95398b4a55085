#include "Tests/Support/RealCimServer.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

#include "Tests/Support/LocalPort.h"
#include "Tests/Support/WaitUntil.h"

std::string cimServerProgram() {
    const char* const directory = std::getenv("CIM_SERVER_DIR");
    if (directory == nullptr || *directory == '\0')
        return {};
    return std::string(directory) + "/start";
}

RealCimServer::RealCimServer(bool authenticates) {
    const std::uint16_t port = freePort();
    url_ = "http://127.0.0.1:" + std::to_string(port);
    std::vector<std::string> command = {cimServerProgram(), "--port", std::to_string(port)};
    if (authenticates)
        command.emplace_back("--authenticate");
    program_ = std::make_unique<RunningProgram>(command);
    const bool isThere =
        waitUntil([&] { return acceptsConnections(port) || !program_->isRunning(); });
    if (!isThere || !program_->isRunning())
        throw std::runtime_error("the CIM server does not start");
}

RealCimServer::~RealCimServer() {
    program_->sendSignal(SIGTERM);
    (void)program_->waitForEnd();
}

#include "Tests/Support/RealCimServer.h"

#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <unistd.h>
#include <vector>

#include "Tests/Support/LocalPort.h"
#include "Tests/Support/WaitUntil.h"

std::string cimServerProgram() {
    const char* const directory = std::getenv("CIM_SERVER_DIR");
    if (directory == nullptr || *directory == '\0')
        return {};
    return std::string(directory) + "/start";
}

RealCimServer::RealCimServer(bool authenticates)
    : authenticates_(authenticates), port_(freePort()) {
    restart();
}

RealCimServer::~RealCimServer() {
    if (program_ == nullptr)
        return;
    program_->sendSignal(SIGTERM);
    (void)program_->waitForEnd();
}

void RealCimServer::kill() {
    program_->sendSignalToGroup(SIGKILL);
    (void)program_->waitForEnd();
    program_.reset();
    // The program that was waited for is the one that has started the server.
    if (!waitUntil([this] { return !acceptsConnections(port_); }))
        throw std::runtime_error("the CIM server does not end");
}

void RealCimServer::restart() {
    directory_ = std::make_unique<TemporaryDirectory>();
    std::vector<std::string> command = {cimServerProgram(), "--port", std::to_string(port_),
                                        "--folder", directory_->path().string()};
    if (authenticates_)
        command.emplace_back("--authenticate");
    program_ = std::make_unique<RunningProgram>(command, [] { (void)setpgid(0, 0); });
    const bool isThere =
        waitUntil([&] { return acceptsConnections(port_) || !program_->isRunning(); });
    if (!isThere || !program_->isRunning())
        throw std::runtime_error("the CIM server does not start");
}

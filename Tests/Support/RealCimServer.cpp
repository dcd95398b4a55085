#include "Tests/Support/RealCimServer.h"

#include <arpa/inet.h>
#include <cstdint>
#include <cstdlib>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

#include "Tests/Support/WaitUntil.h"

namespace {

// A socket of 127.0.0.1 while this lives.
class LocalSocket {
  public:
    explicit LocalSocket(std::uint16_t port) {
        address_.sin_family = AF_INET;
        address_.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address_.sin_port = htons(port);
    }
    LocalSocket(const LocalSocket&) = delete;
    LocalSocket& operator=(const LocalSocket&) = delete;
    ~LocalSocket() { close(socket_); }

    // The port that the system picks for it.
    [[nodiscard]] std::uint16_t bindToAny() {
        socklen_t size = sizeof address_;
        if (bind(socket_, address(), size) != 0 || getsockname(socket_, address(), &size) != 0)
            throw std::runtime_error("there is no free port");
        return ntohs(address_.sin_port);
    }

    [[nodiscard]] bool connects() { return connect(socket_, address(), sizeof address_) == 0; }

  private:
    sockaddr* address() { return reinterpret_cast<sockaddr*>(&address_); }

    int socket_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address_ = {};
};

}  // namespace

std::string cimServerProgram() {
    const char* const directory = std::getenv("CIM_SERVER_DIR");
    if (directory == nullptr || *directory == '\0')
        return {};
    return std::string(directory) + "/start";
}

RealCimServer::RealCimServer(bool authenticates) {
    const std::uint16_t port = LocalSocket(0).bindToAny();
    url_ = "http://127.0.0.1:" + std::to_string(port);
    std::vector<std::string> command = {cimServerProgram(), "--port", std::to_string(port)};
    if (authenticates)
        command.emplace_back("--authenticate");
    program_ = std::make_unique<RunningProgram>(command);
    const bool isThere =
        waitUntil([&] { return LocalSocket(port).connects() || !program_->isRunning(); });
    if (!isThere || !program_->isRunning())
        throw std::runtime_error("the CIM server does not start");
}

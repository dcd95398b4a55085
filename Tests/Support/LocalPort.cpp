#include "Tests/Support/LocalPort.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <stdexcept>
#include <sys/socket.h>
#include <unistd.h>

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

std::uint16_t freePort() {
    return LocalSocket(0).bindToAny();
}

bool acceptsConnections(std::uint16_t port) {
    return LocalSocket(port).connects();
}

#include "Tests/ObjectManager/Http/Client.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <gtest/gtest.h>
#include <limits>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "Tests/Support/WaitUntil.h"

namespace {

// The addresses are numbers; nothing is looked up.
struct Addresses {
    Addresses(const std::string& address, std::uint16_t port) {
        addrinfo hints{};
        hints.ai_flags = AI_NUMERICHOST | AI_NUMERICSERV;
        hints.ai_socktype = SOCK_STREAM;
        const int error =
            getaddrinfo(address.c_str(), std::to_string(port).c_str(), &hints, &first);
        if (error != 0)
            throw std::system_error(EINVAL, std::generic_category(), address);
    }
    Addresses(const Addresses&) = delete;
    Addresses& operator=(const Addresses&) = delete;
    ~Addresses() { freeaddrinfo(first); }

    addrinfo* first = nullptr;
};

// Whether the socket has become ready in time.
bool waitFor(int descriptor, short event) {
    pollfd waited{.fd = descriptor, .events = event, .revents = 0};
    int result = 0;
    do {
        result = poll(&waited, 1, kPatienceMilliseconds);
    } while (result < 0 && errno == EINTR);
    EXPECT_EQ(result, 1) << "nothing happened for " << kPatience.count() << " minutes";
    return result == 1;
}

}  // namespace

Client::Client(const std::string& address, std::uint16_t port) : Client(address, port, "") {}

Client::Client(const std::string& address, std::uint16_t port, const std::string& source) {
    const Addresses addresses(address, port);
    descriptor_ = socket(addresses.first->ai_family, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (descriptor_ < 0)
        throw std::system_error(errno, std::generic_category(), "socket");
    const auto hasSource = [&] {
        if (source.empty())
            return true;
        const Addresses sources(source, 0);
        return bind(descriptor_, sources.first->ai_addr, sources.first->ai_addrlen) == 0;
    };
    if (!hasSource() ||
        connect(descriptor_, addresses.first->ai_addr, addresses.first->ai_addrlen) != 0) {
        const int error = errno;
        close(descriptor_);
        throw std::system_error(error, std::generic_category(), "connect");
    }
}

Client::Client(Client&& other) noexcept
    : descriptor_(std::exchange(other.descriptor_, -1)), wasReset_(other.wasReset_) {}

Client::~Client() {
    if (descriptor_ >= 0)
        close(descriptor_);
}

bool Client::send(std::string_view bytes) const {
    while (!bytes.empty()) {
        if (!waitFor(descriptor_, POLLOUT))
            return false;
        const ssize_t sent =
            ::send(descriptor_, bytes.data(), bytes.size(), MSG_NOSIGNAL | MSG_DONTWAIT);
        if (sent < 0 && errno == EAGAIN)
            continue;
        if (sent < 0)
            return false;
        bytes.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

void Client::endSending() const {
    shutdown(descriptor_, SHUT_WR);
}

std::string Client::read(std::size_t length) const {
    std::string text;
    std::array<char, 65536> buffer{};
    while (text.size() < length && waitFor(descriptor_, POLLIN)) {
        const ssize_t received =
            recv(descriptor_, buffer.data(), std::min(buffer.size(), length - text.size()), 0);
        wasReset_ = wasReset_ || received < 0;
        if (received <= 0)
            break;
        text.append(buffer.data(), static_cast<std::size_t>(received));
    }
    return text;
}

bool Client::hasInput() const {
    pollfd waited{.fd = descriptor_, .events = POLLIN, .revents = 0};
    return poll(&waited, 1, 0) == 1;
}

std::string Client::readAll() const {
    return read(std::numeric_limits<std::size_t>::max());
}

void Client::reset() {
    const linger atOnce{.l_onoff = 1, .l_linger = 0};
    setsockopt(descriptor_, SOL_SOCKET, SO_LINGER, &atOnce, sizeof atOnce);
    close(std::exchange(descriptor_, -1));
}

std::uint16_t Client::port() const {
    sockaddr_in6 address{};  // the port stands at the same place in an IPv4 address
    socklen_t length = sizeof address;
    EXPECT_EQ(getsockname(descriptor_, reinterpret_cast<sockaddr*>(&address), &length), 0);
    return ntohs(address.sin6_port);
}

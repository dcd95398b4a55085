#include "Tests/Support/StandInServer.h"

#include <arpa/inet.h>
#include <cerrno>
#include <cstdlib>
#include <netinet/in.h>
#include <strings.h>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace {

void require(bool done) {
    if (!done)
        throw std::system_error(errno, std::generic_category(), "StandInServer");
}

// Appends what comes next; returns whether anything did.
bool readMore(int connection, std::string& bytes) {
    char buffer[16384];
    const ssize_t length = recv(connection, buffer, sizeof buffer, 0);
    if (length <= 0)
        return false;
    bytes.append(buffer, static_cast<std::size_t>(length));
    return true;
}

// Returns whether the client has not ended the connection.
bool sendAll(int connection, const std::string& bytes) {
    std::size_t sent = 0;
    while (sent < bytes.size()) {
        const ssize_t length =
            send(connection, bytes.data() + sent, bytes.size() - sent, MSG_NOSIGNAL);
        if (length <= 0)
            return false;
        sent += static_cast<std::size_t>(length);
    }
    return true;
}

}  // namespace

std::string StandInServer::Request::field(const std::string& name) const {
    std::size_t begin = header.find("\r\n") + 2;
    while (begin < header.size()) {
        const std::size_t end = header.find("\r\n", begin);
        const std::string line = header.substr(begin, end - begin);
        const std::size_t colon = line.find(": ");
        if (colon == name.size() && strncasecmp(line.c_str(), name.c_str(), colon) == 0)
            return line.substr(colon + 2);
        begin = end + 2;
    }
    return {};
}

StandInServer::StandInServer(Respond respond)
    : respond_(std::move(respond)), listener_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    require(listener_ >= 0);
    sockaddr_in address = {};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    require(bind(listener_, generic, size) == 0 && listen(listener_, SOMAXCONN) == 0 &&
            getsockname(listener_, generic, &size) == 0);
    port_ = ntohs(address.sin_port);
    thread_ = std::thread([this] { serve(); });
}

StandInServer::~StandInServer() {
    shutdown(listener_, SHUT_RDWR);
    thread_.join();
    close(listener_);
}

std::string StandInServer::url() const {
    return "http://127.0.0.1:" + std::to_string(port_);
}

std::vector<StandInServer::Request> StandInServer::requests() const {
    const std::lock_guard guard(lock_);
    return requests_;
}

StandInServer::Response StandInServer::ok(const std::string& body, const std::string& fields) {
    return {.bytes = "HTTP/1.1 200 OK\r\n" + fields + "Content-Length: " +
                     std::to_string(body.size()) + "\r\nConnection: close\r\n\r\n" + body};
}

void StandInServer::serve() noexcept {
    while (true) {
        const int connection = accept(listener_, nullptr, nullptr);
        if (connection < 0)
            return;
        serveConnection(connection);
        close(connection);
    }
}

void StandInServer::serveConnection(int connection) {
    Request request;
    std::size_t end = std::string::npos;
    while (end == std::string::npos) {
        if (!readMore(connection, request.header))
            return;
        end = request.header.find("\r\n\r\n");
    }
    request.body = request.header.substr(end + 4);
    request.header.resize(end + 4);
    const std::size_t length = std::strtoul(request.field("Content-Length").c_str(), nullptr, 10);
    while (request.body.size() < length) {
        if (!readMore(connection, request.body))
            return;
    }
    {
        const std::lock_guard guard(lock_);
        requests_.push_back(request);
    }
    const Response response =
        respond_ ? respond_(request) : Response{.bytes = "", .staysOpen = true};
    bool isOpen = sendAll(connection, response.bytes);
    while (isOpen && !response.endless.empty()) {
        std::this_thread::sleep_for(response.pause);
        isOpen = sendAll(connection, response.endless);
    }
    std::string ignored;
    while (response.staysOpen && readMore(connection, ignored)) {
    }
}

#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

/// An HTTP server that responds with whatever bytes a test says, one connection after the other.
///
/// Thread safety: the function is called by a thread of the server's own; requests() may be called
/// by several threads at once.
class StandInServer {
  public:
    struct Request {
        std::string header;  ///< the header section, with its empty line
        std::string body;

        /// The value of a header field; empty when there is none.
        [[nodiscard]] std::string field(const std::string& name) const;
    };

    /// What the server sends, and whether it waits then until the client ends the connection.
    struct Response {
        std::string bytes;
        bool staysOpen = false;

        /// Sent again and again after `bytes`, with a pause before each, until the client ends the
        /// connection; empty for none.
        std::string endless = {};
        std::chrono::milliseconds pause{0};
    };

    using Respond = std::function<Response(const Request&)>;

    /// Listens at a port of 127.0.0.1 that the system picks. Without `respond` the server reads
    /// requests and is silent.
    explicit StandInServer(Respond respond);
    StandInServer(const StandInServer&) = delete;
    StandInServer& operator=(const StandInServer&) = delete;
    ~StandInServer();

    [[nodiscard]] std::uint16_t port() const noexcept { return port_; }

    /// "http://127.0.0.1:PORT".
    [[nodiscard]] std::string url() const;

    /// The requests that have come so far.
    [[nodiscard]] std::vector<Request> requests() const;

    /// A response with a body of that type and its length, after which the connection ends.
    [[nodiscard]] static Response ok(
        const std::string& body,
        const std::string& fields = "Content-Type: application/xml; charset=utf-8\r\n");

  private:
    void serve() noexcept;
    void serveConnection(int connection);

    const Respond respond_;
    int listener_;
    std::uint16_t port_ = 0;
    mutable std::mutex lock_;
    std::vector<Request> requests_;  // guarded by lock_
    std::thread thread_;
};

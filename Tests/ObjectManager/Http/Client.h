#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

/// A client of a server in this process, on a socket of its own. Whatever takes longer than half a
/// minute fails the test.
class Client {
  public:
    /// Connects to an address without brackets.
    /// Errors: std::system_error.
    Client(const std::string& address, std::uint16_t port);
    /// The same from the address `source`.
    Client(const std::string& address, std::uint16_t port, const std::string& source);
    Client(Client&& other) noexcept;
    Client(const Client&) = delete;
    Client& operator=(const Client&) = delete;
    ~Client();

    /// Sends all of it. Returns whether it could, which it cannot once the server has reset the
    /// connection.
    bool send(std::string_view bytes) const;

    /// Sends nothing more.
    void endSending() const;

    /// Reads `length` bytes, fewer when the server ends the connection before.
    [[nodiscard]] std::string read(std::size_t length) const;

    /// Reads until the server ends the connection.
    [[nodiscard]] std::string readAll() const;

    /// Whether there is something to read, or the server has ended the connection.
    [[nodiscard]] bool hasInput() const;

    /// Whether the server has reset the connection instead of ending it.
    [[nodiscard]] bool wasReset() const noexcept { return wasReset_; }

    /// Ends the connection so that the server is told by a reset.
    void reset();

    /// The socket, for those who speak another protocol by it.
    [[nodiscard]] int descriptor() const noexcept { return descriptor_; }

    /// The port that the server sees.
    [[nodiscard]] std::uint16_t port() const;

  private:
    int descriptor_;
    mutable bool wasReset_ = false;
};

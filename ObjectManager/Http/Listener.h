#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/system/error_code.hpp>
#include <cstdint>
#include <functional>
#include <string>

namespace Http {

/// Listens on an address and accepts the connections that come in.
///
/// Thread safety: belongs to the thread that runs the io_context, once start() has been called.
class Listener {
  public:
    /// Takes a new connection and the address of its client. What it throws closes that connection.
    using Accept = std::function<void(boost::asio::ip::tcp::socket,
                                      const boost::asio::ip::tcp::endpoint& client)>;

    /// Listens from now on; connections wait until start(). `address` and `port` as in
    /// ServerOptions. `context` must outlive the listener.
    /// Errors: std::system_error that names address and port, for instance when the port is in use
    /// or the address is no IP address.
    Listener(boost::asio::io_context& context, const std::string& address, std::uint16_t port);

    /// Where it listens.
    [[nodiscard]] const boost::asio::ip::tcp::endpoint& endpoint() const noexcept {
        return endpoint_;
    }

    /// Begins to accept. When the process has run out of file descriptors or memory, that is logged
    /// once, and tried again until there are some. The listener must outlive the run of the
    /// io_context.
    void start(Accept accept);

    /// Accepts no further connection.
    void close();

  private:
    void waitForClients();
    void acceptWaiting();
    [[nodiscard]] boost::system::error_code acceptOne();
    void pause(const boost::system::error_code& reason);

    boost::asio::ip::tcp::acceptor acceptor_;
    boost::asio::ip::tcp::endpoint endpoint_;
    boost::asio::steady_timer pauseEnd_;
    Accept accept_;
    bool isShort_ = false;  // of file descriptors or memory, and the log says so
};

}  // namespace Http

#pragma once

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/system/error_code.hpp>
#include <functional>

#include "ObjectManager/Http/Options.h"

namespace Http {

/// Listens on one address and accepts connections.
///
/// Thread safety: belongs to the thread that runs the io_context, once start() has been called.
class Listener {
  public:
    /// Takes a new connection and the address of its client. If it throws, that connection is
    /// closed.
    using Accept = std::function<void(boost::asio::ip::tcp::socket,
                                      const boost::asio::ip::tcp::endpoint& client)>;

    /// Listens from now on; connections wait until start(). `context` must outlive the listener.
    /// Errors: std::system_error that names address and port, for instance when the port is in use
    /// or the address is not an IP address.
    Listener(boost::asio::io_context& context, const ListenAddress& address);

    /// Where it listens.
    [[nodiscard]] const boost::asio::ip::tcp::endpoint& endpoint() const noexcept {
        return endpoint_;
    }

    /// Begins to accept. When the process runs out of file descriptors or memory, this is logged
    /// once, and accepting is tried again until it succeeds. The listener must outlive the run of
    /// the io_context.
    void start(Accept accept);

    /// Accepts no further connection.
    void close();

  private:
    void waitForClients();
    void continueAccepting();
    void acceptWaiting();
    [[nodiscard]] boost::system::error_code acceptOne();
    void pause(const boost::system::error_code& reason);

    boost::asio::ip::tcp::acceptor acceptor_;
    boost::asio::ip::tcp::endpoint endpoint_;
    boost::asio::steady_timer pauseEnd_;
    Accept accept_;
    bool isPaused_ = false;  // out of file descriptors or memory; already logged
};

}  // namespace Http

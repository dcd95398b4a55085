#pragma once

#include <atomic>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/system/error_code.hpp>
#include <chrono>
#include <functional>
#include <optional>
#include <string_view>

#include "ObjectManager/Http/Options.h"

namespace Http {

/// Listens on one address and accepts connections.
///
/// Thread safety: belongs to the thread that runs the io_context, once start() has been called;
/// isOutOfDescriptors() may be called by several threads at once.
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

    /// Begins to accept. The listener must outlive the run of the io_context.
    ///
    /// When file descriptors or memory run out, this is logged once a minute, and accepting is
    /// tried again until it succeeds: after `descriptorTimeout` and whenever
    /// goOnWithDescriptors() is called if descriptors ran out, ten times a second otherwise. What
    /// else `accept` throws is logged, and the next connection is accepted.
    void start(Accept accept, std::chrono::milliseconds descriptorTimeout);

    /// Whether it waits for a file descriptor.
    [[nodiscard]] bool isOutOfDescriptors() const noexcept { return isOutOfDescriptors_; }

    /// Tells that a file descriptor has become free: accepts again if it waits for one.
    void goOnWithDescriptors();

    /// From now on no client can begin to connect. Those that have begun can complete it, and are
    /// accepted as before. The others wait, and learn when the listener is closed that nothing
    /// listens.
    void refuseNewClients() noexcept;

    /// Accepts the connections that are complete, and closes the listener. To be called after
    /// start(). A client that completes its connection later gets a reset.
    void acceptRestAndClose();

    /// Accepts no further connection. Those that wait get a reset.
    void close();

  private:
    void waitForClients();
    void continueAccepting();
    void acceptBatch();
    [[nodiscard]] boost::system::error_code acceptOne();
    void pause(const boost::system::error_code& reason);
    void logOncePerMinute(std::string_view reason);

    boost::asio::ip::tcp::acceptor acceptor_;
    boost::asio::ip::tcp::endpoint endpoint_;
    boost::asio::steady_timer pauseEnd_;
    Accept accept_;
    std::chrono::milliseconds descriptorTimeout_ = {};
    bool isPaused_ = false;  // nothing waits for clients until the pause ends
    std::atomic<bool> isOutOfDescriptors_ = false;
    std::optional<std::chrono::steady_clock::time_point> lastLogged_;
};

}  // namespace Http

#include "ObjectManager/Http/Listener.h"

#include <boost/asio/error.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/system/system_error.hpp>
#include <cerrno>
#include <chrono>
#include <exception>
#include <fcntl.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

#include "ObjectManager/Base/Log.h"

namespace Http {

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;

// How many connections are accepted before other events are handled.
constexpr int kBatch = 64;

// How long to wait for file descriptors to become free.
constexpr std::chrono::milliseconds kPause{100};

void open(tcp::acceptor& acceptor, const ListenAddress& address) {
    const tcp::endpoint endpoint(boost::asio::ip::make_address(address.address), address.port);
    acceptor.open(endpoint.protocol());
    // Child processes must not keep the port.
    fcntl(acceptor.native_handle(), F_SETFD, FD_CLOEXEC);
    // After a restart, connections of the previous process may still be closing on the port.
    acceptor.set_option(tcp::acceptor::reuse_address(true));
    if (endpoint.protocol() == tcp::v6())
        acceptor.set_option(boost::asio::ip::v6_only(false));
    acceptor.bind(endpoint);
    acceptor.listen();
    acceptor.non_blocking(true);
}

// Whether only one connection is affected, and the next one may be accepted at once.
bool affectsOneConnection(const error_code& error) {
    return error == boost::asio::error::connection_aborted ||
           error == boost::asio::error::interrupted;
}

}  // namespace

Listener::Listener(boost::asio::io_context& context, const ListenAddress& address)
    : acceptor_(context), pauseEnd_(context) {
    try {
        open(acceptor_, address);
        endpoint_ = acceptor_.local_endpoint();
    } catch (const boost::system::system_error& error) {
        throw std::system_error(error.code(), "Cannot listen on " + address.address + " port " +
                                                  std::to_string(address.port));
    }
}

void Listener::start(Accept accept) {
    accept_ = std::move(accept);
    waitForClients();
}

void Listener::close() {
    error_code error;  // the socket is closed in any case
    acceptor_.close(error);
    pauseEnd_.cancel(error);
}

void Listener::waitForClients() {
    acceptor_.async_wait(tcp::acceptor::wait_read, [this](const error_code& error) {
        if (error != boost::asio::error::operation_aborted)
            continueAccepting();
    });
}

// A failure must not end the waiting: nothing else would begin it again. Only a failed
// allocation comes here. The whole I/O thread pauses until memory is free.
void Listener::continueAccepting() {
    while (acceptor_.is_open()) {
        try {
            acceptWaiting();
            return;
        } catch (const std::exception&) {
            std::this_thread::sleep_for(kPause);
        }
    }
}

void Listener::acceptWaiting() {
    for (int accepted = 0; accepted < kBatch && acceptor_.is_open(); ++accepted) {
        const error_code error = acceptOne();
        if (error == boost::asio::error::would_block)
            break;
        if (error && !affectsOneConnection(error)) {
            pause(error);
            return;
        }
    }
    if (acceptor_.is_open())
        waitForClients();
}

error_code Listener::acceptOne() {
    tcp::endpoint client;
    auto length = static_cast<socklen_t>(client.capacity());
    // Asio's own accept would let child processes inherit the connection.
    const int descriptor = accept4(acceptor_.native_handle(), client.data(), &length, SOCK_CLOEXEC);
    if (descriptor < 0)
        return {errno, boost::system::system_category()};
    client.resize(length);
    error_code error;
    bool isOwned = false;
    try {
        tcp::socket socket(acceptor_.get_executor());
        socket.assign(client.protocol(), descriptor, error);
        isOwned = !error;
        if (isOwned)
            accept_(std::move(socket), client);
    } catch (const std::exception&) {
        error = boost::asio::error::no_memory;
    }
    if (!isOwned)
        ::close(descriptor);
    if (error)
        return error;
    isPaused_ = false;
    return {};
}

void Listener::pause(const error_code& reason) {
    if (!std::exchange(isPaused_, true))
        Base::log(kLogComponent, TeskTraceLog::SeverityError,
                  "Cannot accept connections for now: " + reason.message());
    pauseEnd_.expires_after(kPause);
    pauseEnd_.async_wait([this](const error_code& error) {
        if (!error)
            continueAccepting();
    });
}

}  // namespace Http

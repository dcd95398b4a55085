#include "ObjectManager/Http/Listener.h"

#include <array>
#include <boost/asio/error.hpp>
#include <boost/asio/ip/v6_only.hpp>
#include <boost/system/system_error.hpp>
#include <cerrno>
#include <exception>
#include <fcntl.h>
#include <linux/filter.h>
#include <new>
#include <string>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <utility>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Base/Log.h"
#include "ObjectManager/Http/IoThread.h"

namespace Http {

namespace {

using boost::asio::ip::tcp;
using boost::system::error_code;
using std::chrono::steady_clock;

// How many connections are accepted before other events are handled.
constexpr int kBatch = 64;

// How long to wait after other failures than a lack of file descriptors: above all for memory.
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

bool isLackOfDescriptors(const error_code& error) {
    return error == boost::asio::error::no_descriptors ||
           error == error_code(ENFILE, boost::system::system_category());
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

void Listener::start(Accept accept, std::chrono::milliseconds descriptorTimeout) {
    accept_ = std::move(accept);
    descriptorTimeout_ = descriptorTimeout;
    waitForClients();
}

void Listener::goOnWithDescriptors() {
    if (isPaused_ && isOutOfDescriptors_)
        continueAccepting();
}

// The kernel has no call for this. shutdown(2) and close(2) reset the connections that wait to be
// accepted, and a backlog of 0 still lets one in. A filter that drops the first packet of each
// handshake (SYN without ACK) leaves those alone that are under way. Clients send that packet again
// after a second.
void Listener::refuseNewClients() noexcept {
    constexpr unsigned kFlags = 13;  // the offset in the header of a TCP packet
    constexpr unsigned kSyn = 0x02;
    constexpr unsigned kAck = 0x10;
    std::array<sock_filter, 5> code = {{
        BPF_STMT(BPF_LD | BPF_B | BPF_ABS, kFlags),
        BPF_STMT(BPF_ALU | BPF_AND | BPF_K, kSyn | kAck),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, kSyn, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, 0),
        BPF_STMT(BPF_RET | BPF_K, 0xffffffff),
    }};
    const sock_fprog program = {.len = code.size(), .filter = code.data()};
    // Without the filter, clients that connect in the last moment before close() get a reset.
    (void)setsockopt(acceptor_.native_handle(), SOL_SOCKET, SO_ATTACH_FILTER, &program,
                     sizeof program);
}

void Listener::acceptRestAndClose() {
    try {
        error_code error;
        while (acceptor_.is_open() && (!error || affectsOneConnection(error)))
            error = acceptOne();
    } catch (const std::exception&) {
        // There is no memory for a log line. What still waits is lost.
    }
    close();
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
    isPaused_ = false;
    while (acceptor_.is_open()) {
        try {
            acceptBatch();
            return;
        } catch (const std::exception&) {
            std::this_thread::sleep_for(kPause);
        }
    }
}

void Listener::acceptBatch() {
    for (int accepted = 0; accepted < kBatch && acceptor_.is_open(); ++accepted) {
        error_code error = acceptOne();
        // A descriptor may have become free before others could see that it is waited for.
        if (isLackOfDescriptors(error) && !isOutOfDescriptors_.exchange(true))
            error = acceptOne();
        if (error == boost::asio::error::would_block)
            break;
        if (error && !affectsOneConnection(error)) {
            pause(error);
            return;
        }
    }
    isOutOfDescriptors_ = false;
    if (acceptor_.is_open())
        waitForClients();
}

error_code Listener::acceptOne() {
    tcp::endpoint client;
    auto length = static_cast<socklen_t>(client.capacity());
    // Asio's own accept would let child processes inherit the connection.
    Base::FileDescriptor descriptor(
        accept4(acceptor_.native_handle(), client.data(), &length, SOCK_CLOEXEC));
    if (!descriptor.isOpen())
        return {errno, boost::system::system_category()};
    client.resize(length);
    try {
        error_code error;
        tcp::socket socket(acceptor_.get_executor());
        socket.assign(client.protocol(), descriptor.get(), error);
        if (error)
            return error;
        (void)descriptor.release();
        accept_(std::move(socket), client);
    } catch (const std::bad_alloc&) {
        return boost::asio::error::no_memory;
    } catch (const std::exception& exception) {
        logFailure(exception);
    }
    return {};
}

// Lets the connections wait in the system's queue.
void Listener::pause(const error_code& reason) {
    const bool lacksDescriptors = isLackOfDescriptors(reason);
    isOutOfDescriptors_ = lacksDescriptors;
    logOncePerMinute(reason.message());
    pauseEnd_.expires_after(lacksDescriptors ? descriptorTimeout_ : kPause);
    isPaused_ = true;
    pauseEnd_.async_wait([this](const error_code& error) {
        if (!error && isPaused_)
            continueAccepting();
    });
}

void Listener::logOncePerMinute(std::string_view reason) {
    const steady_clock::time_point now = steady_clock::now();
    if (lastLogged_ && now - *lastLogged_ < std::chrono::minutes(1))
        return;
    Base::log(kLogComponent, TeskTraceLog::SeverityError,
              "Cannot accept connections for now: " + std::string(reason));
    lastLogged_ = now;
}

}  // namespace Http

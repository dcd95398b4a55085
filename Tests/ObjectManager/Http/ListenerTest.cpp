#include <boost/asio/buffer.hpp>
#include <boost/asio/io_context.hpp>
#include <cerrno>
#include <cstddef>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <new>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Http/Listener.h"
#include "Tests/ObjectManager/Http/Client.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/ResourceLimit.h"
#include "Tests/Support/WaitUntil.h"

namespace {

using Http::Listener;

std::string failureOf(const std::string& address, std::uint16_t port) {
    boost::asio::io_context context;
    try {
        const Listener listener(context, {address, port});
    } catch (const std::system_error& error) {
        return error.what();
    }
    return "none";
}

TEST(Listener, TakesAFreePort) {
    boost::asio::io_context context;
    const Listener listener(context, {"127.0.0.1", 0});
    EXPECT_EQ(listener.endpoint().address().to_string(), "127.0.0.1");
    EXPECT_NE(listener.endpoint().port(), 0);
}

TEST(Listener, APortInUseIsAnErrorThatNamesIt) {
    boost::asio::io_context context;
    const Listener listener(context, {"127.0.0.1", 0});
    const std::uint16_t port = listener.endpoint().port();
    EXPECT_EQ(failureOf("127.0.0.1", port), "Cannot listen on 127.0.0.1 port " +
                                                std::to_string(port) + ": Address already in use");
}

TEST(Listener, APortIsFreeAgainAfterwards) {
    boost::asio::io_context context;
    std::uint16_t port = 0;
    {
        const Listener listener(context, {"127.0.0.1", 0});
        port = listener.endpoint().port();
    }
    EXPECT_EQ(failureOf("127.0.0.1", port), "none");
}

TEST(Listener, OnlyAnIpAddressIsAccepted) {
    EXPECT_EQ(failureOf("localhost", 0), "Cannot listen on localhost port 0: Invalid argument");
    EXPECT_EQ(failureOf("", 5985), "Cannot listen on  port 5985: Invalid argument");
}

TEST(Listener, AnAddressOfAnotherMachineIsAnError) {
    EXPECT_EQ(failureOf("192.0.2.7", 0),
              "Cannot listen on 192.0.2.7 port 0: Cannot assign requested address");
}

TEST(Listener, AConnectionThatCannotBeTakenIsClosedAndTheNextOneIsAcceptedLater) {
    const LogRecording log;
    boost::asio::io_context context;
    Listener listener(context, {"127.0.0.1", 0});
    const std::uint16_t port = listener.endpoint().port();
    int calls = 0;
    std::uint16_t clientPort = 0;
    listener.start(
        [&](boost::asio::ip::tcp::socket /*socket*/, const boost::asio::ip::tcp::endpoint& client) {
            if (++calls < 3)
                throw std::bad_alloc();
            clientPort = client.port();
            listener.close();
        },
        kPatience);
    const Client first("127.0.0.1", port);
    const Client second("127.0.0.1", port);
    const Client third("127.0.0.1", port);
    context.run();
    EXPECT_EQ(first.readAll(), "");
    EXPECT_EQ(second.readAll(), "");
    EXPECT_EQ(calls, 3);
    EXPECT_EQ(clientPort, third.port());
    const std::string line =
        "HttpFrontEnd|1|2|Cannot accept connections for now: Cannot allocate memory";
    EXPECT_EQ(log.lines(), std::vector({line}));
}

TEST(Listener, AnExceptionThatIsNotOfMemoryIsLoggedAndTheNextConnectionIsAcceptedAtOnce) {
    const LogRecording log;
    boost::asio::io_context context;
    Listener listener(context, {"127.0.0.1", 0});
    const Client first("127.0.0.1", listener.endpoint().port());
    const Client second("127.0.0.1", listener.endpoint().port());
    int calls = 0;
    listener.start(
        [&](boost::asio::ip::tcp::socket /*socket*/, const boost::asio::ip::tcp::endpoint&) {
            if (++calls == 1)
                throw std::runtime_error("the\nreason");
            listener.close();
        },
        kPatience);
    context.run_one();
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(first.readAll(), "");
    EXPECT_EQ(log.lines(),
              std::vector<std::string>({"HttpFrontEnd|1|2|A connection failed: the\\x0areason"}));
}

// Fills all file descriptors that the process may have.
class AllDescriptors {
  public:
    AllDescriptors() {
        while (takeOne()) {
        }
    }

    // Returns whether there was one.
    bool takeOne() {
        Base::FileDescriptor taken(dup(STDERR_FILENO));
        if (!taken.isOpen())
            return false;
        taken_.push_back(std::move(taken));
        return true;
    }
    void giveOneBack() { taken_.pop_back(); }

  private:
    const ResourceLimit limit_{RLIMIT_NOFILE, 128};
    std::vector<Base::FileDescriptor> taken_;
};

TEST(Listener, EachFreeDescriptorLetsOneConnectionInAndALackOfThemIsLoggedOnce) {
#ifdef TESK_ADDRESS_SANITIZER
    GTEST_SKIP() << "the check of virtual calls opens a pipe, and takes its failure for a fault";
#endif
    constexpr int kClients = 20;
    const LogRecording log;
    boost::asio::io_context context;
    Listener listener(context, {"127.0.0.1", 0});
    std::vector<boost::asio::ip::tcp::socket> accepted;
    accepted.reserve(kClients);
    listener.start(
        [&](boost::asio::ip::tcp::socket socket, const boost::asio::ip::tcp::endpoint&) {
            accepted.push_back(std::move(socket));
        },
        kPatience);
    std::vector<Client> clients;
    for (int count = 0; count < kClients; ++count)
        clients.emplace_back("127.0.0.1", listener.endpoint().port());
    AllDescriptors descriptors;
    context.run_one();
    EXPECT_TRUE(listener.isOutOfDescriptors());
    for (std::size_t count = 1; count <= kClients; ++count) {
        descriptors.giveOneBack();
        EXPECT_EQ(accepted.size(), count - 1);
        listener.goOnWithDescriptors();
        EXPECT_EQ(accepted.size(), count);
    }
    descriptors.giveOneBack();
    listener.goOnWithDescriptors();
    EXPECT_FALSE(listener.isOutOfDescriptors());
    listener.close();
    EXPECT_EQ(log.lines(),
              std::vector<std::string>(
                  {"HttpFrontEnd|1|2|Cannot accept connections for now: Too many open files"}));
}

TEST(Listener, GoesOnByItselfWhenOthersGiveDescriptorsBack) {
#ifdef TESK_ADDRESS_SANITIZER
    GTEST_SKIP() << "the check of virtual calls opens a pipe, and takes its failure for a fault";
#endif
    const LogRecording log;
    boost::asio::io_context context;
    Listener listener(context, {"127.0.0.1", 0});
    int accepted = 0;
    listener.start([&](boost::asio::ip::tcp::socket /*socket*/,
                       const boost::asio::ip::tcp::endpoint&) { ++accepted; },
                   std::chrono::milliseconds(1));
    const Client client("127.0.0.1", listener.endpoint().port());
    {
        const AllDescriptors descriptors;
        context.run_one();
        EXPECT_TRUE(listener.isOutOfDescriptors());
    }
    while (accepted == 0)
        context.run_one();
    EXPECT_FALSE(listener.isOutOfDescriptors());
    EXPECT_EQ(log.lines().size(), 1U);
}

// A client that does not wait until it is connected.
class Connecting {
  public:
    explicit Connecting(std::uint16_t port)
        : socket_(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0)) {
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        EXPECT_NE(
            connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
        EXPECT_EQ(errno, EINPROGRESS);
    }

    [[nodiscard]] bool isConnected() const {
        pollfd waited{.fd = socket_.get(), .events = POLLOUT, .revents = 0};
        return poll(&waited, 1, 0) == 1;
    }

  private:
    Base::FileDescriptor socket_;
};

TEST(Listener, RefusesNewClientsAndKeepsThoseThatAreConnected) {
    boost::asio::io_context context;
    Listener listener(context, {"127.0.0.1", 0});
    const std::uint16_t port = listener.endpoint().port();
    int accepted = 0;
    listener.start(
        [&](boost::asio::ip::tcp::socket socket, const boost::asio::ip::tcp::endpoint&) {
            ++accepted;
            socket.send(boost::asio::buffer("x", 1));
        },
        kPatience);
    std::vector<Client> clients;
    for (int count = 0; count < 100; ++count)
        clients.emplace_back("127.0.0.1", port);
    listener.refuseNewClients();
    const Connecting late(port);
    listener.acceptRestAndClose();
    EXPECT_EQ(accepted, 100);
    EXPECT_FALSE(late.isConnected());
    for (const Client& client : clients) {
        EXPECT_EQ(client.readAll(), "x");
        EXPECT_FALSE(client.wasReset());
    }
}

}  // namespace

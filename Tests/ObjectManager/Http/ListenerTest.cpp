#include <boost/asio/io_context.hpp>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <system_error>
#include <vector>

#include "ObjectManager/Http/Listener.h"
#include "Tests/ObjectManager/Http/Client.h"
#include "Tests/Support/RecordingLogSink.h"

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
        });
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

}  // namespace

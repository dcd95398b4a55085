// SIGTERM and SIGINT: what runs is finished, then everything ends.

#include <csignal>
#include <gtest/gtest.h>
#include <mutex>
#include <system_error>

#include "Tests/EndToEnd/Service/Hammer.h"
#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"
#include "Tests/Support/WaitUntil.h"

namespace {

class ServiceShutdown : public RunningService {
  protected:
    static constexpr const char* kLastLines = "Z information WsdlWebProvider: Shutdown called\n";

    void serveLargeClass() {
        writeModel("test.mof", "class TST_Nothing {};\n" + largeClass());
        start();
    }

    // A client that has got the begin of a document, whose rest waits in the service.
    [[nodiscard]] Client readingLargeDocument() const {
        Client client = sending(get("/root/test/TST_Large.wsdl"));
        EXPECT_EQ(client.read(15), "HTTP/1.1 200 OK");
        return client;
    }

    static void expectRestOfLargeDocument(const Client& client) {
        const std::string rest = client.readAll();
        EXPECT_TRUE(rest.ends_with("</wsdl:definitions>\n")) << rest.size();
    }

    [[nodiscard]] bool refusesConnections(std::size_t index) const {
        try {
            const Client client("127.0.0.1", port(index));
        } catch (const std::system_error& error) {
            return error.code() == std::errc::connection_refused;
        }
        return false;
    }

    void waitUntilRefused(std::size_t index) const {
        ASSERT_TRUE(waitUntil([&] { return refusesConnections(index); }))
            << "connections are still accepted";
    }

    void expectProvidersShutDown() {
        EXPECT_EQ(process().wait(), 0);
        EXPECT_TRUE(process().log().ends_with(kLastLines)) << process().log();
    }
};

TEST_F(ServiceShutdown, SigtermEndsTheService) {
    start();
    process().signal(SIGTERM);
    expectProvidersShutDown();
    EXPECT_EQ(process().readRest(), "");
}

TEST_F(ServiceShutdown, SigintEndsTheService) {
    start();
    process().signal(SIGINT);
    expectProvidersShutDown();
}

TEST_F(ServiceShutdown, IdleConnectionsAreClosed) {
    start();
    const Client silent = connect();
    const Client slow = sending("GET /root/test/TST_Nothing.wsdl HTTP/1.1\r\nHost: a\r\n");
    // By then both are accepted.
    EXPECT_EQ(response(get("/root/test/TST_Nothing.wsdl")), found(expected("TST_Nothing.wsdl")));
    process().signal(SIGTERM);
    EXPECT_EQ(silent.readAll(), "");
    EXPECT_EQ(slow.readAll(), "");
    expectProvidersShutDown();
}

TEST_F(ServiceShutdown, RunningRequestsAreAnsweredWhole) {
    serveLargeClass();
    const Client first = readingLargeDocument();
    const Client second = readingLargeDocument();
    process().signal(SIGTERM);
    process().waitForLog("tesk: Stopping");
    waitUntilRefused(0);
    expectRestOfLargeDocument(first);
    EXPECT_TRUE(process().isRunning());
    expectRestOfLargeDocument(second);
    expectProvidersShutDown();
}

// Whoever gets a response gets a whole one.
TEST_F(ServiceShutdown, UnderLoadNobodyGetsAPartOfAResponse) {
    start();
    const std::string document = found(expected("TST_Nothing.wsdl"));
    Hammer hammer(port(), get("/root/test/TST_Nothing.wsdl"), document, 16);
    hammer.waitForResponses(100);
    process().signal(SIGTERM);
    expectProvidersShutDown();
    for (const std::string& response : hammer.stop())
        EXPECT_FALSE(response.starts_with("HTTP")) << response;
}

// The service listens on two addresses: the second must not serve on while the first is finishing.
TEST_F(ServiceShutdown, NoAddressTakesRequestsWhileAnotherFinishes) {
    listen_ = {"127.0.0.1:0", "127.0.0.1:0"};
    serveLargeClass();
    const Client client = readingLargeDocument();
    process().signal(SIGTERM);
    waitUntilRefused(0);
    waitUntilRefused(1);
    expectRestOfLargeDocument(client);
    expectProvidersShutDown();
}

TEST_F(ServiceShutdown, AReloadThatIsAskedForTooLateDoesNotCutResponsesOff) {
    serveLargeClass();
    const Client client = readingLargeDocument();
    process().signal(SIGTERM);
    waitUntilRefused(0);
    process().signal(SIGHUP);
    expectRestOfLargeDocument(client);
    expectProvidersShutDown();
}

// The process ends while a thread of it still compiles.
TEST_F(ServiceShutdown, AReloadOfALargeModelIsNotWaitedFor) {
    start();
    std::string classes = "class TST_Nothing {};\n";
    for (int index = 0; index < 20'000; ++index)
        classes += "class TST_" + std::to_string(index) + " : TST_Nothing { string Text; };\n";
    writeModel("test.mof", classes);
    process().signal(SIGHUP);
    process().signal(SIGTERM);
    expectProvidersShutDown();
}

TEST_F(ServiceShutdown, ASecondSigintEndsAtOnce) {
    serveLargeClass();
    const Client client = readingLargeDocument();
    process().signal(SIGINT);
    waitUntilRefused(0);
    EXPECT_TRUE(process().isRunning());
    process().signal(SIGINT);
    expectedStatus_ = -SIGINT;
    EXPECT_EQ(process().wait(), -SIGINT);
}

TEST_F(ServiceShutdown, AClientThatDoesNotReadIsNotWaitedForForever) {
    serverKeys_["shutdown_timeout"] = "0.2";
    serveLargeClass();
    const Client client = readingLargeDocument();
    process().signal(SIGTERM);
    expectProvidersShutDown();
    EXPECT_FALSE(client.readAll().ends_with("</wsdl:definitions>\n"));
}

}  // namespace

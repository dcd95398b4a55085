// `tesk serve` with the classes of a CIM server.

#include <csignal>
#include <gtest/gtest.h>

#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/ObjectManager/Security/Files.h"
#include "Tests/Support/StandInCimServer.h"
#include "Tests/Support/WaitUntil.h"

namespace {

class ServiceOfServer : public RunningService {
  protected:
    ServiceOfServer() { server_.setClasses("root/test", "<CLASS NAME=\"TST_One\"/>"); }

    [[nodiscard]] Lines arguments(const Lines& more) const {
        Lines words = {"serve",       "--server",        server_.url(),
                       "--namespace", "root/test",       "--listen",
                       "127.0.0.1:0", "--password-file", directory_ / "users"};
        words.insert(words.end(), more.begin(), more.end());
        return words;
    }

    [[nodiscard]] std::string unavailable() const {
        return server_.url() +
               ": EnumerateQualifiers of root/test: the server responds with the status 503";
    }

    const StandInServer::Response kUnavailable = {
        .bytes = "HTTP/1.1 503 no\r\nContent-Length: 0\r\n\r\n"};
    StandInCimServer server_;
};

TEST_F(ServiceOfServer, ServesItsClassesAndWhatTheyBecome) {
    startWith(arguments({"--refresh", "1"}));
    waitForResponse(get("/root/test/TST_One.wsdl"), "HTTP/1.1 200 OK");
    EXPECT_EQ(response(get("/root/test/TST_Two.wsdl")), kNotFound);
    server_.setClasses("root/test", "<CLASS NAME=\"TST_Two\"/>");
    waitForResponse(get("/root/test/TST_Two.wsdl"), "HTTP/1.1 200 OK");
    EXPECT_EQ(response(get("/root/test/TST_One.wsdl")), kNotFound);
}

TEST_F(ServiceOfServer, ServesThemOnWhenItFails) {
    startWith(arguments({"--refresh", "1"}));
    server_.setOutage(kUnavailable);
    process().waitForLog("its classes stay as they were");
    waitForResponse(get("/root/test/TST_One.wsdl"), "HTTP/1.1 200 OK");
    expectedLog_ = {"warning tesk: " + unavailable() + "; its classes stay as they were"};
}

TEST_F(ServiceOfServer, DoesNotStartWithoutIt) {
    server_.setOutage(kUnavailable);
    TeskProcess process(arguments({}));
    EXPECT_EQ(process.wait(), 1);
    EXPECT_EQ(unusualLines(process.log()), Lines{"tesk: " + unavailable()});
}

TEST_F(ServiceOfServer, StartsWithoutItFromTheCache) {
    const std::string cache = directory_ / "cache";
    startWith(arguments({"--cache", cache}));
    process().signal(SIGTERM);
    EXPECT_EQ(process().wait(), 0);
    server_.setOutage(kUnavailable);
    startWith(arguments({"--cache", cache}));
    waitForResponse(get("/root/test/TST_One.wsdl"), "HTTP/1.1 200 OK");
    const std::string port = server_.url().substr(server_.url().rfind(':') + 1);
    expectedLog_ = {"warning tesk: " + unavailable() +
                    "; its classes are those that were read last, from " + cache +
                    "/http-127.0.0.1-" + port};
}

// It might be silent for minutes.
TEST_F(ServiceOfServer, ASignalEndsAStartThatWaitsForIt) {
    server_.setOutage(StandInServer::Response{.bytes = "", .staysOpen = true});
    for (const int signal : {SIGTERM, SIGINT}) {
        const std::size_t before = server_.requests().size();
        TeskProcess process(arguments({}));
        ASSERT_TRUE(waitUntil([&] { return server_.requests().size() > before; }));
        process.signal(signal);
        EXPECT_EQ(process.wait(), 0);
        EXPECT_EQ(unusualLines(process.log()), Lines());
    }
}

}  // namespace

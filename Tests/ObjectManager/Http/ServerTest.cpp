#include <algorithm>
#include <atomic>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <vector>

#include "ObjectManager/Http/Server.h"
#include "Tests/ObjectManager/Http/HasIPv6.h"
#include "Tests/ObjectManager/Http/RunningServer.h"
#include "Tests/Support/WaitUntil.h"

namespace {

using std::chrono::milliseconds;
using std::chrono::seconds;
using std::chrono::steady_clock;

class ServerTest : public RunningServer {
  protected:
    // Makes the provider report that it has begun, then wait for the test.
    void makeProviderWait() {
        provider_.respond = [this](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
            ++calls_;
            begun_.set_value();
            goOn_.get_future().wait();
            writeTo(ostr, kHello);
            hasReturned_ = true;
        };
    }

    // Makes "/test/slow" a request that needs a password hash and waits for `goesOn`; all others
    // get their response at once.
    void serveSlowly(const std::atomic<bool>& goesOn) {
        provider_.respond = [&](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
            if (request.getUri() == "/test/slow") {
                ++calls_;
                calls_.notify_all();
                goesOn.wait(false);
            }
            writeTo(ostr, kHello);
        };
        needsPasswordHash_ = [this](const TSKHTTPRequest& request) {
            const bool isSlow = request.getUri() == "/test/slow";
            slowRequests_ += isSlow ? 1 : 0;
            slowRequests_.notify_all();
            return isSlow;
        };
    }

    // A client whose request for "/test/slow" the server has read.
    [[nodiscard]] Client sendingSlow() {
        const int before = slowRequests_;
        Client client = sending("GET /test/slow HTTP/1.1\r\nHost: a\r\n\r\n");
        slowRequests_.wait(before);
        return client;
    }

    // Whether the server still reads from a client that it has refused. It ends its side before it
    // closes the connection, but has closed it by the time it refuses another client. After that,
    // the first bytes of the client cause a reset, and sending the next ones fails.
    [[nodiscard]] bool isStillRead(const Client& client) const {
        EXPECT_EQ(connect().readAll().substr(0, 12), "HTTP/1.1 503");
        return client.send("x") && client.send("x");
    }

    // Repeats connecting until there is room for a refused connection to linger.
    void waitUntilRefusedConnectionsMayLinger() const {
        EXPECT_TRUE(waitUntil([&] {
            const Client client = connect();
            EXPECT_EQ(client.readAll().substr(0, 12), "HTTP/1.1 503");
            return isStillRead(client);
        }));
    }

    // Whether nothing listens on `port`.
    [[nodiscard]] static bool refusesConnections(std::uint16_t port) {
        try {
            const Client client("127.0.0.1", port);
        } catch (const std::system_error& error) {
            return error.code() == std::errc::connection_refused;
        }
        return false;
    }

    std::promise<void> begun_;
    std::promise<void> goOn_;
    std::atomic<int> calls_ = 0;
    std::atomic<int> slowRequests_ = 0;
    std::atomic<bool> hasReturned_ = false;
};

TEST(HttpOptions, TheDefaults) {
    const Http::Options options;
    EXPECT_EQ(options.listen, (std::vector<Http::ListenAddress>{{"127.0.0.1", 5985}}));
    EXPECT_EQ(options.workers, 0U);
    EXPECT_EQ(options.maxHeaderSize, 16'384U);
    EXPECT_EQ(options.maxRequestLine, 8'192U);
    EXPECT_EQ(options.maxHeaderFields, 100U);
    EXPECT_EQ(options.maxWaitingHashes, 256U);
    EXPECT_EQ(options.maxConnections, 4'096U);
    EXPECT_EQ(options.maxRefusedConnections, 64U);
    EXPECT_EQ(options.headerTimeout, seconds(10));
    EXPECT_EQ(options.responseTimeout, seconds(30));
    EXPECT_EQ(options.shutdownTimeout, seconds(10));
    EXPECT_EQ(options.lingerTimeout, seconds(5));
    EXPECT_EQ(options.maxLingerBytes, 16'777'216U);
}

TEST_F(ServerTest, ReportsTheAddressThatItListensOn) {
    start();
    EXPECT_EQ(server_->addresses().front().address, "127.0.0.1");
    EXPECT_NE(port(), 0);
}

TEST_F(ServerTest, ServesClientsThatConnectedBeforeItStarted) {
    server_.emplace(options_, manager_, needsPasswordHash_);
    const Client client = sending(kGet);
    server_->start();
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
}

TEST_F(ServerTest, APortThatIsInUseIsAnError) {
    start();
    options_.listen.front().port = this->port();
    try {
        const Http::Server second(options_, manager_);
        FAIL();
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.what(), "Cannot listen on 127.0.0.1 port " +
                                    std::to_string(options_.listen.front().port) +
                                    ": Address already in use");
        EXPECT_EQ(error.code(), std::errc::address_in_use);
    }
}

TEST_F(ServerTest, APortCanBeTakenOverAfterARestart) {
    start();
    options_.listen.front().port = this->port();
    const Client client = sending(kGet);
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
    server_.reset();
    start();
    EXPECT_EQ(responseTo(kGet), kHello);
}

TEST_F(ServerTest, ListensOnIPv6) {
    if (!hasIPv6())
        GTEST_SKIP() << "This machine has no IPv6.";
    std::string seen;
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        TSKString host;
        TSKString port;
        ostr.getPeerAddressString(host, port);
        seen = host.data();
        writeTo(ostr, kHello);
    };
    options_.listen.front().address = "::1";
    start();
    EXPECT_EQ(server_->addresses().front().address, "[::1]");
    EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_EQ(seen, "[::1]");
}

TEST_F(ServerTest, EveryIPv6AddressIncludesIPv4) {
    if (!hasIPv6())
        GTEST_SKIP() << "This machine has no IPv6.";
    std::string seen;
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        TSKString host;
        TSKString port;
        ostr.getPeerAddressString(host, port);
        seen = host.data();
        writeTo(ostr, kHello);
    };
    options_.listen.front().address = "::";
    start();
    EXPECT_EQ(server_->addresses().front().address, "[::]");
    EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_EQ(seen, "[::1]");
    const Client client("127.0.0.1", port());
    EXPECT_TRUE(client.send(kGet));
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_EQ(seen, "127.0.0.1");
}

TEST_F(ServerTest, OneConnectionTooManyIsRefused) {
    options_.maxConnections = 3;
    start();
    std::vector<Client> clients;
    for (int count = 0; count < 3; ++count)
        clients.push_back(connect());
    const std::string busy =
        error("503 Service Unavailable", "The server has too many connections. Try again later.");
    EXPECT_EQ(withoutDate(connect().readAll()), busy);
    for (const Client& client : clients) {
        EXPECT_TRUE(client.send(kGet));
        EXPECT_EQ(withoutDate(client.readAll()), kHello);
    }
    clients.clear();
    waitUntilServed();
}

TEST_F(ServerTest, ARefusedClientThatHasSentItsRequestGetsTheResponse) {
    options_.maxConnections = 1;
    server_.emplace(options_, manager_, needsPasswordHash_);
    const Client first = connect();
    const Client second = sending(kGet);
    const Client third = sending("HEAD /test HTTP/1.1\r\nHost: a\r\n\r\n");
    server_->start();
    EXPECT_EQ(
        withoutDate(second.readAll()),
        error("503 Service Unavailable", "The server has too many connections. Try again later."));
    EXPECT_EQ(withoutDate(third.readAll()),
              "HTTP/1.1 503 Service Unavailable\r\nConnection: close\r\nRetry-After: 5\r\n"
              "Content-Type: text/plain; charset=utf-8\r\nContent-Length: 54\r\n\r\n");
    EXPECT_FALSE(second.wasReset());
    EXPECT_FALSE(third.wasReset());
}

TEST_F(ServerTest, ARefusedClientThatIsStillSendingGetsTheResponse) {
    options_.maxConnections = 1;
    start();
    const Client first = connect();
    for (const char* const begin : {"", "GET /test HTTP/1.1\r\n"}) {
        const Client client = sending(begin);
        const std::string status = client.read(12);
        EXPECT_TRUE(client.send("Host: a\r\n"));
        EXPECT_TRUE(client.send("\r\n"));
        EXPECT_EQ(withoutDate(status + client.readAll()),
                  error("503 Service Unavailable",
                        "The server has too many connections. Try again later."));
        EXPECT_FALSE(client.wasReset());
    }
}

TEST_F(ServerTest, TheNumberOfLingeringRefusedConnectionsHasALimit) {
    options_.maxConnections = 1;
    options_.maxRefusedConnections = 2;
    start();
    const Client first = connect();
    std::vector<Client> lingering;
    for (int count = 0; count < 2; ++count) {
        lingering.push_back(connect());
        EXPECT_EQ(lingering.back().readAll().substr(0, 12), "HTTP/1.1 503");
    }
    const Client closed = connect();
    EXPECT_EQ(closed.readAll().substr(0, 12), "HTTP/1.1 503");
    EXPECT_FALSE(closed.wasReset());
    EXPECT_FALSE(isStillRead(closed));
    for (const Client& client : lingering)
        EXPECT_TRUE(isStillRead(client));
    lingering.clear();
    waitUntilRefusedConnectionsMayLinger();
}

TEST_F(ServerTest, ARefusedConnectionDoesNotLingerForever) {
    options_.maxConnections = 1;
    options_.maxRefusedConnections = 1;
    options_.lingerTimeout = milliseconds(50);
    start();
    const Client first = connect();
    const Client silent = connect();
    EXPECT_EQ(silent.readAll().substr(0, 12), "HTTP/1.1 503");
    waitUntilRefusedConnectionsMayLinger();
    EXPECT_FALSE(isStillRead(silent));
}

TEST_F(ServerTest, StopDoesNotWaitForRefusedConnections) {
    options_.maxConnections = 1;
    options_.lingerTimeout = seconds(300);
    start();
    const Client first = connect();
    const Client refused = connect();
    EXPECT_EQ(refused.readAll().substr(0, 12), "HTTP/1.1 503");
    EXPECT_TRUE(server_->stop());
    EXPECT_FALSE(refused.send("x") && refused.send("x"));
}

TEST_F(ServerTest, ListensOnSeveralAddresses) {
    options_.listen.assign(3, {.address = "127.0.0.1", .port = 0});
    start();
    ASSERT_EQ(server_->addresses().size(), 3U);
    for (const auto& [address, port] : server_->addresses()) {
        EXPECT_EQ(address, "127.0.0.1");
        const Client client("127.0.0.1", port);
        EXPECT_TRUE(client.send(kGet));
        EXPECT_EQ(withoutDate(client.readAll()), kHello);
    }
    const std::vector<Http::ListenAddress> addresses = server_->addresses();
    EXPECT_TRUE(server_->stop());
    for (const Http::ListenAddress& address : addresses)
        EXPECT_TRUE(refusesConnections(address.port));
}

TEST_F(ServerTest, TheLimitOfConnectionsIsForAllAddressesTogether) {
    options_.listen.assign(3, {.address = "127.0.0.1", .port = 0});
    options_.maxConnections = 2;
    start();
    const auto connectTo = [&](std::size_t index) {
        return Client("127.0.0.1", server_->addresses().at(index).port);
    };
    const Client first = connectTo(0);
    EXPECT_EQ(responseTo(kGet), kHello);  // the first client has been accepted before this one
    const Client second = connectTo(1);
    EXPECT_EQ(connectTo(1).readAll().substr(0, 12), "HTTP/1.1 503");
    EXPECT_EQ(connectTo(2).readAll().substr(0, 12), "HTTP/1.1 503");
    EXPECT_TRUE(second.send(kGet));
    EXPECT_EQ(withoutDate(second.readAll()), kHello);
}

TEST_F(ServerTest, RequestsThatNeedAPasswordHashNeverBlockOthers) {
    std::atomic<bool> goesOn = false;
    serveSlowly(goesOn);
    options_.workers = 2;
    start();
    std::vector<Client> slow;
    for (int count = 0; count < 10; ++count)
        slow.push_back(sendingSlow());
    for (int count = 0; count < 10; ++count)
        EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_EQ(calls_, 1);  // one at a time
    goesOn = true;
    goesOn.notify_all();
    for (const Client& client : slow)
        EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_EQ(calls_, 10);
}

TEST_F(ServerTest, OneWaitingPasswordHashTooManyIsRefused) {
    std::atomic<bool> goesOn = false;
    serveSlowly(goesOn);
    options_.workers = 2;
    options_.maxWaitingHashes = 2;
    start();
    std::vector<Client> slow;
    slow.push_back(sendingSlow());
    calls_.wait(0);
    slow.push_back(sendingSlow());
    slow.push_back(sendingSlow());
    EXPECT_EQ(withoutDate(sendingSlow().readAll()),
              error("503 Service Unavailable",
                    "The server has too many requests. Try again "
                    "later."));
    EXPECT_EQ(responseTo(kGet), kHello);
    goesOn = true;
    goesOn.notify_all();
    for (const Client& client : slow)
        EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_EQ(withoutDate(sendingSlow().readAll()), kHello);
}

TEST_F(ServerTest, NeedsPasswordHashAndTheProviderGetThePreparedRequest) {
    class Prepared : public TSKHTTPRequest {
      public:
        explicit Prepared(const TSKHTTPRequest& request) : TSKHTTPRequest(request) {}
    };
    std::atomic<bool> wasAskedAboutIt = false;
    prepare_ = [](const TSKHTTPRequest& request) { return std::make_unique<Prepared>(request); };
    needsPasswordHash_ = [&](const TSKHTTPRequest& request) {
        wasAskedAboutIt = dynamic_cast<const Prepared*>(&request) != nullptr;
        return false;
    };
    provider_.respond = [](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        EXPECT_NE(dynamic_cast<const Prepared*>(&request), nullptr);
        EXPECT_EQ(request.getUri(), "/test");
        writeTo(ostr, kHello);
    };
    start();
    EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_TRUE(wasAskedAboutIt);
}

TEST_F(ServerTest, AFailureOfNeedsPasswordHashClosesOneConnection) {
    needsPasswordHash_ = [](const TSKHTTPRequest& request) -> bool {
        if (request.getUri() == "/test/bad")
            throw std::runtime_error("reason");
        return false;
    };
    start();
    const Client client = sending("GET /test/bad HTTP/1.1\r\n");
    EXPECT_EQ(responseTo(kGet), kHello);  // the client has been accepted before this one
    EXPECT_TRUE(client.send("Host: a\r\n\r\n"));
    EXPECT_EQ(client.readAll(), "");
    EXPECT_EQ(responseTo(kGet), kHello);
    expectedLog_ = {"HttpFrontEnd|1|2|A connection failed: reason"};
}

TEST_F(ServerTest, TwoThousandIdleClientsDelayNoOtherClient) {
    constexpr rlim_t kDescriptors = 4200;
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    if (limit.rlim_max < kDescriptors)
        GTEST_SKIP() << "This process may not open enough files.";
    limit.rlim_cur = std::max(limit.rlim_cur, kDescriptors);
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    options_.workers = 1;
    options_.headerTimeout = seconds(60);
    start();
    std::vector<Client> idle;
    for (int count = 0; count < 2000; ++count)
        idle.push_back(connect());
    EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_TRUE(idle.front().send(kGet));
    EXPECT_TRUE(idle.back().send(kGet));
    EXPECT_EQ(withoutDate(idle.front().readAll()), kHello);
    EXPECT_EQ(withoutDate(idle.back().readAll()), kHello);
}

TEST_F(ServerTest, AcceptsAgainAfterTheFileDescriptorsHaveRunOut) {
#ifdef TESK_ADDRESS_SANITIZER
    GTEST_SKIP() << "the check of virtual calls opens a pipe, and takes its failure for a fault";
#endif
    start();
    const Client client = [&] {
        Client connected = connect();
        EXPECT_EQ(responseTo(kGet), kHello);  // the first client has been accepted before this one
        return connected;
    }();
    rlimit limit{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &limit), 0);
    const rlimit before = limit;
    limit.rlim_cur = 256;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &limit), 0);
    std::vector<int> taken;
    for (int descriptor = dup(STDERR_FILENO); descriptor >= 0; descriptor = dup(STDERR_FILENO))
        taken.push_back(descriptor);
    ASSERT_FALSE(taken.empty());
    close(taken.back());  // for the client's side
    taken.pop_back();
    const Client waiting = sending(kGet);
    EXPECT_TRUE(waitUntil([&] { return !log_.lines().empty(); }));
    EXPECT_TRUE(client.send(kGet));
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
    for (const int descriptor : taken)
        close(descriptor);
    EXPECT_EQ(withoutDate(waiting.readAll()), kHello);
    EXPECT_EQ(setrlimit(RLIMIT_NOFILE, &before), 0);
    expectedLog_ = {"HttpFrontEnd|1|2|Cannot accept connections for now: Too many open files"};
}

TEST_F(ServerTest, StopsWithoutClients) {
    start();
    EXPECT_TRUE(server_->stop());
    EXPECT_TRUE(refusesConnections(port()));
    EXPECT_TRUE(server_->stop());
}

TEST_F(ServerTest, StopsBeforeItHasStarted) {
    server_.emplace(options_, manager_, needsPasswordHash_);
    EXPECT_TRUE(server_->stop());
    EXPECT_TRUE(refusesConnections(port()));
}

TEST_F(ServerTest, StopClosesConnectionsWithoutARequest) {
    options_.headerTimeout = seconds(60);
    start();
    const Client silent = connect();
    const Client begun = sending("GET /test HTTP/1.1\r\n");
    EXPECT_EQ(responseTo(kGet), kHello);  // all have been accepted
    EXPECT_TRUE(server_->stop());
    EXPECT_EQ(silent.readAll(), "");
    EXPECT_EQ(begun.readAll(), "");
}

TEST_F(ServerTest, StopLetsRunningRequestsFinish) {
    makeProviderWait();
    start();
    const Client client = sending(kGet);
    begun_.get_future().wait();
    std::future<bool> stopped = std::async(std::launch::async, [&] { return server_->stop(); });
    while (!refusesConnections(port()))
        std::this_thread::yield();
    goOn_.set_value();
    EXPECT_TRUE(stopped.get());
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
}

TEST_F(ServerTest, StopReportsAProviderThatDoesNotReturn) {
    makeProviderWait();
    options_.shutdownTimeout = milliseconds(1);
    start();
    const Client client = sending(kGet);
    begun_.get_future().wait();
    EXPECT_FALSE(server_->stop());
    goOn_.set_value();
    EXPECT_TRUE(waitUntil([&] { return server_->stop(); }));
    EXPECT_EQ(client.readAll(), "");
}

TEST_F(ServerTest, StopDropsWaitingRequestsAfterTheTimeout) {
    makeProviderWait();
    options_.workers = 1;
    options_.maxConnections = 2;
    options_.shutdownTimeout = milliseconds(1);
    start();
    const Client running = sending(kGet);
    begun_.get_future().wait();
    const Client waiting = sending(kGet);
    // The server has read the request when it has refused two other connections.
    for (int count = 0; count < 2; ++count)
        EXPECT_EQ(connect().readAll().substr(0, 12), "HTTP/1.1 503");
    EXPECT_FALSE(server_->stop());
    EXPECT_EQ(waiting.readAll(), "");
    EXPECT_FALSE(waiting.wasReset());
    goOn_.set_value();
    EXPECT_TRUE(waitUntil([&] { return server_->stop(); }));
    EXPECT_EQ(calls_, 1);
}

TEST_F(ServerTest, StopCutsOffClientsThatReadNothing) {
    const std::string large(16UL * 1024 * 1024, 'x');
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, "HTTP/1.1 200 OK\r\n\r\n");
        writeTo(ostr, large);
    };
    options_.shutdownTimeout = milliseconds(1);
    start();
    const Client client = sending(kGet);
    EXPECT_EQ(client.read(12), "HTTP/1.1 200");
    EXPECT_TRUE(server_->stop());
    EXPECT_LT(client.readAll().size(), large.size());
}

TEST_F(ServerTest, StopLetsClientsReadTheirResponse) {
    const std::string large(16UL * 1024 * 1024, 'x');
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n");
        writeTo(ostr, large);
    };
    start();
    const Client client = sending(kGet);
    const std::string begin = client.read(12);
    std::future<bool> stopped = std::async(std::launch::async, [&] { return server_->stop(); });
    while (!refusesConnections(port()))
        std::this_thread::yield();
    EXPECT_EQ(withoutDate(begin + client.readAll()),
              "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n" + large);
    EXPECT_TRUE(stopped.get());
}

TEST_F(ServerTest, TheDestructorWaitsForTheProvider) {
    makeProviderWait();
    start();
    const Client client = sending(kGet);
    begun_.get_future().wait();
    std::thread releasing([this, port = this->port()] {
        while (!refusesConnections(port))
            std::this_thread::yield();
        goOn_.set_value();
    });
    server_.reset();
    EXPECT_TRUE(hasReturned_);
    releasing.join();
}

}  // namespace

#include <algorithm>
#include <array>
#include <atomic>
#include <fcntl.h>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <netinet/in.h>
#include <optional>
#include <poll.h>
#include <set>
#include <stdexcept>
#include <string>
#include <sys/resource.h>
#include <sys/socket.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>
#include <vector>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Http/Server.h"
#include "Tests/ObjectManager/Http/HasIPv6.h"
#include "Tests/ObjectManager/Http/RunningServer.h"
#include "Tests/Support/ResourceLimit.h"
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

    void TearDown() override {
        release();
        RunningServer::TearDown();
    }

    // Makes the provider hold requests for "/test/hold" until release().
    void holdRequests() {
        options_.workers = 4;
        provider_.respond = [this](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
            if (request.getUri() == "/test/hold") {
                ++held_;
                held_.notify_all();
                isReleased_.wait(false);
            }
            writeTo(ostr, kHello);
        };
    }
    void release() {
        isReleased_ = true;
        isReleased_.notify_all();
    }

    // A client whose request the provider holds. Its connection cannot make room.
    [[nodiscard]] Client holding(std::size_t address = 0) {
        const int before = held_;
        Client client("127.0.0.1", server_->addresses().at(address).port);
        EXPECT_TRUE(client.send("GET /test/hold HTTP/1.1\r\nHost: a\r\n\r\n"));
        held_.wait(before);
        return client;
    }

    // Makes requests for "/test/PASSWORD" need a hash for their password, which waits for `goesOn`
    // unless it is "right".
    void hashSlowly(const std::atomic<bool>& goesOn) {
        authentication_.unverifiedLogin =
            [this](const TSKHTTPRequest& request) -> std::optional<Http::Authentication::Login> {
            const std::string path = request.getUri().data();
            const std::lock_guard lock(mutex_);
            ++asked_;
            asked_.notify_all();
            if (path == "/test" || verified_.contains(path))
                return std::nullopt;
            return {{.user = "alice", .credentials = path}};
        };
        authentication_.verify = [&](TSKHTTPRequest& request) {
            const std::string path = request.getUri().data();
            ++calls_;
            calls_.notify_all();
            if (path != "/test/right")
                goesOn.wait(false);
            const std::lock_guard lock(mutex_);
            hashed_.push_back(path);
            verified_.insert(path);
            return path == "/test/right";
        };
    }

    // A client whose request with that password the server has read.
    [[nodiscard]] Client sendingPassword(const std::string& password,
                                         const std::string& source = "127.0.0.1") {
        const int before = asked_;
        Client client =
            sendingFrom(source, "GET /test/" + password + " HTTP/1.1\r\nHost: a\r\n\r\n");
        asked_.wait(before);
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

    static inline const std::string kBusy =
        error("503 Service Unavailable", "The server has too many connections. Try again later.");

    std::atomic<int> held_ = 0;
    std::atomic<bool> isReleased_ = false;
    std::promise<void> begun_;
    std::promise<void> goOn_;
    std::atomic<int> calls_ = 0;
    std::atomic<int> asked_ = 0;
    std::mutex mutex_;
    std::set<std::string> verified_;  // guarded by mutex_
    Lines hashed_;                    // in their order; guarded by mutex_
    std::atomic<bool> hasReturned_ = false;
};

TEST(HttpOptions, TheDefaults) {
    const Http::Options options;
    EXPECT_EQ(options.listen, (std::vector<Http::ListenAddress>{{"127.0.0.1", 5985}}));
    EXPECT_EQ(options.workers, 0U);
    EXPECT_EQ(options.maxHeaderSize, 16'384U);
    EXPECT_EQ(options.maxRequestLine, 8'192U);
    EXPECT_EQ(options.maxHeaderFields, 100U);
    EXPECT_EQ(options.requestTimeout, seconds(60));
    EXPECT_EQ(options.maxWaitingHashes, 256U);
    EXPECT_EQ(options.maxWaitingHashesPerClient, 64U);
    EXPECT_EQ(options.maxRunningHashes, 4U);
    EXPECT_EQ(options.maxConnections, 4'096U);
    EXPECT_EQ(options.maxConnectionsPerClient, std::nullopt);
    EXPECT_EQ(options.maxRefusedConnections, 64U);
    EXPECT_EQ(options.reservedDescriptors, 64U);
    EXPECT_EQ(options.descriptorTimeout, seconds(1));
    EXPECT_EQ(options.stopGrace, milliseconds(500));
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
    server_.emplace(options_, manager_);
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
    holdRequests();
    start();
    std::vector<Client> clients;
    for (int count = 0; count < 3; ++count)
        clients.push_back(holding());
    EXPECT_EQ(withoutDate(connect().readAll()), kBusy);
    release();
    for (const Client& client : clients)
        EXPECT_EQ(withoutDate(client.readAll()), kHello);
    waitUntilServed();
}

TEST_F(ServerTest, TheOldestConnectionWithoutARequestMakesRoom) {
    options_.maxConnections = 3;
    holdRequests();
    start();
    const Client running = holding();
    const Client oldest = connect();
    const Client begun = sending("GET /test HTTP/1.1\r\n");
    EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_EQ(oldest.readAll(), "");
    EXPECT_FALSE(oldest.wasReset());
    EXPECT_FALSE(begun.hasInput());
    const Client fourth = connect();
    EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_EQ(withoutDate(begun.readAll()), kBusy);
    EXPECT_TRUE(fourth.send(kGet));
    EXPECT_EQ(withoutDate(fourth.readAll()), kHello);
    release();
    EXPECT_EQ(withoutDate(running.readAll()), kHello);
}

TEST_F(ServerTest, AHundredTimesAsManyIdleConnectionsAsPlacesKeepNoRequestOut) {
    options_.maxConnections = 4;
    start();
    std::vector<Client> idle;
    for (int count = 0; count < 400; ++count) {
        idle.push_back(connect());
        if (count % 20 == 0) {
            EXPECT_EQ(responseTo(kGet), kHello);
        }
    }
    EXPECT_EQ(responseTo(kGet), kHello);
}

TEST_F(ServerTest, OneConnectionTooManyOfAClientIsRefused) {
    options_.maxConnectionsPerClient = 2;
    start();
    const Client first = connect();
    const Client second = connect();
    EXPECT_EQ(withoutDate(connect().readAll()),
              error("503 Service Unavailable",
                    "Too many connections come from your address. Try again later."));
    EXPECT_EQ(withoutDate(sendingFrom("127.0.0.2", kGet).readAll()), kHello);
    for (const Client* const client : {&first, &second}) {
        EXPECT_TRUE(client->send(kGet));
        EXPECT_EQ(withoutDate(client->readAll()), kHello);
    }
    waitUntilServed();
}

TEST_F(ServerTest, AClientHasAQuarterOfTheConnectionsByDefault) {
    options_.maxConnections = 8;
    options_.maxConnectionsPerClient.reset();
    start();
    const Client first = connect();
    const Client second = connect();
    EXPECT_EQ(connect().readAll().substr(0, 12), "HTTP/1.1 503");
    EXPECT_EQ(withoutDate(sendingFrom("127.0.0.2", kGet).readAll()), kHello);
}

TEST_F(ServerTest, ATrustedProxyHasNoLimitOfItsOwn) {
    options_.maxConnectionsPerClient = 1;
    options_.trustedProxies = {Http::Network::parse("127.0.0.1")};
    start();
    const Client first = connect();
    const Client second = connect();
    EXPECT_EQ(responseTo(kGet), kHello);
    const Client other = sendingFrom("127.0.0.2", "");
    EXPECT_EQ(sendingFrom("127.0.0.2", kGet).readAll().substr(0, 12), "HTTP/1.1 503");
}

TEST_F(ServerTest, ARefusedClientThatHasSentItsRequestGetsTheResponse) {
    options_.maxConnectionsPerClient = 1;
    server_.emplace(options_, manager_);
    const Client first = connect();
    const Client second = sending(kGet);
    const Client third = sending("HEAD /test HTTP/1.1\r\nHost: a\r\n\r\n");
    server_->start();
    EXPECT_EQ(second.readAll().substr(0, 12), "HTTP/1.1 503");
    const std::string header = third.readAll();
    EXPECT_EQ(header.substr(0, 12), "HTTP/1.1 503");
    EXPECT_TRUE(header.ends_with("\r\n\r\n"));
    EXPECT_FALSE(second.wasReset());
    EXPECT_FALSE(third.wasReset());
}

TEST_F(ServerTest, ARefusedClientThatIsStillSendingGetsTheResponse) {
    options_.maxConnections = 1;
    holdRequests();
    start();
    const Client first = holding();
    for (const char* const begin : {"", "GET /test HTTP/1.1\r\n"}) {
        const Client client = sending(begin);
        const std::string status = client.read(12);
        EXPECT_TRUE(client.send("Host: a\r\n"));
        EXPECT_TRUE(client.send("\r\n"));
        EXPECT_EQ(withoutDate(status + client.readAll()), kBusy);
        EXPECT_FALSE(client.wasReset());
    }
}

TEST_F(ServerTest, TheNumberOfLingeringRefusedConnectionsHasALimit) {
    options_.maxConnections = 1;
    options_.maxRefusedConnections = 2;
    holdRequests();
    start();
    const Client first = holding();
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
    holdRequests();
    start();
    const Client first = holding();
    const Client silent = connect();
    EXPECT_EQ(silent.readAll().substr(0, 12), "HTTP/1.1 503");
    waitUntilRefusedConnectionsMayLinger();
    EXPECT_FALSE(isStillRead(silent));
}

TEST_F(ServerTest, StopDoesNotWaitForRefusedConnections) {
    options_.maxConnectionsPerClient = 1;
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
    holdRequests();
    start();
    const Client first = holding(0);
    const Client second = holding(1);
    for (const auto& [address, port] : server_->addresses())
        EXPECT_EQ(withoutDate(Client("127.0.0.1", port).readAll()), kBusy);
    release();
    EXPECT_EQ(withoutDate(second.readAll()), kHello);
}

TEST_F(ServerTest, RequestsThatNeedAPasswordHashNeverBlockOthers) {
    std::atomic<bool> goesOn = false;
    hashSlowly(goesOn);
    options_.workers = 2;
    start();
    std::vector<Client> slow;
    for (int count = 0; count < 6; ++count)
        slow.push_back(sendingPassword("wrong" + std::to_string(count)));
    for (int count = 0; count < 10; ++count)
        EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_EQ(calls_, 1);  // one at a time
    goesOn = true;
    goesOn.notify_all();
    for (const Client& client : slow)
        EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_EQ(calls_, 6);
}

TEST_F(ServerTest, FourHundredRequestsWithOnePasswordAreServedAfterOneHash) {
    std::atomic<bool> goesOn = false;
    hashSlowly(goesOn);
    start();
    std::vector<Client> clients;
    for (int count = 0; count < 400; ++count)
        clients.push_back(sendingPassword("one"));
    EXPECT_EQ(calls_, 1);
    goesOn = true;
    goesOn.notify_all();
    for (const Client& client : clients)
        EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_EQ(calls_, 1);
}

TEST_F(ServerTest, FourHundredWrongPasswordsDoNotKeepAnotherAddressOut) {
    std::atomic<bool> goesOn = false;
    hashSlowly(goesOn);
    options_.workers = 2;
    start();
    std::vector<Client> strangers;
    for (int count = 0; count < 400; ++count)
        strangers.push_back(sendingPassword("wrong" + std::to_string(count)));
    const Client user = sendingPassword("right", "127.0.0.2");
    EXPECT_EQ(strangers.back().readAll().substr(0, 12), "HTTP/1.1 503");
    goesOn = true;
    goesOn.notify_all();
    EXPECT_EQ(withoutDate(user.readAll()), kHello);
    // One ran already, and the address of the strangers may have had the next turn.
    const std::lock_guard lock(mutex_);
    EXPECT_TRUE(std::ranges::find(hashed_.begin(), hashed_.begin() + 3, "/test/right") !=
                hashed_.begin() + 3);
}

TEST_F(ServerTest, BehindATrustedProxyEachClientHasItsShareOfHashes) {
    std::atomic<bool> goesOn = false;
    hashSlowly(goesOn);
    options_.workers = 2;
    options_.maxWaitingHashesPerClient = 1;
    options_.trustedProxies = {Http::Network::parse("127.0.0.1")};
    start();
    const auto sendingBehindProxy = [&](const std::string& client, const std::string& password) {
        const int before = asked_;
        Client result = sending("GET /test/" + password + " HTTP/1.1\r\nHost: a\r\n" +
                                "X-Forwarded-For: " + client + "\r\n\r\n");
        asked_.wait(before);
        return result;
    };
    const Client running = sendingBehindProxy("192.0.2.1", "wrong1");
    calls_.wait(0);
    const Client waiting = sendingBehindProxy("192.0.2.1", "wrong2");
    const Client refused = sendingBehindProxy("192.0.2.1", "wrong3");
    const Client other = sendingBehindProxy("192.0.2.2", "wrong4");
    EXPECT_EQ(refused.readAll().substr(0, 12), "HTTP/1.1 503");
    goesOn = true;
    goesOn.notify_all();
    for (const Client* const client : {&running, &waiting, &other})
        EXPECT_EQ(withoutDate(client->readAll()), kHello);
}

TEST_F(ServerTest, OneWaitingPasswordHashTooManyIsRefused) {
    std::atomic<bool> goesOn = false;
    hashSlowly(goesOn);
    options_.workers = 2;
    options_.maxWaitingHashes = 2;
    start();
    std::vector<Client> slow;
    slow.push_back(sendingPassword("wrong1"));
    calls_.wait(0);
    slow.push_back(sendingPassword("wrong2"));
    slow.push_back(sendingPassword("wrong3"));
    EXPECT_EQ(
        withoutDate(sendingPassword("wrong4").readAll()),
        error("503 Service Unavailable", "The server has too many requests. Try again later."));
    EXPECT_EQ(responseTo(kGet), kHello);
    goesOn = true;
    goesOn.notify_all();
    for (const Client& client : slow)
        EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_EQ(withoutDate(sendingPassword("wrong5").readAll()), kHello);
}

TEST_F(ServerTest, AProviderThatDoesNotReturnCostsItsWorkerNotTheService) {
    options_.requestTimeout = milliseconds(500);
    holdRequests();
    options_.workers = 2;
    start();
    const std::string late =
        error("504 Gateway Timeout", "The server did not make the response in time.");
    const Lines line = {
        "HttpFrontEnd|1|2|GET /test/hold HTTP/1.1: the provider did not respond in time"};
    const std::string replaced =
        "HttpFrontEnd|1|2|A worker that waits for a provider is replaced by another one, ";
    const Client first = holding();
    const Client second = holding();
    EXPECT_EQ(withoutDate(first.readAll()), late);
    EXPECT_EQ(withoutDate(second.readAll()), late);
    for (int count = 0; count < 10; ++count)
        EXPECT_EQ(responseTo(kGet), kHello);
    const Client third = holding();
    EXPECT_EQ(withoutDate(third.readAll()), late);
    EXPECT_EQ(responseTo(kGet), kHello);  // by the last worker
    expectedLog_ = {line[0],
                    replaced + "1 of at most 2 times",
                    line[0],
                    replaced + "2 of at most 2 times",
                    line[0],
                    "HttpFrontEnd|1|2|A worker that waits for a provider cannot be replaced; 2 of "
                    "at most 2 have been"};
    options_.shutdownTimeout = milliseconds(1);
    release();
    EXPECT_TRUE(waitUntil([&] { return server_->stop(); }));
}

TEST_F(ServerTest, StopReportsAProviderWhoseWorkerWasReplaced) {
    options_.requestTimeout = milliseconds(1);
    options_.shutdownTimeout = milliseconds(1);
    holdRequests();
    start();
    const Client client = holding();
    EXPECT_EQ(client.readAll().substr(0, 12), "HTTP/1.1 504");
    EXPECT_FALSE(server_->stop());
    release();
    EXPECT_TRUE(waitUntil([&] { return server_->stop(); }));
    expectedLog_ = log_.lines();
    EXPECT_EQ(expectedLog_.size(), 2U);
}

TEST_F(ServerTest, AuthenticationAndTheProviderGetThePreparedRequest) {
    class Prepared : public TSKHTTPRequest {
      public:
        explicit Prepared(const TSKHTTPRequest& request) : TSKHTTPRequest(request) {}
    };
    std::atomic<bool> wasAskedAboutIt = false;
    authentication_.prepare = [](const TSKHTTPRequest& request, const std::string& /*user*/) {
        return std::make_unique<Prepared>(request);
    };
    authentication_.unverifiedLogin = [&](const TSKHTTPRequest& request) {
        wasAskedAboutIt = dynamic_cast<const Prepared*>(&request) != nullptr;
        return std::nullopt;
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

TEST_F(ServerTest, AFailureOfTheAuthenticationClosesOneConnection) {
    authentication_.prepare = [](const TSKHTTPRequest& request, const std::string& /*user*/) {
        if (request.getUri() == "/test/bad")
            throw std::runtime_error("reason");
        return std::make_unique<TSKHTTPRequest>(request);
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

TEST_F(ServerTest, ServesFewerConnectionsThanConfiguredIfItMayNotOpenSoManyFiles) {
    constexpr rlim_t kDescriptors = 200;
    constexpr std::size_t kConnections = 119;  // 200 less 64 for files, less 17 that are refused
    {
        const ResourceLimit limit(RLIMIT_NOFILE, kDescriptors);
        options_.maxConnections = 500;
        start();
    }
    expectedLog_ = {
        "HttpFrontEnd|2|2|The process may open 200 files, too few for 500 connections "
        "(max_connections); it serves 119 at once. Raise the limit, which ulimit -n shows, or "
        "lower max_connections"};
    std::vector<Client> idle;
    for (std::size_t count = 0; count < kConnections; ++count)
        idle.push_back(connect());
    EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_EQ(idle.front().readAll(), "");  // has made room
    EXPECT_FALSE(idle.back().hasInput());
}

TEST_F(ServerTest, DoesNotWarnIfItMayOpenEnoughFiles) {
    const ResourceLimit limit(RLIMIT_NOFILE, 200);
    options_.maxConnections = 100;
    options_.maxRefusedConnections = 36;
    start();
    EXPECT_EQ(responseTo(kGet), kHello);
}

// The next attempt without that would come after minutes.
TEST_F(ServerTest, AClosedConnectionLetsTheNextOneInWhenFileDescriptorsHaveRunOut) {
#ifdef TESK_ADDRESS_SANITIZER
    GTEST_SKIP() << "the check of virtual calls opens a pipe, and takes its failure for a fault";
#endif
    options_.descriptorTimeout = kPatience;
    server_.emplace(options_, manager_);
    std::vector<Client> clients;
    for (int count = 0; count < 50; ++count)
        clients.push_back(sending(kGet));
    const ResourceLimit limit(RLIMIT_NOFILE, 256);
    std::vector<Base::FileDescriptor> taken;
    while (taken.empty() || taken.back().isOpen())
        taken.emplace_back(dup(STDERR_FILENO));
    taken.resize(taken.size() - 2);  // one is free
    server_->start();
    for (const Client& client : clients)
        EXPECT_EQ(withoutDate(client.readAll()), kHello);
    expectedLog_ = {"HttpFrontEnd|1|2|Cannot accept connections for now: Too many open files"};
}

TEST_F(ServerTest, StopsWithoutClients) {
    start();
    EXPECT_TRUE(server_->stop());
    EXPECT_TRUE(refusesConnections(port()));
    EXPECT_TRUE(server_->stop());
}

TEST_F(ServerTest, StopsBeforeItHasStarted) {
    server_.emplace(options_, manager_);
    EXPECT_TRUE(server_->stop());
    EXPECT_TRUE(refusesConnections(port()));
}

TEST_F(ServerTest, StopClosesConnectionsWithoutARequest) {
    options_.stopGrace = milliseconds(1);
    start();
    const Client silent = connect();
    const Client begun = sending("GET /test HTTP/1.1\r\n");
    EXPECT_EQ(responseTo(kGet), kHello);  // all have been accepted
    EXPECT_TRUE(server_->stop());
    EXPECT_EQ(silent.readAll(), "");
    EXPECT_EQ(begun.readAll(), "");
}

TEST_F(ServerTest, StopWaitsForTheRequestOfAConnectedClient) {
    options_.stopGrace = kPatience;
    start();
    const Client begun = sending("GET /test HTTP/1.1\r\n");
    EXPECT_EQ(responseTo(kGet), kHello);  // it has been accepted
    std::future<bool> stopped = std::async(std::launch::async, [&] { return server_->stop(); });
    while (!refusesConnections(port()))
        std::this_thread::yield();
    EXPECT_TRUE(begun.send("Host: a\r\n\r\n"));
    EXPECT_EQ(withoutDate(begun.readAll()), kHello);
    EXPECT_TRUE(stopped.get());
}

TEST_F(ServerTest, StopServesClientsThatWaitToBeAccepted) {
    constexpr int kClients = 50;
    options_.stopGrace = kPatience;
    std::promise<void> begun;
    std::promise<void> goOn;
    authentication_.prepare = [&](const TSKHTTPRequest& request, const std::string& /*user*/) {
        if (request.getUri() == "/test/block") {
            begun.set_value();
            goOn.get_future().wait();  // blocks the I/O thread
        }
        return std::make_unique<TSKHTTPRequest>(request);
    };
    start();
    const Client blocking = sending("GET /test/block HTTP/1.1\r\nHost: a\r\n\r\n");
    begun.get_future().wait();
    std::vector<Client> clients;
    for (int count = 0; count < kClients; ++count)
        clients.push_back(sending(kGet));
    std::future<bool> stopped = std::async(std::launch::async, [&] { return server_->stop(); });
    goOn.set_value();
    for (const Client& client : clients)
        EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_TRUE(stopped.get());
}

// A client that sends requests on new connections until it cannot connect any more.
class LoadingClient {
  public:
    LoadingClient(std::uint16_t port, std::string request, std::string response)
        : port_(port), request_(std::move(request)), response_(std::move(response)) {}

    // Returns what went wrong with requests whose connection was complete. A connection that is not
    // complete when the server has stopped never will be.
    [[nodiscard]] std::vector<std::string> run(std::atomic<int>& served,
                                               const std::atomic<bool>& hasStopped) {
        std::vector<std::string> wrong;
        while (connectUntil(hasStopped)) {
            const std::string response = ask();
            if (response != response_)
                wrong.push_back(response);
            ++served;
            served.notify_all();
        }
        return wrong;
    }

  private:
    [[nodiscard]] bool connectUntil(const std::atomic<bool>& hasStopped) {
        socket_ =
            Base::FileDescriptor(socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port_);
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        (void)::connect(socket_.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address);
        pollfd waited{.fd = socket_.get(), .events = POLLOUT, .revents = 0};
        bool isLastTime = false;
        while (poll(&waited, 1, isLastTime ? 0 : 10) == 0) {
            if (isLastTime)
                return false;
            isLastTime = hasStopped;
        }
        int error = 0;
        socklen_t length = sizeof error;
        (void)getsockopt(socket_.get(), SOL_SOCKET, SO_ERROR, &error, &length);
        (void)fcntl(socket_.get(), F_SETFL, 0);  // blocks from now on
        return error == 0;
    }

    [[nodiscard]] std::string ask() const {
        if (send(socket_.get(), request_.data(), request_.size(), MSG_NOSIGNAL) !=
            static_cast<ssize_t>(request_.size()))
            return "the request could not be sent";
        std::string text;
        std::array<char, 4096> buffer{};
        ssize_t received = 0;
        while ((received = recv(socket_.get(), buffer.data(), buffer.size(), 0)) > 0)
            text.append(buffer.data(), static_cast<std::size_t>(received));
        if (received < 0)
            return "the connection was reset";
        return text.empty() ? "nothing" : withoutDate(text);
    }

    const std::uint16_t port_;
    const std::string request_;
    const std::string response_;
    Base::FileDescriptor socket_;
};

TEST_F(ServerTest, NoRequestOnTheWireIsLostInTwentyStopsUnderLoad) {
    constexpr int kStops = 20;
    constexpr int kClients = 16;
    options_.stopGrace = kPatience;  // all clients send their requests
    for (int stop = 0; stop < kStops; ++stop) {
        start();
        std::atomic<int> served = 0;
        std::atomic<bool> hasStopped = false;
        std::vector<std::future<std::vector<std::string>>> clients;
        for (int count = 0; count < kClients; ++count) {
            clients.push_back(std::async(std::launch::async, [&, port = port()] {
                return LoadingClient(port, kGet, kHello).run(served, hasStopped);
            }));
        }
        for (int now = served; now < 100; now = served)
            served.wait(now);
        EXPECT_TRUE(server_->stop());
        hasStopped = true;
        for (auto& client : clients)
            EXPECT_EQ(client.get(), Lines()) << "stop " << stop;
    }
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

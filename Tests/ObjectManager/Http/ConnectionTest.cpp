#include <atomic>
#include <boost/asio/io_context.hpp>
#include <future>
#include <gtest/gtest.h>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "ObjectManager/Http/Connection.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Tests/ObjectManager/Http/RunningServer.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/Threads.h"
#include "Tests/Support/WaitUntil.h"

namespace {

using boost::asio::ip::tcp;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

class ConnectionTest : public RunningServer {
  protected:
    static constexpr std::size_t kLarge = 16UL * 1024 * 1024;

    // Makes the response to "/test/large" larger than any socket takes at once.
    void serveLarge() {
        large_.assign(kLarge, 'x');
        provider_.respond = [this](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
            if (request.getUri() != "/test/large")
                return writeTo(ostr, kHello);
            writeTo(ostr, "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n");
            writeTo(ostr, large_);
        };
    }

    // Makes the response to "/test/large" larger than any socket takes at once, and leaves no room
    // for a second one.
    void serveLargeOneAtATime() {
        serveLarge();
        options_.maxResponseMemory = kLarge + kLarge / 2;
        options_.workers = 1;
    }

    // Runs one connection on this thread and makes an allocation of it fail. Returns whether one
    // has failed, and the response that the client got.
    bool failsToRespond(std::string_view begin, std::string_view rest, std::size_t occurrence,
                        std::string& response) {
        const Http::Dispatcher dispatcher(manager_);
        Http::ConnectionSet connections;
        Http::ResponseMemory memory(options_.maxResponseMemory);
        Http::WorkerPool workers(1, {});
        Http::ConnectionContext context{.options = options_,
                                        .dispatcher = dispatcher,
                                        .workers = workers,
                                        .connections = connections,
                                        .memory = memory};
        boost::asio::io_context ioContext;
        tcp::acceptor acceptor(ioContext, {tcp::v4(), 0});
        const Client client("127.0.0.1", acceptor.local_endpoint().port());
        tcp::endpoint endpoint;
        tcp::socket socket = acceptor.accept(endpoint);
        EXPECT_TRUE(client.send(begin));

        AllocationProbe::failAt(occurrence);
        ignoringBadAlloc([&] {
            std::make_shared<Http::Connection>(context, std::move(socket), endpoint)->start();
        });
        socket.close();  // if no connection has taken it
        (void)client.send(rest);
        client.endSending();
        const bool isOver = waitUntil([&] {
            ignoringBadAlloc([&] { ioContext.poll(); });
            ioContext.restart();
            return connections.size() == 0;
        });
        const bool hasFailed = AllocationProbe::hasFailed();
        AllocationProbe::failAt(0);
        EXPECT_TRUE(isOver);
        EXPECT_TRUE(workers.waitUntilIdle(steady_clock::now() + kPatience));
        response = client.readAll();
        return hasFailed;
    }

    template <typename Work>
    static void ignoringBadAlloc(const Work& work) {
        try {
            work();
        } catch (const std::bad_alloc&) {
        }
    }

    static constexpr const char* kGetLarge = "GET /test/large HTTP/1.1\r\nHost: a\r\n\r\n";
    static constexpr const char* kTimeout = "The header section was not received in time.";

    std::string large_;
};

TEST_F(ConnectionTest, SendsWhatTheProviderWrites) {
    start();
    EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_EQ(responseTo("GET /test HTTP/1.0\r\n\r\n"), kHello);
}

TEST_F(ConnectionTest, TheProviderGetsTheRequestAsItWasReadAndChecked) {
    std::string seen;
    provider_.respond = [&](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        seen = (request.getMethod() + " " + request.getUri() + " " + request.getProtocol()).data();
        for (const auto& field : request.getHeaderFields())
            seen += ("|" + field.name + ": " + field.value).data();
        writeTo(ostr, kHello);
    };
    start();
    EXPECT_EQ(responseTo("\r\nPOST http://b:80/test/%41?c HTTP/1.1\r\nHost: a\r\nX:\ty \r\n\r\n"),
              kHello);
    EXPECT_EQ(seen, "POST /test/A HTTP/1.1|Host: b:80|X: y");
}

TEST_F(ConnectionTest, TheProviderCanGetTheAddressOfTheClient) {
    std::string seen;
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        TSKString host;
        TSKString port;
        ostr.getPeerAddressString(host, port);
        seen = (host + " " + port).data();
        writeTo(ostr, kHello);
    };
    start();
    const Client client = sending(kGet);
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_EQ(seen, "127.0.0.1 " + std::to_string(client.port()));
}

TEST_F(ConnectionTest, HeadGetsNoBody) {
    start();
    const std::string hello = kHello;
    EXPECT_EQ(responseTo("HEAD /test HTTP/1.1\r\nHost: a\r\n\r\n"),
              hello.substr(0, hello.size() - 5));
    EXPECT_EQ(responseTo("HEAD / HTTP/1.1\r\n\r\n"),
              "HTTP/1.1 400 Bad Request\r\nConnection: close\r\n"
              "Content-Type: text/plain; charset=utf-8\r\nContent-Length: 27\r\n\r\n");
}

TEST_F(ConnectionTest, AFailureOfTheProviderGetsAnErrorResponse) {
    provider_.respond = [](TSKHTTPRequest& request, TSKGenericHTTPOStream& /*ostr*/) {
        if (request.getUri() == "/test/private")
            throw TSKHTTPException("here", "no", TSKHTTPException::kAuthenticationFailed);
        throw std::runtime_error("reason");
    };
    start();
    EXPECT_EQ(responseTo("GET /test/private HTTP/1.1\r\nHost: a\r\n\r\n"),
              "HTTP/1.1 401 Unauthorized\r\nConnection: close\r\n"
              "WWW-Authenticate: Basic realm=\"tesk\", charset=\"UTF-8\"\r\n"
              "Content-Length: 0\r\n\r\n");
    EXPECT_EQ(responseTo(kGet),
              error("500 Internal Server Error", "The server failed; its log says why."));
    EXPECT_EQ(responseTo("GET /other/path HTTP/1.1\r\nHost: a\r\n\r\n"),
              error("404 Not Found", "There is nothing at this path."));
    expectedLog_ = {"HttpFrontEnd|1|2|GET /test: reason"};
}

TEST_F(ConnectionTest, ARefusedRequestGetsTheReason) {
    start();
    EXPECT_EQ(responseTo("GET /test HTTP/1.1\r\n\r\n"),
              error("400 Bad Request", "The Host field is missing."));
    EXPECT_EQ(
        responseTo("GET /test HTTP/2.0\r\nHost: a\r\n\r\n"),
        error("505 HTTP Version Not Supported", "This server supports HTTP/1.0 and HTTP/1.1."));
    EXPECT_EQ(responseTo("FOO /test HTTP/1.1\r\nHost: a\r\n\r\n"),
              error("501 Not Implemented", "This method is not implemented."));
}

TEST_F(ConnectionTest, AnotherProtocolIsRefusedAtOnce) {
    start();
    EXPECT_EQ(responseTo("\x16\x03\x01\x02"),
              error("400 Bad Request", "The header section contains a control character."));
}

TEST_F(ConnectionTest, TheHeaderSectionHasALimit) {
    options_.maxHeaderSize = 100;
    options_.maxRequestLine = 50;
    start();
    const std::string head = "GET /test HTTP/1.1\r\nHost: a\r\nX: ";
    EXPECT_EQ(responseTo(head + std::string(96 - head.size(), 'x') + "\r\n\r\n"), kHello);
    EXPECT_EQ(responseTo(head + std::string(97 - head.size(), 'x') + "\r\n\r\n"),
              error("431 Request Header Fields Too Large",
                    "The header section is longer than 100 bytes."));
    const std::string line = "GET /test";
    const std::string end = " HTTP/1.1";
    const std::string most(50 - line.size() - end.size() - 1, 'x');
    EXPECT_EQ(responseTo(line + "/" + most + end + "\r\nHost: a\r\n\r\n"), kHello);
    EXPECT_EQ(responseTo(line + "/x" + most + end + "\r\nHost: a\r\n\r\n"),
              error("414 URI Too Long", "The request line is longer than 50 bytes."));
}

TEST_F(ConnectionTest, AHeaderSectionMayComeInByteByByte) {
    start();
    const Client client = connect();
    for (const char byte : std::string(kGet))
        EXPECT_TRUE(client.send({&byte, 1}));
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
}

TEST_F(ConnectionTest, AHeaderSectionThatEndsEarlyGetsNoResponse) {
    start();
    const std::string head = kGet;
    for (std::size_t length = 0; length < head.size(); ++length) {
        const Client client = sending(head.substr(0, length));
        client.endSending();
        EXPECT_EQ(client.readAll(), "") << length;
        EXPECT_FALSE(client.wasReset()) << length;
    }
    EXPECT_EQ(responseTo(kGet), kHello);
}

TEST_F(ConnectionTest, AHeaderSectionThatIsNotReceivedInTimeGets408) {
    options_.headerTimeout = milliseconds(50);
    start();
    const std::string head = kGet;
    std::vector<Client> clients;
    for (std::size_t length = 0; length < head.size(); ++length)
        clients.push_back(sending(head.substr(0, length)));
    for (const Client& client : clients)
        EXPECT_EQ(withoutDate(client.readAll()), error("408 Request Timeout", kTimeout));
    EXPECT_EQ(responseTo(kGet), kHello);
}

TEST_F(ConnectionTest, ARequestThatIsCompletedTooLateIsNotServed) {
    std::atomic<int> lateCalls = 0;
    provider_.respond = [&](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        lateCalls += request.getUri() == "/test/late" ? 1 : 0;
        writeTo(ostr, kHello);
    };
    options_.headerTimeout = milliseconds(50);
    options_.maxConnections = 1;
    start();
    const Client client = sending("GET /test/late HTTP/1.1\r\n");
    EXPECT_EQ(withoutDate(client.readAll()), error("408 Request Timeout", kTimeout));
    EXPECT_TRUE(client.send("Host: a\r\n\r\n"));
    client.endSending();
    waitUntilServed();
    EXPECT_EQ(lateCalls, 0);
}

TEST_F(ConnectionTest, TheTimeoutIsForTheWholeHeaderSection) {
    options_.headerTimeout = milliseconds(50);
    options_.lingerTimeout = milliseconds(50);
    start();
    const Client client = sending("GET /test HTTP/1.1\r\nHost: a\r\nX: ");
    std::string other;
    std::thread reading([&] { other = client.readAll(); });
    EXPECT_TRUE(waitUntil([&] {
        EXPECT_EQ(responseTo(kGet), kHello);
        return !client.send("x");
    }));
    reading.join();
    EXPECT_EQ(withoutDate(other), error("408 Request Timeout", kTimeout));
}

TEST_F(ConnectionTest, IdleClientsDelayNoOtherClient) {
    options_.workers = 1;
    start();
    std::vector<Client> idle;
    for (int count = 0; count < 100; ++count)
        idle.push_back(sending("GET /test HTTP/1.1\r\n"));
    EXPECT_EQ(responseTo(kGet), kHello);
    for (const Client& client : idle)
        EXPECT_TRUE(client.send("Host: a\r\n\r\n"));
    for (const Client& client : idle)
        EXPECT_EQ(withoutDate(client.readAll()), kHello);
}

TEST_F(ConnectionTest, SlowReadersDelayNoOtherClient) {
    serveLarge();
    options_.workers = 1;
    start();
    std::vector<Client> slow;
    for (int count = 0; count < 3; ++count)
        slow.push_back(sending(kGetLarge));
    const std::string head = slow.front().read(12);
    EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_EQ(withoutDate(head + slow.front().readAll()),
              "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n" + large_);
}

TEST_F(ConnectionTest, AResponseWithoutRoomWaitsUntilOthersAreRead) {
    serveLargeOneAtATime();
    start();
    const std::string whole =
        "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n" + large_;
    const Client first = sending(kGetLarge);
    std::string begin = first.read(12);
    const Client second = sending(kGetLarge);
    const Client third = sending(kGetLarge);
    // The only worker is not occupied.
    EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_FALSE(second.hasInput());
    EXPECT_FALSE(third.hasInput());
    EXPECT_EQ(withoutDate(begin + first.readAll()), whole);
    EXPECT_EQ(withoutDate(second.readAll()), whole);
    EXPECT_EQ(withoutDate(third.readAll()), whole);
}

TEST_F(ConnectionTest, AResponseThatGetsNoRoomInTimeGets503) {
    serveLargeOneAtATime();
    options_.responseTimeout = milliseconds(50);
    // The first response stays where it is made.
    std::promise<void> begun;
    std::promise<void> goOn;
    const auto respondLarge = provider_.respond;
    provider_.respond = [&](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        respondLarge(request, ostr);
        if (request.getMethod() == "POST") {
            begun.set_value();
            goOn.get_future().wait();
        }
    };
    options_.workers = 2;
    start();
    const Client first = sending("POST /test/large HTTP/1.1\r\nHost: a\r\n\r\n");
    begun.get_future().wait();
    EXPECT_EQ(responseTo(kGetLarge),
              error("503 Service Unavailable",
                    "The server has no memory for the response. Try again later."));
    goOn.set_value();
    server_.reset();  // waits for the provider, which uses what stands above
}

TEST_F(ConnectionTest, AClientThatWaitsForRoomMayGoAway) {
    serveLargeOneAtATime();
    start();
    const Client first = sending(kGetLarge);
    const std::string begin = first.read(12);
    {
        Client second = sending(kGetLarge);
        EXPECT_EQ(responseTo(kGet), kHello);
        second.reset();
    }
    const Client third = sending(kGetLarge);
    const std::string whole = begin + first.readAll();
    EXPECT_EQ(withoutDate(third.readAll()), withoutDate(whole));
}

TEST_F(ConnectionTest, TheServerMayEndWhileResponsesWaitForRoom) {
    serveLargeOneAtATime();
    options_.shutdownTimeout = milliseconds(50);
    start();
    const Client first = sending(kGetLarge);
    const std::string begin = first.read(12);
    const Client second = sending(kGetLarge);
    EXPECT_EQ(responseTo(kGet), kHello);
    EXPECT_TRUE(server_->stop());
    EXPECT_EQ(second.readAll(), "");
}

TEST_F(ConnectionTest, ALargeResponseMayBeReadInSmallPieces) {
    serveLarge();
    start();
    const Client client = sending(kGetLarge);
    std::string text;
    for (std::string piece = client.read(100'003); !piece.empty(); piece = client.read(100'003))
        text += piece;
    EXPECT_FALSE(client.wasReset());
    EXPECT_EQ(withoutDate(text),
              "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n" + large_);
}

TEST_F(ConnectionTest, AClientThatReadsNothingIsCutOff) {
    serveLarge();
    options_.responseTimeout = milliseconds(50);
    options_.maxConnections = 1;
    start();
    const Client client = sending(kGetLarge);
    EXPECT_EQ(client.read(12), "HTTP/1.1 200");
    waitUntilServed();
    EXPECT_LT(client.readAll().size(), kLarge);
}

TEST_F(ConnectionTest, AClientThatReadsSlowlyIsCutOff) {
    serveLarge();
    options_.responseTimeout = milliseconds(50);
    options_.maxConnections = 2;
    start();
    const Client client = sending(kGetLarge);
    std::size_t length = 0;
    for (std::string piece = client.read(1024); !piece.empty(); piece = client.read(1024)) {
        length += piece.size();
        // Takes some time, so that the whole would take far longer than allowed.
        if (length < kLarge / 8) {
            EXPECT_EQ(responseTo(kGet), kHello);
        }
    }
    EXPECT_LT(length, kLarge);
}

TEST_F(ConnectionTest, ASecondRequestIsIgnored) {
    std::atomic<int> calls = 0;
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        ++calls;
        writeTo(ostr, kHello);
    };
    start();
    const Client client = sending(std::string(kGet) + kGet + "garbage");
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_FALSE(client.wasReset());
    EXPECT_EQ(calls, 1);
}

// The server is done with the first response when it responds to another client, since it has one
// worker. The client has not read it then.
TEST_F(ConnectionTest, ASecondRequestDoesNotCutTheFirstResponse) {
    large_.assign(282'000, 'x');
    provider_.respond = [this](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, request.getUri() == "/test/large"
                          ? "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n" + large_
                          : kHello);
    };
    options_.workers = 1;
    start();
    const Client client = sending(kGetLarge);
    const std::string begin = client.read(12);
    EXPECT_EQ(responseTo(kGet), kHello);
    for (int count = 0; count < 3; ++count) {
        EXPECT_TRUE(client.send(kGet));
        EXPECT_EQ(responseTo(kGet), kHello);
    }
    EXPECT_EQ(withoutDate(begin + client.readAll()),
              "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n" + large_);
    EXPECT_FALSE(client.wasReset());
}

TEST_F(ConnectionTest, AClientThatHasSentNothingIsNotWaitedForAfterTheTimeout) {
    options_.headerTimeout = milliseconds(50);
    options_.lingerTimeout = 2 * kPatience;
    start();
    const Client silent = connect();
    EXPECT_EQ(withoutDate(silent.readAll()), error("408 Request Timeout", kTimeout));
    EXPECT_TRUE(waitUntil([&] { return !silent.send("G"); }));
}

TEST_F(ConnectionTest, TheResponseDoesNotWaitForABody) {
    start();
    for (const char* const fields :
         {"Content-Length: 18446744073709551615\r\n", "Transfer-Encoding: chunked\r\n",
          "Expect: 100-continue\r\nContent-Length: 5\r\n"})
        EXPECT_EQ(responseTo("POST /test HTTP/1.1\r\nHost: a\r\n" + std::string(fields) + "\r\n"),
                  kHello)
            << fields;
    EXPECT_EQ(provider_.bodyBytes, 0U);
}

TEST_F(ConnectionTest, AClientThatSendsALargeBodyFirstGetsTheResponse) {
    start();
    const std::string body(8UL * 1024 * 1024, 'b');
    const Client client =
        sending("POST /test HTTP/1.1\r\nHost: a\r\nContent-Length: " + std::to_string(body.size()) +
                "\r\n\r\n" + body);
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_FALSE(client.wasReset());
}

TEST_F(ConnectionTest, AClientThatIsRefusedWhileItSendsGetsTheResponse) {
    start();
    const Client client = sending("\x01" + std::string(8UL * 1024 * 1024, 'b'));
    EXPECT_EQ(withoutDate(client.readAll()),
              error("400 Bad Request", "The header section contains a control character."));
    EXPECT_FALSE(client.wasReset());
}

TEST_F(ConnectionTest, AClientThatEndsSendingAfterTheRequestGetsTheResponse) {
    start();
    const Client client = sending(kGet);
    client.endSending();
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
}

TEST_F(ConnectionTest, AClientThatSendsTooMuchAfterTheResponseIsCutOff) {
    options_.lingerTimeout = 2 * kPatience;
    options_.maxLingerBytes = 100'000;
    start();
    const Client client = sending(kGet);
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_TRUE(client.send(std::string(100'000, 'b')));
    EXPECT_TRUE(waitUntil([&] { return !client.send("b"); }));
}

TEST_F(ConnectionTest, AClientThatStaysAfterTheResponseIsCutOff) {
    options_.lingerTimeout = milliseconds(50);
    start();
    const Client client = sending(kGet);
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_TRUE(waitUntil([&] { return !client.send("b"); }));
}

TEST_F(ConnectionTest, AClientThatStaysAfterTheResponseTakesNoPlace) {
    options_.maxConnections = 1;
    options_.lingerTimeout = 2 * kPatience;
    start();
    const Client client = sending(kGet);
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
    EXPECT_EQ(responseTo(kGet), kHello);
}

TEST_F(ConnectionTest, AClientMayGoAwayBeforeItsResponse) {
    serveLarge();
    std::promise<void> begun;
    std::promise<void> gone;
    const auto respondLarge = provider_.respond;
    provider_.respond = [&](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        if (request.getUri() == "/test/large") {
            begun.set_value();
            gone.get_future().wait();
        }
        respondLarge(request, ostr);
    };
    options_.maxConnections = 2;
    start();
    Client client = sending(kGetLarge);
    begun.get_future().wait();
    client.reset();
    gone.set_value();
    EXPECT_EQ(responseTo(kGet), kHello);
    server_.reset();  // waits for the provider, which uses what stands above
}

TEST_F(ConnectionTest, AClientMayGoAwayAtAnyTime) {
    serveLarge();
    options_.maxConnections = 1;
    start();
    for (const char* const request : {"", "GET", kGetLarge}) {
        {
            Client client = sending(request);
            if (request == kGetLarge) {
                EXPECT_EQ(client.read(100'000).size(), 100'000U);
            }
            client.reset();
        }
        waitUntilServed();
        { const Client client = sending(request); }
        waitUntilServed();
    }
}

// Without a Server, so that the I/O thread is this one, whose allocations can be made to fail.
TEST_F(ConnectionTest, AFailedAllocationClosesTheConnectionAtMost) {
    for (const char* const rest :
         {" HTTP/1.1\r\nHost: a\r\n\r\n", " HTTP/1.1\r\nHost: a\r\nContent-Length: 5\r\n\r\n",
          " HTTP/1.1\r\n\r\n"}) {
        std::size_t failures = 0;
        std::string response;
        while (failsToRespond("GET /test", rest, failures + 1, response)) {
            ++failures;
            EXPECT_TRUE(response.empty() || response.starts_with("HTTP/1.1 ")) << response;
        }
        EXPECT_GT(failures, 5U) << rest;
        EXPECT_TRUE(response.starts_with("HTTP/1.1 ")) << response;
    }
}

TEST_F(ConnectionTest, ManyClientsAreServedAtTheSameTime) {
    constexpr int kThreads = 8;
    constexpr int kRounds = 100;
    provider_.respond = [](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        const std::string path = request.getUri().data();
        writeTo(ostr, "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n" + path);
        writeTo(ostr, std::string(path.size() * 1000, 'x'));
    };
    options_.workers = 4;
    start();
    runOnThreads(kThreads, [&](int index) {
        for (int round = 0; round < kRounds; ++round) {
            const std::string path = "/test/" + std::to_string(index * kRounds + round);
            EXPECT_EQ(responseTo("GET " + path + " HTTP/1.1\r\nHost: a\r\n\r\n"),
                      "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n" + path +
                          std::string(path.size() * 1000, 'x'));
        }
    });
}

}  // namespace

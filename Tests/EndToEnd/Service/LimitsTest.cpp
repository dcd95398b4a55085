// What the service bears of a single client, each limit set small.

#include <filesystem>
#include <gtest/gtest.h>
#include <iterator>
#include <vector>

#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"
#include "Tests/ObjectManager/Security/BasicField.h"
#include "Tests/ObjectManager/Security/Hashes.h"

namespace {

class ServiceLimits : public RunningService {
  protected:
    // A request whose head has so many bytes.
    static std::string ofSize(std::size_t size) {
        std::string request = get("/root/test/TST_Nothing.wsdl");
        const std::string begin = "X-Filler: ";
        const std::size_t filler = size - request.size() - begin.size() - 2;
        request.insert(request.size() - 2, begin + std::string(filler, 'x') + "\r\n");
        return request;
    }

    // A request whose first line has so many bytes without its end.
    static std::string withLine(std::size_t size) {
        const std::string around = "GET /root/test/.wsdl HTTP/1.1";
        return get("/root/test/" + std::string(size - around.size(), 'a') + ".wsdl");
    }
};

TEST_F(ServiceLimits, AHeadThatIsOneByteTooLongIsRefused) {
    serverKeys_["max_header_size"] = "512";
    start();
    EXPECT_EQ(response(ofSize(512)), found(expected("TST_Nothing.wsdl")));
    EXPECT_EQ(response(ofSize(513)), refusal("431 Request Header Fields Too Large",
                                             "The header section is longer than 512 bytes."));
}

TEST_F(ServiceLimits, ARequestLineThatIsOneByteTooLongIsRefused) {
    serverKeys_["max_request_line"] = "100";
    start();
    EXPECT_EQ(response(withLine(100)), kNotFound);
    EXPECT_EQ(response(withLine(101)),
              refusal("414 URI Too Long", "The request line is longer than 100 bytes."));
}

TEST_F(ServiceLimits, AClientThatDoesNotSendItsRequestInTimeIsToldSo) {
    serverKeys_["header_timeout"] = "0.2";
    start();
    const Client silent = connect();
    const Client slow = sending("GET /root/test/TST_Nothing.wsdl HTTP/1.1\r\nHost: a\r\n");
    const std::string late =
        refusal("408 Request Timeout", "The header section was not received in time.");
    EXPECT_EQ(withoutDate(slow.readAll()), late);
    EXPECT_EQ(withoutDate(silent.readAll()), late);
}

TEST_F(ServiceLimits, AClientThatDoesNotTakeItsResponseLosesIt) {
    writeModel("test.mof", largeClass());
    serverKeys_["response_timeout"] = "0.3";
    serverKeys_["max_connections"] = "1";
    start();
    const Client idle = sending(get("/root/test/TST_Large.wsdl"));
    const std::string begin = idle.read(100);
    EXPECT_EQ(begin.substr(0, 15), "HTTP/1.1 200 OK");
    // There is room for another one only when the first is closed.
    waitForResponse(get("/root/test/TST_None.wsdl"), "HTTP/1.1 404 File Not Found");
    const std::string rest = idle.readAll();
    EXPECT_FALSE(rest.ends_with("</wsdl:definitions>\n"));
    waitForResponse(get("/root/test/TST_Large.wsdl"), "HTTP/1.1 200 OK");
}

TEST_F(ServiceLimits, AConnectionWithoutARequestMakesRoomForOneClientTooMany) {
    serverKeys_["max_connections"] = "3";
    start();
    const std::string request = get("/root/test/TST_Nothing.wsdl");
    const Client first = connect();
    const Client second = connect();
    const Client third = connect();
    EXPECT_EQ(response(request), found(expected("TST_Nothing.wsdl")));
    EXPECT_EQ(first.readAll(), "");
    for (const Client* const client : {&second, &third}) {
        EXPECT_TRUE(client->send(request));
        EXPECT_EQ(withoutDate(client->readAll()), found(expected("TST_Nothing.wsdl")));
    }
}

TEST_F(ServiceLimits, OneClientTooManyIsTurnedAwayAtAllAddresses) {
    writeModel("test.mof", largeClass());
    listen_ = {"127.0.0.1:0", "127.0.0.1:0"};
    serverKeys_["max_connections"] = "2";
    start();
    // They do not read their responses, so nobody can make room.
    std::vector<Client> busy;
    for (int count = 0; count < 2; ++count) {
        busy.push_back(sending(get("/root/test/TST_Large.wsdl")));
        EXPECT_EQ(busy.back().read(15), "HTTP/1.1 200 OK");
    }
    for (const std::size_t address : {0U, 1U}) {
        EXPECT_EQ(withoutDate(Client("127.0.0.1", port(address)).readAll()),
                  refusal("503 Service Unavailable",
                          "The server has too many connections. Try again later."));
    }
    busy.clear();
    waitForResponse(get("/root/test/TST_None.wsdl"), "HTTP/1.1 404 File Not Found");
}

TEST_F(ServiceLimits, OneConnectionTooManyOfAClientIsTurnedAway) {
    serverKeys_["max_connections_per_client"] = "2";
    start();
    const Client first = connect();
    const Client second = connect();
    EXPECT_EQ(withoutDate(connect().readAll()),
              refusal("503 Service Unavailable",
                      "Too many connections come from your address. Try again later."));
    const Client other("127.0.0.1", port(), "127.0.0.2");
    EXPECT_TRUE(other.send(get("/root/test/TST_Nothing.wsdl")));
    EXPECT_EQ(withoutDate(other.readAll()), found(expected("TST_Nothing.wsdl")));
}

TEST_F(ServiceLimits, TheWorkersAreForAllAddressesTogether) {
    const auto countThreads = [&] {
        const std::filesystem::path tasks = "/proc/" + std::to_string(process().id()) + "/task";
        return std::distance(std::filesystem::directory_iterator(tasks), {});
    };
    serverKeys_["workers"] = "5";
    start();
    const auto threads = countThreads();
    EXPECT_GE(threads, 5);
    listen_ = {"127.0.0.1:0", "127.0.0.1:0", "127.0.0.1:0"};
    start();
    EXPECT_EQ(countThreads(), threads);
}

// Of several workers one is always there for those whose passwords need not be hashed.
TEST_F(ServiceLimits, WrongPasswordsDoNotDelayAVerifiedUser) {
    constexpr std::size_t kStrangers = 8;
    // A hash that takes long: some 0.3 s.
    writeUsers("alice:" + std::string(kSha512OfSecret) + "\nmallory:$6$rounds=500000$saltsalt$" +
               std::string(86, 'a') + "\n");
    serverKeys_["workers"] = "2";
    start();
    const std::string hers = get("/root/test/TST_Nothing.wsdl");
    EXPECT_EQ(response(hers), found(expected("TST_Nothing.wsdl")));
    std::vector<Client> strangers;
    for (std::size_t count = 0; count < kStrangers; ++count) {
        const std::string password = "wrong" + std::to_string(count);
        strangers.push_back(sending(
            request("GET /root/test/TST_Nothing.wsdl HTTP/1.1",
                    "Host: a\r\nAuthorization: " + basicField("mallory", password) + "\r\n")));
    }
    for (int count = 0; count < 5; ++count)
        EXPECT_EQ(response(hers), found(expected("TST_Nothing.wsdl")));
    // She did not wait for the hashes that were asked for before; one worker may be at the last.
    EXPECT_FALSE(strangers[kStrangers - 3].hasInput());
    for (const Client& stranger : strangers)
        EXPECT_EQ(withoutDate(stranger.readAll()), kChallenge);
}

// Most of them got 503 before.
TEST_F(ServiceLimits, FourHundredFirstRequestsWithTheRightPasswordAreAllServed) {
    start();
    std::vector<Client> clients;
    for (int count = 0; count < 400; ++count)
        clients.push_back(sending(get("/root/test/TST_Nothing.wsdl")));
    for (const Client& client : clients)
        EXPECT_EQ(withoutDate(client.readAll()), found(expected("TST_Nothing.wsdl")));
}

TEST_F(ServiceLimits, FourHundredWrongPasswordsDoNotKeepAUserOutWhoHasNotLoggedInYet) {
    serverKeys_["workers"] = "2";
    serverKeys_["shutdown_timeout"] = "0.1";  // the requests of the strangers are not waited for
    start();
    std::vector<Client> strangers;
    for (int count = 0; count < 400; ++count) {
        const std::string password = "wrong" + std::to_string(count);
        strangers.push_back(sending(
            request("GET /root/test/TST_Nothing.wsdl HTTP/1.1",
                    "Host: a\r\nAuthorization: " + basicField("mallory", password) + "\r\n")));
    }
    const Client user("127.0.0.1", port(), "127.0.0.2");
    EXPECT_TRUE(user.send(get("/root/test/TST_Nothing.wsdl")));
    EXPECT_EQ(withoutDate(user.readAll()), found(expected("TST_Nothing.wsdl")));
}

}  // namespace

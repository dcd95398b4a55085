// Connections with TLS, as clients see them.

#include <algorithm>
#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "ObjectManager/Http/EntityTag.h"
#include "Tests/ObjectManager/Http/RunningServer.h"
#include "Tests/ObjectManager/Http/TestCertificates.h"
#include "Tests/ObjectManager/Http/TlsClient.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Threads.h"
#include "Tests/Support/WaitUntil.h"

namespace {

using std::chrono::milliseconds;

class StreamTest : public RunningServer {
  protected:
    StreamTest() {
        options_.listen.clear();
        options_.tlsListen = {{.port = 0}};
        options_.tls = {
            .certificateFile = directory_.write("certificate.pem", certificate_.certificate()),
            .keyFile = directory_.write("key.pem", certificate_.key())};
    }

    // Has the server ask for certificates of the authority, and notes which users the requests
    // have.
    void askForCertificates() {
        options_.tls.clientAuthorityFile =
            directory_.write("authorities.pem", authority_.certificate());
        authentication_.prepare = [this](const TSKHTTPRequest& request, const std::string& user) {
            const std::lock_guard lock(mutex_);
            users_.push_back(user);
            return std::make_unique<TSKHTTPRequest>(request);
        };
    }

    [[nodiscard]] std::uint16_t tlsPort() const { return server_->tlsAddresses().front().port; }

    // The response to a request by TLS, without its date; empty if there is none.
    [[nodiscard]] std::string response(const TlsClientContext& context,
                                       const std::string& request = kGet) const {
        const TlsClient client(context, tlsPort());
        if (!client.isConnected() || !client.send(request))
            return "";
        const std::string bytes = client.readAll();
        return bytes.empty() ? "" : withoutDate(bytes);
    }

    [[nodiscard]] Client plainClient(const std::string& bytes) const {
        Client client("127.0.0.1", tlsPort());
        EXPECT_TRUE(client.send(bytes));
        return client;
    }

    static void onlyTls12(SSL* session) { SSL_set_max_proto_version(session, TLS1_2_VERSION); }

    static constexpr const char* kHttps =
        "This port is for HTTPS. Use an address with \"https://\".";

    TemporaryDirectory directory_;
    TestCertificate authority_{"authority"};
    TestCertificate certificate_{"server", &authority_};
    TlsClientContext context_{authority_};
    std::mutex mutex_;
    Lines users_;  // guarded by mutex_
};

TEST_F(StreamTest, ARequestIsServedAndTheEndOfTheResponseIsTold) {
    start();
    const TlsClient client(context_, tlsPort());
    ASSERT_TRUE(client.isConnected());
    EXPECT_EQ(client.protocol(), "TLSv1.3");
    EXPECT_TRUE(client.send(kGet));
    bool hasEnded = false;
    EXPECT_EQ(withoutDate(client.readAll(&hasEnded)), kHello);
    EXPECT_TRUE(hasEnded);
}

TEST_F(StreamTest, TheTargetMayBeAnHttpsUri) {
    start();
    EXPECT_EQ(response(context_, "GET https://a/test HTTP/1.1\r\nHost: b\r\n\r\n"), kHello);
}

TEST_F(StreamTest, Tls12IsServedAndNothingOlder) {
    start();
    const TlsClient client(context_, tlsPort(), &onlyTls12);
    ASSERT_TRUE(client.isConnected());
    EXPECT_EQ(client.protocol(), "TLSv1.2");
    EXPECT_TRUE(client.send(kGet));
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
    const TlsClient old(context_, tlsPort(), [](SSL* session) {
        SSL_set_security_level(session, 0);
        SSL_set_min_proto_version(session, TLS1_VERSION);
        SSL_set_max_proto_version(session, TLS1_1_VERSION);
    });
    EXPECT_FALSE(old.isConnected());
}

TEST_F(StreamTest, TheProtocolIsHttp11) {
    start();
    const auto offering = [this](const std::string& protocols) {
        return TlsClient(context_, tlsPort(), [&](SSL* session) {
            SSL_set_alpn_protos(session, reinterpret_cast<const unsigned char*>(protocols.data()),
                                static_cast<unsigned int>(protocols.size()));
        });
    };
    EXPECT_EQ(offering("\x02h2\x08http/1.1").application(), "http/1.1");
    EXPECT_FALSE(offering("\x02h2").isConnected());
}

TEST_F(StreamTest, ALargeResponseIsWhole) {
    const std::string body(16UL * 1024 * 1024 + 5, 'x');
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n");
        writeTo(ostr, body);
    };
    start();
    EXPECT_TRUE(response(context_) ==
                "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n" + body);
}

TEST_F(StreamTest, DocumentsNameAnAddressOfHttps) {
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr,
                "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 59\r\n\r\n"
                "<soap:address location=\"http://a/wsman\"/></wsdl:definitions>");
    };
    start();
    const std::string document = "<soap:address location=\"https://a/wsman\"/></wsdl:definitions>";
    EXPECT_EQ(response(context_),
              "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(document.size()) +
                  "\r\nETag: " + Http::entityTag(document) + "\r\nConnection: close\r\n\r\n" +
                  document);
}

TEST_F(StreamTest, SessionsAreResumed) {
    start();
    for (const auto& prepare : {std::function<void(SSL*)>(), std::function(&onlyTls12)}) {
        TlsClientContext context(authority_);
        for (const bool isResumed : {false, true}) {
            const TlsClient client(context, tlsPort(), prepare);
            ASSERT_TRUE(client.isConnected());
            EXPECT_TRUE(client.send(kGet));
            EXPECT_EQ(withoutDate(client.readAll()), kHello);
            EXPECT_EQ(client.isResumed(), isResumed);
        }
    }
}

TEST_F(StreamTest, PlainHttpGetsAnErrorInClearText) {
    start();
    EXPECT_EQ(withoutDate(plainClient(kGet).readAll()), error("400 Bad Request", kHttps));
    const std::string whole = error("400 Bad Request", kHttps);
    EXPECT_EQ(withoutDate(plainClient("HEAD / HTTP/1.1\r\n\r\n").readAll()),
              whole.substr(0, whole.find("\r\n\r\n") + 4));
    EXPECT_EQ(response(context_), kHello);
}

TEST_F(StreamTest, WhatIsNeitherTlsNorHttpIsCutOff) {
    start();
    for (const std::string& bytes :
         {std::string("\0\0\0\0\0\0", 6), std::string("\x16\x03\x01\xff\xff\x01", 6),
          std::string("\x80\x2e\x01\x00\x02\x00", 6), std::string("\x16\x02\x00\x00\x05\x01", 6)}) {
        const Client client = plainClient(bytes);
        client.endSending();
        const std::string answer = client.readAll();
        EXPECT_TRUE(answer.empty() || answer[0] == '\x15') << answer;  // an alert
    }
    EXPECT_EQ(response(context_), kHello);
}

TEST_F(StreamTest, AHandshakeThatIsNotEndedIsCutOff) {
    options_.headerTimeout = milliseconds(50);
    start();
    EXPECT_EQ(plainClient("").readAll(), "");
    EXPECT_EQ(plainClient("\x16\x03\x01\x02").readAll(), "");
}

TEST_F(StreamTest, ARequestThatIsNotSentGets408) {
    options_.headerTimeout = milliseconds(200);
    start();
    // On a slow machine the time may end during the handshake.
    EXPECT_TRUE(waitUntil([&] {
        const TlsClient client(context_, tlsPort());
        const std::string response = client.isConnected() ? client.readAll() : "";
        return !response.empty() &&
               withoutDate(response) ==
                   error("408 Request Timeout", "The header section was not received in time.");
    }));
}

TEST_F(StreamTest, TheSubjectOfAClientCertificateIsTheUser) {
    askForCertificates();
    start();
    EXPECT_EQ(response(context_), kHello);
    TlsClientContext alice(authority_);
    const TestCertificate certificate("alice", &authority_);
    alice.useCertificate(certificate);
    EXPECT_EQ(response(alice), kHello);
    EXPECT_EQ(response(alice), kHello);  // by the session that is resumed
    EXPECT_EQ(users_, (Lines{"", "CN=alice,O=Example", "CN=alice,O=Example"}));
}

TEST_F(StreamTest, AClientCertificateOfAnotherAuthorityIsRefused) {
    askForCertificates();
    start();
    const TestCertificate stranger("authority");
    const TestCertificate certificate("alice", &stranger);
    TlsClientContext context(authority_);
    context.useCertificate(certificate);
    EXPECT_EQ(response(context), "");
    EXPECT_EQ(users_, Lines());
    EXPECT_EQ(response(context_), kHello);
}

TEST_F(StreamTest, ACertificateIsNotAskedForWithoutAuthorities) {
    start();
    TlsClientContext context(authority_);
    const TestCertificate certificate("alice", &authority_);
    context.useCertificate(certificate);
    EXPECT_EQ(response(context), kHello);
}

TEST_F(StreamTest, RenegotiationIsRefused) {
    start();
    const TlsClient client(context_, tlsPort(), &onlyTls12);
    ASSERT_TRUE(client.isConnected());
    EXPECT_EQ(SSL_renegotiate(client.session()), 1);
    EXPECT_NE(SSL_do_handshake(client.session()), 1);
    EXPECT_EQ(response(context_), kHello);
}

TEST_F(StreamTest, UpdatesOfKeysBeforeTheRequestAreSurvived) {
    start();
    const TlsClient client(context_, tlsPort());
    ASSERT_TRUE(client.isConnected());
    for (int times = 0; times < 100; ++times) {
        EXPECT_EQ(SSL_key_update(client.session(), SSL_KEY_UPDATE_NOT_REQUESTED), 1);
        EXPECT_EQ(SSL_do_handshake(client.session()), 1);
    }
    EXPECT_TRUE(client.send(kGet));
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
}

TEST_F(StreamTest, AClientThatGoesInTheMiddleOfAResponseHurtsNobody) {
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\n\r\n");
        writeTo(ostr, std::string(1UL << 24U, 'x'));
    };
    start();
    for (int times = 0; times < 8; ++times) {
        const TlsClient client(context_, tlsPort());
        EXPECT_TRUE(client.send(kGet));
    }
    EXPECT_EQ(response(context_).size(), (1UL << 24U) + 49);
}

TEST_F(StreamTest, AConnectionTooManyIsClosed) {
    options_.maxConnectionsPerClient = 1;
    start();
    {
        const TlsClient first(context_, tlsPort());
        ASSERT_TRUE(first.isConnected());
        EXPECT_FALSE(TlsClient(context_, tlsPort()).isConnected());
        EXPECT_TRUE(first.send(kGet));
        EXPECT_EQ(withoutDate(first.readAll()), kHello);
    }
    EXPECT_TRUE(waitUntil([&] { return response(context_) == kHello; }));
}

TEST_F(StreamTest, ConnectionsWithoutAHandshakeMakeRoom) {
    options_.maxConnections = 2;
    start();
    std::vector<Client> idle;
    for (int times = 0; times < 5; ++times)
        idle.push_back(plainClient("\x16"));
    EXPECT_EQ(response(context_), kHello);
}

TEST_F(StreamTest, AStopServesClientsThatAreConnected) {
    start();
    const TlsClient client(context_, tlsPort());
    ASSERT_TRUE(client.isConnected());
    EXPECT_TRUE(client.send(kGet));
    EXPECT_TRUE(server_->stop());
    EXPECT_EQ(withoutDate(client.readAll()), kHello);
}

TEST_F(StreamTest, ANewCertificateIsForNewConnections) {
    start();
    const TlsClient before(context_, tlsPort());
    ASSERT_TRUE(before.isConnected());
    const TestCertificate otherAuthority("other");
    const TestCertificate other("server", &otherAuthority);
    directory_.write("certificate.pem", other.certificate());
    directory_.write("key.pem", other.key());
    server_->tls()->reload();
    expectedLog_ = {"HttpFrontEnd|3|2|The TLS certificate was read again"};
    EXPECT_EQ(response(TlsClientContext(otherAuthority)), kHello);
    EXPECT_EQ(response(TlsClientContext(authority_)), "");
    EXPECT_TRUE(before.send(kGet));
    EXPECT_EQ(withoutDate(before.readAll()), kHello);
}

TEST_F(StreamTest, AThousandHandshakesFromFourClients) {
    start();
    std::atomic<int> served = 0;
    std::atomic<int> resumed = 0;
    runOnThreads(4, [&](int /*thread*/) {
        TlsClientContext context(authority_);
        for (int times = 0; times < 250; ++times) {
            const TlsClient client(context, tlsPort());
            resumed += client.isResumed() ? 1 : 0;
            if (client.isConnected() && client.send(kGet) &&
                withoutDate(client.readAll()) == kHello)
                ++served;
        }
    });
    EXPECT_EQ(served, 1000);
    EXPECT_EQ(resumed, 996);
}

}  // namespace

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <utility>

#include "ObjectManager/Host/MemoryClient.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/Support/RecordingStreams.h"
#include "Tests/Support/Threads.h"

namespace {

// Notes the request; writes a text or does what a hook does.
class TextProvider : public urma::pf::Provider {
  public:
    TSKString getProviderName() override { return "text"; }
    void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& flag,
                            TSKSmrPtr<ITeskTransaction> transaction) override {
        char byte = 0;
        TSKString host;
        TSKString port;
        ostr.getPeerAddressString(host, port);
        asked = std::string(request.getMethod()) + " " + request.getUri().data() + " " +
                request.getProtocol().data() + "\nHost: " + request.getHost()->data() +
                "\npeer: " + host.data() + ":" + port.data() +
                "\nbytes to read: " + std::to_string(istr.read(&byte, 1)) +
                "\nflag: " + std::to_string(static_cast<int>(flag)) +
                "\ntransaction: " + (transaction ? "yes" : "no");
        if (fail)
            fail();
        // In pieces, as large documents are written.
        for (const char character : response)
            ostr.write(&character, 1);
    }

    std::string asked;
    std::string response;
    std::function<void()> fail;
};

class MemoryClientTest : public testing::Test {
  protected:
    MemoryClientTest() {
        EXPECT_TRUE(manager_.addProvider(provider_, "here").empty());
        EXPECT_TRUE(manager_.registerURI("text", "/root"));
    }

    TextProvider provider_;
    TeskProviderPluginManager manager_;
    const Host::MemoryClient client_{manager_, {.host = "example.org:5985"}};
};

TEST_F(MemoryClientTest, RequestsAsAClientDoesOverHttp) {
    (void)client_.get("/root/cimv2/CIM_Foo.xsd");
    EXPECT_EQ(provider_.asked,
              "GET /root/cimv2/CIM_Foo.xsd HTTP/1.1\n"
              "Host: example.org:5985\n"
              "peer: localhost:0\n"
              "bytes to read: 0\n"
              "flag: 1\n"
              "transaction: no");
}

TEST_F(MemoryClientTest, SplitsTheResponseIntoStatusAndBody) {
    provider_.response = "HTTP/1.1 200 OK\r\nContent-Length: 10\r\n\r\na\r\n\r\nb\r\n\r\n";
    const Host::MemoryClient::Response response = client_.get("/root/a");
    EXPECT_EQ(response.status(), "200");
    EXPECT_EQ(response.body(), "a\r\n\r\nb\r\n\r\n");
}

TEST_F(MemoryClientTest, KeepsZeroBytesOfTheBody) {
    provider_.response = std::string("HTTP/1.0 404 File Not Found\r\n\r\n\0x", 33);
    const Host::MemoryClient::Response response = client_.get("/root/a");
    EXPECT_EQ(response.status(), "404");
    EXPECT_EQ(response.body(), std::string_view("\0x", 2));
}

TEST_F(MemoryClientTest, WhatIsNoHttpResponseHasNoStatus) {
    for (const char* const response :
         {"", "200", "HTTP/1.1 200 OK", "HTTP/1.1 \r\n\r\n", "HTTP/1.1 20\r\n\r\n",
          "HTTP/1.1 20x OK\r\n\r\n", "HTTP/1.10 200\r\n\r\n", "HTTP/2 200 OK\r\n\r\n",
          "http/1.1 200 OK\r\n\r\n"}) {
        provider_.response = response;
        EXPECT_EQ(client_.get("/root/a").status(), "") << response;
    }
    provider_.response = "<html>\r\n";
    EXPECT_EQ(client_.get("/root/a").body(), "");
}

TEST_F(MemoryClientTest, SaysThatNoProviderServesAPath) {
    try {
        (void)client_.get("/other/CIM_Foo.xsd");
        FAIL();
    } catch (const TeskBaseException& error) {
        EXPECT_EQ(error.getMessage(), "no provider serves /other/CIM_Foo.xsd");
        EXPECT_EQ(error.getErrorCode(), CIM_ERR_NOT_FOUND);
    }
}

TEST_F(MemoryClientTest, PassesOnWhatTheProviderThrows) {
    provider_.fail = [] { throw TSKHTTPException("here", "Authentication failed", 4); };
    EXPECT_THROW((void)client_.get("/root/a"), TSKHTTPException);
    provider_.fail = [] { throw std::runtime_error("broken"); };
    EXPECT_THROW((void)client_.get("/root/a"), std::runtime_error);
    provider_.fail = [] { throw 42; };
    EXPECT_THROW((void)client_.get("/root/a"), int);
}

// Responds with the path.
class EchoProvider : public urma::pf::Provider {
  public:
    TSKString getProviderName() override { return "echo"; }
    void processHTTPRequest(TSKGenericHTTPIStream& /*istr*/, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& /*flag*/,
                            TSKSmrPtr<ITeskTransaction> /*transaction*/) override {
        const TSKString response = "HTTP/1.1 200 OK\r\n\r\n" + request.getUri();
        ostr.write(response.data(), response.length());
    }
};

TEST(MemoryClient, RequestsFromManyThreadsAtOnce) {
    EchoProvider provider;
    TeskProviderPluginManager manager;
    EXPECT_TRUE(manager.addProvider(provider, "here").empty());
    EXPECT_TRUE(manager.registerURI("echo", "/root"));
    const Host::MemoryClient client(manager, {.host = "localhost"});
    runOnThreads(8, [&](int index) {
        for (int round = 0; round < 100; ++round) {
            const TSKString path = TSKString().sprintf("/root/%d/%d", index, round);
            EXPECT_EQ(client.get(path).body(), std::string_view(path));
        }
    });
}

TEST(LocalAuthenticator, AcceptsEveryRequestForTheUserLocal) {
    Host::LocalAuthenticator authenticator;
    TSKHTTPRequest request("GET", "/", "HTTP/1.1");
    EmptyInput input;
    RecordedOutput output;
    TSKSmrPtr<urma::security::ISecurityToken> token;
    EXPECT_TRUE(authenticator.authenticateRequest(request, input, output, token));
    ASSERT_TRUE(token);
    EXPECT_EQ(token->getUserName(), "local");
    EXPECT_EQ(output.text, "");
}

TEST_F(MemoryClientTest, DocumentsAreThoseOfThePublishedScheme) {
    provider_.response =
        "HTTP/1.1 200 OK\r\n\r\n<soap:address location=\"http://a/\"/></wsdl:definitions>";
    EXPECT_EQ(Host::MemoryClient(manager_, {.host = "a", .isHttps = true}).get("/root/a").body(),
              "<soap:address location=\"https://a/\"/></wsdl:definitions>");
    EXPECT_EQ(Host::MemoryClient(manager_, {.host = "a"}).get("/root/a").body(),
              "<soap:address location=\"http://a/\"/></wsdl:definitions>");
}

}  // namespace

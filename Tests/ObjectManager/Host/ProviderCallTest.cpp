#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <vector>

#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderCall.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"

namespace {

using Outcome = Host::ProviderCall::Outcome;

class HookedProvider : public urma::pf::Provider {
  public:
    TSKString getProviderName() override { return "hooked"; }
    void processHTTPRequest(TSKGenericHTTPIStream& istr, TSKGenericHTTPOStream& ostr,
                            TSKHTTPRequest& request, bool& handled,
                            TSKSmrPtr<ITeskTransaction> transaction) override {
        TSKString address;
        TSKString port;
        ostr.getPeerAddressString(address, port);
        char byte = 0;
        seen = std::string(request.getMethod()) + " " + request.getUri().data() + " from " +
               address.data() + " port " + port.data() +
               ", bytes to read: " + std::to_string(istr.read(&byte, 1)) +
               ", handled: " + (handled ? "yes" : "no") +
               ", transaction: " + (transaction ? "yes" : "no");
        ostr.write("a\0b", 3);
        ostr.write(nullptr, 0);
        ostr.write("cd", 1);
        try {
            ostr.write(body.data(), body.size());
        } catch (...) {
            if (!catchesAll)
                throw;
            ostr.write("more", 4);
        }
        if (onRequest)
            onRequest(handled);
    }

    std::string seen;
    std::string body;
    bool catchesAll = false;
    std::function<void(bool& handled)> onRequest;
};

class ProviderCallTest : public testing::Test {
  protected:
    ProviderCallTest() {
        EXPECT_TRUE(manager_.addProvider(provider_, "here").empty());
        EXPECT_TRUE(manager_.registerURI("hooked", "/root"));
    }

    [[nodiscard]] Host::ProviderCall call(const char* path = "/root/a") const {
        TSKHTTPRequest request("POST", path, "HTTP/1.1");
        return Host::callProvider(manager_, request, {.address = "[2001:db8::7]", .port = "50000"});
    }

    void expectNoResponse(const Host::ProviderCall& call, Outcome outcome) const {
        EXPECT_EQ(call.outcome, outcome);
        EXPECT_EQ(call.response, "");
    }

    HookedProvider provider_;
    TeskProviderPluginManager manager_;
};

TEST_F(ProviderCallTest, ReturnsAllThatTheProviderWrites) {
    const Host::ProviderCall result = call();
    EXPECT_EQ(result.outcome, Outcome::kResponse);
    EXPECT_EQ(result.response, std::string("a\0bc", 4));
}

TEST_F(ProviderCallTest, TheProviderSeesTheRequestAndTheClient) {
    (void)call();
    EXPECT_EQ(provider_.seen,
              "POST /root/a from [2001:db8::7] port 50000, bytes to read: 0, handled: yes, "
              "transaction: no");
}

TEST_F(ProviderCallTest, AsksBeforeTheResponseTakesMemory) {
    std::vector<std::size_t> asked;
    TSKHTTPRequest request("GET", "/root/a", "HTTP/1.1");
    provider_.body = std::string(1000, 'x');
    const auto result = Host::callProvider(manager_, request, {}, [&](std::size_t bytes) {
        asked.push_back(bytes);
        return true;
    });
    EXPECT_EQ(result.response, std::string("a\0bc", 4) + provider_.body);
    EXPECT_EQ(asked, std::vector<std::size_t>({1004}));
}

TEST_F(ProviderCallTest, AResponseThatMayNotTakeMemoryIsDropped) {
    provider_.body = std::string(1000, 'x');
    for (const bool isCaught : {false, true}) {
        provider_.catchesAll = isCaught;
        TSKHTTPRequest request("GET", "/root/a", "HTTP/1.1");
        int asked = 0;
        expectNoResponse(Host::callProvider(manager_, request, {},
                                            [&](std::size_t /*bytes*/) { return ++asked > 1; }),
                         Outcome::kNoRoom);
    }
}

TEST_F(ProviderCallTest, AClientIsAuthenticatedAsProvidersDo) {
    TSKHTTPRequest request("GET", "/root/a", "HTTP/1.1");
    EXPECT_FALSE(Host::isAuthenticated(request, {}));
    AuthenticationHelper::setAuthenticator(TSKSmrPtr<Host::LocalAuthenticator>::make());
    EXPECT_TRUE(Host::isAuthenticated(request, {}));
    AuthenticationHelper::setAuthenticator(nullptr);
}

TEST(HeaderLength, EndsWithTheFirstEmptyLine) {
    EXPECT_EQ(Host::headerLength("HTTP/1.1 200 OK\r\na: b\r\n\r\nc\r\n\r\n"), 25U);
    EXPECT_EQ(Host::headerLength("\r\n\r\n"), 4U);
    for (const char* const text : {"", "a\r\n", "a\n\n", "a\r\n\n", "a\r\n\r"})
        EXPECT_EQ(Host::headerLength(text), 0U) << text;
}

TEST_F(ProviderCallTest, APathWithoutAProviderIsNotFound) {
    expectNoResponse(call("/other"), Outcome::kNotFound);
    EXPECT_EQ(provider_.seen, "");
}

TEST_F(ProviderCallTest, WhatTheProviderDoesNotHandleIsNotFound) {
    provider_.onRequest = [](bool& handled) { handled = false; };
    expectNoResponse(call(), Outcome::kNotFound);
}

TEST_F(ProviderCallTest, TellsThatTheProviderDoesNotAcceptTheClient) {
    provider_.onRequest = [](bool& /*handled*/) {
        throw TSKHTTPException("here", "no", TSKHTTPException::kAuthenticationFailed);
    };
    expectNoResponse(call(), Outcome::kNotAuthenticated);
}

TEST_F(ProviderCallTest, PassesOnWhateverElseTheProviderThrows) {
    provider_.onRequest = [](bool& /*handled*/) { throw TSKHTTPException("here", "no", 5); };
    EXPECT_THROW((void)call(), TSKHTTPException);
    provider_.onRequest = [](bool& /*handled*/) {
        throw TeskBaseException("here", "no", TSKHTTPException::kAuthenticationFailed);
    };
    EXPECT_THROW((void)call(), TeskBaseException);
    provider_.onRequest = [](bool& /*handled*/) { throw std::runtime_error("broken"); };
    EXPECT_THROW((void)call(), std::runtime_error);
    provider_.onRequest = [](bool& /*handled*/) { throw 42; };
    EXPECT_THROW((void)call(), int);
}

}  // namespace

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>

#include "ObjectManager/Host/ProviderCall.h"
#include "Platform/Http/TSKHTTPException.h"

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
        if (onRequest)
            onRequest(handled);
    }

    std::string seen;
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

#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "Platform/Http/TSKHTTPException.h"
#include "Providers/WsdlWebProvider/WsdlWebProvider.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/RecordingStreams.h"
#include "Tests/Support/TestHost.h"
#include "Tests/Support/Threads.h"

namespace {

using Lines = std::vector<std::string>;

class RequestEntryTest : public testing::Test {
  protected:
    RequestEntryTest() { host_.writeProvidersFile("STSService.wsdl", "static"); }

    void send(bool& flag) {
        EmptyInput input;
        provider_.processHTTPRequest(input, output_, request_, flag, {});
    }

    WsdlWebProvider& provider_ = *WsdlWebProvider::getInstance();
    TestHost host_;
    LogRecording log_;
    TSKHTTPRequest request_{"GET", "/STSService.wsdl", "HTTP/1.1"};
    RecordedOutput output_;
};

TEST_F(RequestEntryTest, AnAuthenticatedRequestIsAnsweredOnce) {
    bool flag = true;
    send(flag);
    EXPECT_EQ(host_.authenticator().calls, 1);
    EXPECT_EQ(output_.text,
              "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 6\r\n"
              "Content-Type: text/xml\r\n\r\nstatic");
    EXPECT_EQ(log_.lines(),
              Lines({"WsdlAdapter::processInput|4|2|Request received",
                     "WsdlAdapter::processInput|4|2|Request processing completed normally"}));
}

TEST_F(RequestEntryTest, ARefusedRequestThrowsAndIsNotAnswered) {
    host_.authenticator().accepts = false;
    bool flag = true;
    try {
        send(flag);
        FAIL() << "no exception";
    } catch (const TSKHTTPException& exception) {
        EXPECT_EQ(exception.getWhere(), "WsdlWebProvider::processHTTPRequest");
        EXPECT_EQ(exception.getMessage(), "Authentication failed");
        EXPECT_EQ(exception.getErrorCode(), 4);
    }
    EXPECT_EQ(output_.text, "");
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(RequestEntryTest, TheFlagIsLeftAsItIs) {
    for (const bool accepts : {true, false}) {
        for (const bool before : {true, false}) {
            host_.authenticator().accepts = accepts;
            bool flag = before;
            if (accepts)
                send(flag);
            else
                EXPECT_THROW(send(flag), TSKHTTPException);
            EXPECT_EQ(flag, before);
        }
    }
}

TEST_F(RequestEntryTest, TheContentLengthIsZeroFromBeforeAuthenticationOn) {
    request_.setContentLength(12345);
    host_.authenticator().contentLengthSeen = 99;
    bool flag = false;
    send(flag);
    EXPECT_EQ(host_.authenticator().contentLengthSeen, 0U);
    EXPECT_EQ(request_.getContentLength(), 0U);
}

TEST_F(RequestEntryTest, TheContentLengthOfARefusedRequestIsZeroToo) {
    request_.setContentLength(12345);
    host_.authenticator().accepts = false;
    bool flag = false;
    EXPECT_THROW(send(flag), TSKHTTPException);
    EXPECT_EQ(request_.getContentLength(), 0U);
}

TEST_F(RequestEntryTest, TheTokenIsReleased) {
    bool flag = false;
    send(flag);
    EXPECT_EQ(host_.authenticator().liveTokens(), 0);

    host_.repository().add("interop", ModelClass("TST_A"));
    request_ = TSKHTTPRequest("GET", "/TST_A.wsdl", "HTTP/1.1");
    const std::size_t failures = HostCalls::failEach(
        [&] { send(flag); },
        [&](const std::string&) { EXPECT_EQ(host_.authenticator().liveTokens(), 0); });
    EXPECT_GT(failures, 10U);
}

TEST_F(RequestEntryTest, WhatAuthenticationThrowsPasses) {
    HostCalls::failAt(1);
    bool flag = false;
    EXPECT_THROW(send(flag), HostCalls::Failure);
    EXPECT_EQ(output_.text, "");
}

TEST_F(RequestEntryTest, ThreadsAreServedAtTheSameTime) {
    runOnThreads(8, [&](int /*index*/) {
        for (int round = 0; round < 50; ++round) {
            TSKHTTPRequest request("GET", "/STSService.wsdl", "HTTP/1.1");
            EmptyInput input;
            RecordedOutput output;
            bool flag = true;
            provider_.processHTTPRequest(input, output, request, flag, {});
            EXPECT_TRUE(output.text.ends_with("static"));
        }
    });
    EXPECT_EQ(host_.authenticator().calls, 400);
    EXPECT_EQ(host_.authenticator().liveTokens(), 0);
}

}  // namespace

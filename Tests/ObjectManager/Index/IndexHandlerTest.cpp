#include <gtest/gtest.h>
#include <set>
#include <string>

#include "ObjectManager/Index/IndexHandler.h"
#include "ObjectManager/Index/IndexPage.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Tests/ObjectManager/Repository/RepositoryTest.h"
#include "Tests/Support/RecordingStreams.h"
#include "Tests/Support/TestHost.h"
#include "Tests/Support/Threads.h"

namespace {

using Index::IndexHandler;

class IndexHandlerTest : public RepositoryTest {
  protected:
    IndexHandlerTest() { AuthenticationHelper::setAuthenticator(authenticator_); }
    ~IndexHandlerTest() override { AuthenticationHelper::setAuthenticator(nullptr); }

    // What is written to the client; "(left)" and that when the handler leaves the request.
    [[nodiscard]] static std::string answer(IndexHandler& handler, const char* method,
                                            const char* path = "/",
                                            const char* protocol = "HTTP/1.1") {
        TSKHTTPRequest request(method, path, protocol);
        EmptyInput input;
        RecordedOutput output;
        const bool isHandled = handler.handle(request, input, output);
        return isHandled ? output.text : "(left)" + output.text;
    }

    // The code and the message with which a request is refused.
    [[nodiscard]] std::string refusalOf(const char* method, RecordedOutput& output) {
        TSKHTTPRequest request(method, "/", "HTTP/1.1");
        EmptyInput input;
        try {
            (void)handler_.handle(request, input, output);
            return "none";
        } catch (const TSKHTTPException& refusal) {
            return std::to_string(refusal.getErrorCode()) + " " + refusal.getMessage().data();
        }
    }

    [[nodiscard]] static std::string found(const Repository::ClassRepository& repository,
                                           const std::string& protocol = "HTTP/1.1") {
        const std::string page = Index::makeIndexPage(repository);
        return protocol +
               " 200 OK\r\nConnection: close\r\nContent-Length: " + std::to_string(page.size()) +
               "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Security-Policy: " +
               Index::contentSecurityPolicy() + "\r\nX-Content-Type-Options: nosniff\r\n\r\n" +
               page;
    }

    TSKSmrPtr<TestAuthenticator> authenticator_ = TSKSmrPtr<TestAuthenticator>::make();
    TSKSmrPtr<Repository::ClassRepository> one_ = load("class TST_One {};");
    TSKSmrPtr<Repository::ClassRepository> other_ = load("class TST_Other {}; class TST_Third {};");
    IndexHandler handler_{one_};
};

// The front end sends the head alone to those who ask for no more.
TEST_F(IndexHandlerTest, AnswersGetAndHeadWithThePage) {
    EXPECT_EQ(answer(handler_, "GET"), found(*one_));
    EXPECT_EQ(answer(handler_, "HEAD"), found(*one_));
    EXPECT_EQ(answer(handler_, "GET", "/", "HTTP/1.0"), found(*one_, "HTTP/1.0"));
    EXPECT_EQ(authenticator_->calls, 3);
    EXPECT_EQ(authenticator_->liveTokens(), 0);
}

TEST_F(IndexHandlerTest, LeavesOtherPathsAndAsksNobodyWhoTheyAre) {
    authenticator_->accepts = false;
    for (const char* const path :
         {"", "//", "/index.html", "/root", "/root/test/TST_One.wsdl", "/?", " /", "/ ", "*"})
        EXPECT_EQ(answer(handler_, "GET", path), "(left)") << path;
    EXPECT_EQ(authenticator_->calls, 0);
}

TEST_F(IndexHandlerTest, RefusesStrangersWithoutWriting) {
    authenticator_->accepts = false;
    for (const char* const method : {"GET", "HEAD", "POST"}) {
        RecordedOutput output;
        EXPECT_EQ(refusalOf(method, output), "4 Authentication failed") << method;
        EXPECT_EQ(output.writes, 0) << method;
    }
    EXPECT_EQ(authenticator_->calls, 3);
}

TEST_F(IndexHandlerTest, RefusesEverybodyWithoutAnAuthenticator) {
    AuthenticationHelper::setAuthenticator(nullptr);
    EXPECT_THROW((void)answer(handler_, "GET"), TSKHTTPException);
}

TEST_F(IndexHandlerTest, SaysWhichMethodsThereAre) {
    for (const char* const method : {"POST", "PUT", "DELETE", "OPTIONS", "get", "GETS", ""}) {
        EXPECT_EQ(answer(handler_, method),
                  "HTTP/1.1 405 Method Not Allowed\r\nConnection: close\r\nAllow: GET, HEAD\r\n"
                  "Content-Length: 0\r\n\r\n")
            << method;
    }
}

TEST_F(IndexHandlerTest, ShowsTheClassesThatAreSet) {
    EXPECT_EQ(answer(handler_, "GET"), found(*one_));
    handler_.setRepository(other_);
    EXPECT_EQ(answer(handler_, "GET"), found(*other_));
    handler_.setRepository(one_);
    EXPECT_EQ(answer(handler_, "HEAD"), found(*one_));
}

TEST_F(IndexHandlerTest, SeveralThreadsAskWhileTheClassesChange) {
    constexpr int kThreads = 4;
    constexpr int kRequests = 200;
    const std::set<std::string> right = {found(*one_), found(*other_)};
    runOnThreads(kThreads, [&](int thread) {
        for (int count = 0; count < kRequests; ++count) {
            if (thread == 0)
                handler_.setRepository(count % 2 == 0 ? other_ : one_);
            EXPECT_TRUE(right.contains(answer(handler_, "GET")));
        }
    });
    EXPECT_EQ(authenticator_->calls, kThreads * kRequests);
    EXPECT_EQ(answer(handler_, "GET"), found(*one_));
}

}  // namespace

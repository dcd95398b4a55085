#include <gtest/gtest.h>
#include <set>
#include <string>

#include "ObjectManager/Pages/ClassPage.h"
#include "ObjectManager/Pages/IndexPage.h"
#include "ObjectManager/Pages/PageFrame.h"
#include "ObjectManager/Pages/PageProvider.h"
#include "ObjectManager/Pages/SearchData.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Tests/ObjectManager/Http/FunctionProvider.h"
#include "Tests/Support/RecordingStreams.h"
#include "Tests/Support/RepositoryTest.h"
#include "Tests/Support/TestHost.h"
#include "Tests/Support/Threads.h"

namespace {

using Pages::PageProvider;

class PageProviderTest : public RepositoryTest {
  protected:
    PageProviderTest() { AuthenticationHelper::setAuthenticator(authenticator_); }
    ~PageProviderTest() override { AuthenticationHelper::setAuthenticator(nullptr); }

    // What is written to the client; "(left)" and that when the provider leaves the request.
    [[nodiscard]] static std::string response(PageProvider& provider, const char* method,
                                              const char* path = "/",
                                              const char* protocol = "HTTP/1.1") {
        TSKHTTPRequest request(method, path, protocol);
        EmptyInput input;
        RecordedOutput output;
        bool handled = true;
        provider.processHTTPRequest(input, output, request, handled, nullptr);
        return handled ? output.text : "(left)" + output.text;
    }

    // The code and the message with which a request is refused.
    [[nodiscard]] std::string refusalOf(const char* method, RecordedOutput& output) {
        TSKHTTPRequest request(method, "/", "HTTP/1.1");
        EmptyInput input;
        bool handled = true;
        try {
            provider_.processHTTPRequest(input, output, request, handled, nullptr);
            return "none";
        } catch (const TSKHTTPException& refusal) {
            return std::to_string(refusal.getErrorCode()) + " " + refusal.getMessage().data();
        }
    }

    [[nodiscard]] static std::string found(const Repository::ClassRepository& repository,
                                           const std::string& protocol = "HTTP/1.1") {
        const std::string page = Pages::makeIndexPage(repository, Pages::Layout::kServed);
        return protocol +
               " 200 OK\r\nConnection: close\r\nContent-Length: " + std::to_string(page.size()) +
               "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Security-Policy: " +
               Pages::contentSecurityPolicy(Pages::PageKind::kIndex) +
               "\r\nX-Content-Type-Options: nosniff\r\n\r\n" + page;
    }

    TSKSmrPtr<TestAuthenticator> authenticator_ = TSKSmrPtr<TestAuthenticator>::make();
    TSKSmrPtr<Repository::ClassRepository> one_ = load("class TST_One {};");
    TSKSmrPtr<Repository::ClassRepository> other_ = load("class TST_Other {}; class TST_Third {};");
    PageProvider provider_{one_};
};

// The front end leaves the body of the response to HEAD out.
TEST_F(PageProviderTest, GetAndHeadGetThePage) {
    EXPECT_EQ(response(provider_, "GET"), found(*one_));
    EXPECT_EQ(response(provider_, "HEAD"), found(*one_));
    EXPECT_EQ(response(provider_, "GET", "/", "HTTP/1.0"), found(*one_, "HTTP/1.0"));
    EXPECT_EQ(authenticator_->calls, 3);
    EXPECT_EQ(authenticator_->liveTokens(), 0);
}

TEST_F(PageProviderTest, LeavesOtherPathsToTheFrontEndWithoutAuthentication) {
    authenticator_->accepts = false;
    for (const char* const path :
         {"", "//", "/index.html", "/root", "/root/test/TST_One.wsdl", "/?", " /", "/ ", "*"})
        EXPECT_EQ(response(provider_, "GET", path), "(left)") << path;
    EXPECT_EQ(authenticator_->calls, 0);
}

TEST_F(PageProviderTest, RefusesUnauthenticatedClientsWithoutWriting) {
    authenticator_->accepts = false;
    for (const char* const method : {"GET", "HEAD", "POST"}) {
        RecordedOutput output;
        EXPECT_EQ(refusalOf(method, output), "4 Authentication failed") << method;
        EXPECT_EQ(output.writes, 0) << method;
    }
    EXPECT_EQ(authenticator_->calls, 3);
}

TEST_F(PageProviderTest, RefusesEveryClientWithoutAnAuthenticator) {
    AuthenticationHelper::setAuthenticator(nullptr);
    EXPECT_THROW((void)response(provider_, "GET"), TSKHTTPException);
}

TEST_F(PageProviderTest, ShowsTheClassesThatAreSet) {
    EXPECT_EQ(response(provider_, "GET"), found(*one_));
    provider_.setSite(PageProvider::makeSite(other_));
    EXPECT_EQ(response(provider_, "GET"), found(*other_));
    provider_.setSite(PageProvider::makeSite(one_));
    EXPECT_EQ(response(provider_, "HEAD"), found(*one_));
}

TEST_F(PageProviderTest, ServesThePageOfAClassInAnyCase) {
    const Pages::ClassRelations relations(one_->namespaces().front());
    const std::string page =
        Pages::makeClassPage(*relations.nameSpace().findClass("TST_One"), relations,
                             Pages::Layout::kServed, "http://localhost");
    const std::string expected =
        "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + std::to_string(page.size()) +
        "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Security-Policy: " +
        Pages::contentSecurityPolicy(Pages::PageKind::kClass) +
        "\r\nX-Content-Type-Options: nosniff\r\n\r\n" + page;
    EXPECT_EQ(response(provider_, "GET", "/-/root/test/TST_One"), expected);
    EXPECT_EQ(response(provider_, "HEAD", "/-/ROOT/test/tst_one"), expected);
}

// For pages of this service alone.
TEST_F(PageProviderTest, ServesTheSearchData) {
    const std::string data = Pages::makeSearchData(*one_, Pages::Layout::kServed);
    EXPECT_EQ(
        response(provider_, "GET", "/-/search.js"),
        "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " + std::to_string(data.size()) +
            "\r\nContent-Type: text/javascript; charset=utf-8\r\n"
            "Cross-Origin-Resource-Policy: same-origin\r\n"
            "X-Content-Type-Options: nosniff\r\n\r\n" +
            data);
    authenticator_->accepts = false;
    EXPECT_THROW((void)response(provider_, "GET", "/-/search.js"), TSKHTTPException);
}

TEST_F(PageProviderTest, AClassThatThereIsNotIsLeftToTheFrontEndAfterAuthentication) {
    for (const char* const path : {"/-/", "/-/root/test/", "/-/root/test", "/-/TST_One",
                                   "/-//TST_One", "/-/root/test/TST_One/", "/-/root/TST_One",
                                   "/-/root/test/TST_Two", "/-/root/test/TST_One.html"})
        EXPECT_EQ(response(provider_, "GET", path), "(left)") << path;
    EXPECT_EQ(authenticator_->calls, 9);
    authenticator_->accepts = false;
    EXPECT_THROW((void)response(provider_, "GET", "/-/root/test/TST_One"), TSKHTTPException);
    EXPECT_THROW((void)response(provider_, "GET", "/-/root/test/TST_Two"), TSKHTTPException);
}

TEST_F(PageProviderTest, ServesTheDocumentsOfANamespaceAsAnArchive) {
    const auto manager = TSKSmrPtr<TeskProviderPluginManager>::make();
    TeskProviderPluginManager::setTeskProviderPluginManager(manager);
    FunctionProvider documents([](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, "HTTP/1.1 200 OK\r\n\r\n" + std::string(request.getUri()));
    });
    EXPECT_TRUE(manager->addProvider(documents, "documents").empty());
    EXPECT_TRUE(manager->registerURI(documents.getProviderName(), "/root"));
    const std::string archive = response(provider_, "GET", "/-/ROOT/test.zip");
    TeskProviderPluginManager::setTeskProviderPluginManager(nullptr);
    EXPECT_TRUE(archive.starts_with(
        "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Type: application/zip\r\n"
        "Content-Disposition: attachment; filename=\"root-test.zip\"\r\n"
        "X-Content-Type-Options: nosniff\r\n\r\nPK"))
        << archive.substr(0, 300);
    EXPECT_NE(archive.find("root/test/TST_One.xsd"), std::string::npos);
    EXPECT_EQ(response(provider_, "GET", "/-/root/other.zip"), "(left)");
}

TEST_F(PageProviderTest, AClassPageNamesTheHostOfTheRequest) {
    TSKHTTPRequest request("GET", "/-/root/test/TST_One", "HTTP/1.1");
    request.setHeaderField("Host", "cim.example:81", false);
    EmptyInput input;
    RecordedOutput output;
    bool handled = true;
    provider_.processHTTPRequest(input, output, request, handled, nullptr);
    EXPECT_NE(output.text.find("http://cim.example:81/root/test/TST_One.wsdl"), std::string::npos);
}

TEST_F(PageProviderTest, GetsTheRequestsForWhichNoOtherProviderIsThere) {
    const auto manager = TSKSmrPtr<TeskProviderPluginManager>::make();
    TeskProviderPluginManager::setTeskProviderPluginManager(manager);
    EXPECT_TRUE(manager->addProvider(provider_, "index").empty());
    EXPECT_TRUE(manager->startup().empty());
    EXPECT_TRUE(manager->postStartup().empty());
    EXPECT_EQ(manager->findProvider("/"), &provider_);
    EXPECT_EQ(manager->findProvider("/nosuch/namespace/TST_One.wsdl"), &provider_);
    TeskProviderPluginManager::setTeskProviderPluginManager(nullptr);
}

TEST_F(PageProviderTest, SeveralThreadsAskWhileTheClassesChange) {
    constexpr int kThreads = 4;
    constexpr int kRequests = 200;
    const std::set<std::string> right = {found(*one_), found(*other_)};
    runOnThreads(kThreads, [&](int thread) {
        for (int count = 0; count < kRequests; ++count) {
            if (thread == 0)
                provider_.setSite(PageProvider::makeSite(count % 2 == 0 ? other_ : one_));
            EXPECT_TRUE(right.contains(response(provider_, "GET")));
            (void)response(provider_, "GET", "/-/root/test/TST_One");
        }
    });
    EXPECT_EQ(authenticator_->calls, 2 * kThreads * kRequests);
    EXPECT_EQ(response(provider_, "GET"), found(*one_));
}

TEST_F(PageProviderTest, ThePageOfAClassNamesTheAddressThatTheClientUses) {
    TSKHTTPRequest request("GET", "/-/root/test/TST_One", "HTTP/1.1");
    request.setHeaderField("Host", "a:1", false);
    request.setHeaderField("X-Forwarded-Proto", "https", false);
    EmptyInput input;
    RecordedOutput output;
    bool handled = true;
    provider_.processHTTPRequest(input, output, request, handled, nullptr);
    const Pages::ClassRelations relations(one_->namespaces().front());
    EXPECT_TRUE(output.text.ends_with(
        Pages::makeClassPage(*relations.nameSpace().findClass("TST_One"), relations,
                             Pages::Layout::kServed, "https://a:1")));
}

}  // namespace

// The page at "/" of `tesk serve`.

#include <gtest/gtest.h>

#include "ObjectManager/Http/EntityTag.h"
#include "ObjectManager/Loading/RepositoryLoader.h"
#include "ObjectManager/Pages/IndexPage.h"
#include "ObjectManager/Pages/PageFrame.h"
#include "Tests/EndToEnd/Service/RunningService.h"

namespace {

class ServiceIndexPage : public RunningService {
  protected:
    // Of the classes that the model has now.
    [[nodiscard]] std::string page() const {
        const Loading::LoadedRepository loaded = Loading::loadRepository(
            {{.name = "root/test", .paths = {directory_ / "test.mof"}}}, {}, {});
        return Pages::makeIndexPage(*loaded.repository, Pages::Layout::kServed);
    }

    [[nodiscard]] std::string head() const {
        return "HTTP/1.1 200 OK\r\nETag: " + Http::entityTag(page()) +
               "\r\nConnection: close\r\nContent-Length: " + std::to_string(page().size()) +
               "\r\nContent-Type: text/html; charset=utf-8\r\nContent-Security-Policy: " +
               Pages::contentSecurityPolicy(Pages::PageKind::kIndex) +
               "\r\nX-Content-Type-Options: nosniff\r\n\r\n";
    }
};

TEST_F(ServiceIndexPage, IsAnsweredWhole) {
    start();
    EXPECT_EQ(response(get("/")), head() + page());
    EXPECT_EQ(response(get("/?a=b")), head() + page());
    EXPECT_EQ(response(get("http://" + std::string(kHost))), head() + page());
}

TEST_F(ServiceIndexPage, HasAHeadOfItsOwn) {
    start();
    const std::string fields = "Host: " + std::string(kHost) + "\r\n" + kAlice;
    EXPECT_EQ(response(request("HEAD / HTTP/1.1", fields)), head());
}

TEST_F(ServiceIndexPage, IsForThoseWhoMayReadTheDocuments) {
    start();
    EXPECT_EQ(response("GET / HTTP/1.1\r\nHost: a\r\n\r\n"), kChallenge);
}

TEST_F(ServiceIndexPage, CannotBeChanged) {
    start();
    const std::string fields = "Host: " + std::string(kHost) + "\r\n" + kAlice;
    EXPECT_EQ(response(request("DELETE / HTTP/1.1", fields)), kNotAllowed);
}

TEST_F(ServiceIndexPage, IsNotSentToAClientThatHasIt) {
    start();
    const std::string tag = Http::entityTag(page());
    EXPECT_EQ(response(request("GET / HTTP/1.1",
                               "Host: a\r\n" + (kAlice + ("If-None-Match: " + tag)) + "\r\n")),
              "HTTP/1.1 304 Not Modified\r\nConnection: close\r\nETag: " + tag + "\r\n\r\n");
}

TEST_F(ServiceIndexPage, IsAtNoOtherPath) {
    start();
    EXPECT_EQ(response(get("/index.html")),
              refusal("404 Not Found", "There is nothing at this path."));
}

TEST_F(ServiceIndexPage, ShowsTheClassesOfAReload) {
    start();
    const std::string before = response(get("/"));
    writeModel("test.mof", "class TST_New {};\n");
    reload();
    EXPECT_EQ(response(get("/")), head() + page());
    EXPECT_NE(response(get("/")), before);
}

}  // namespace

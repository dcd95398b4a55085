// Classes of CIM servers on their way into the repository.

#include <filesystem>
#include <gtest/gtest.h>
#include <stop_token>
#include <string>
#include <thread>
#include <vector>

#include "ObjectManager/CimXml/ServerError.h"
#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Tests/ObjectManager/CimXml/Messages.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/MofDirectory.h"
#include "Tests/Support/StandInCimServer.h"

namespace {

namespace fs = std::filesystem;

using CimXml::ServerError;
using Loading::LoadedRepository;
using Loading::LoadOptions;
using Loading::NamespaceSource;
using Kind = ServerError::Kind;

std::string cimClass(const std::string& name, const std::string& superclass = "") {
    return "<CLASS NAME=\"" + name + "\"" +
           (superclass.empty() ? "" : " SUPERCLASS=\"" + superclass + "\"") + "/>";
}

const StandInServer::Response kUnavailable = {
    .bytes = "HTTP/1.1 503 Service Unavailable\r\nContent-Length: 0\r\n\r\n"};
const StandInServer::Response kSilence = {.bytes = "", .staysOpen = true};

class ServerLoading : public testing::Test {
  protected:
    ServerLoading() {
        one_.setClasses("root/a", cimClass("A_One") + cimClass("A_Two", "A_One"));
        two_.setClasses("root/b", cimClass("B_One"));
        sources_.servers = {{.name = "one", .options = {.url = one_.url()}},
                            {.name = "two", .options = {.url = two_.url()}}};
    }

    static NamespaceSource source(const std::string& name, const std::string& server,
                                  const std::string& remoteName) {
        return {.name = name, .server = server, .remoteName = remoteName};
    }

    LoadedRepository load(const LoadOptions& how = {}) const {
        return Loading::loadSources(sources_, {}, how);
    }

    LoadedRepository loadAgain(const LoadedRepository& before) const {
        return load({.before = &before});
    }

    LoadedRepository loadWithCache(const LoadedRepository* before = nullptr) const {
        return load({.before = before, .cacheDirectory = cache_});
    }

    // What is wrong with the server, or with the sources.
    std::string failure(const LoadOptions& how = {}) const {
        try {
            (void)load(how);
            return "";
        } catch (const TeskBaseException& error) {
            return withoutUrls(error.getMessage().data());
        }
    }

    // "root/a: A_One A_Two; root/b: B_One".
    static std::string textOf(const LoadedRepository& loaded) {
        std::string text;
        for (const Repository::CimNamespace& nameSpace : loaded.repository->namespaces()) {
            text += (text.empty() ? "" : "; ") + std::string(nameSpace.name()) + ":";
            for (const auto& cimClass : nameSpace.classes())
                text += " " + std::string(cimClass->name());
        }
        return text;
    }

    std::string failuresOf(const LoadedRepository& loaded) const {
        std::string text;
        for (const Loading::ServerFailure& failure : loaded.failures)
            text += failure.toString() + "\n";
        return withoutUrls(text);
    }

    std::string diagnosticsOf(const LoadedRepository& loaded) const {
        return withoutUrls(directory_.shown(loaded.diagnostics));
    }

    std::string withoutUrls(std::string text) const {
        for (const auto& [url, name] :
             {std::pair(one_.url(), "ONE"), std::pair(two_.url(), "TWO")}) {
            for (auto at = text.find(url); at != std::string::npos; at = text.find(url))
                text.replace(at, url.size(), name);
            const std::string port = url.substr(url.rfind(':') + 1);
            for (auto at = text.find("-" + port); at != std::string::npos;
                 at = text.find("-" + port))
                text.replace(at, port.size() + 1, "-PORT");
        }
        return text;
    }

    const MofDirectory directory_;
    const std::string cache_ = directory_.path("cache");
    StandInCimServer one_;
    StandInCimServer two_;
    Loading::Sources sources_;
};

TEST_F(ServerLoading, NamespacesOfFilesAndOfServersStandSideBySide) {
    sources_.namespaces = {
        source("root/x", "one", "root/a"),
        {.name = "root/m", .paths = {directory_.write("m.mof", "class M_A {};")}},
        source("root/b", "two", "root/b")};
    const LoadedRepository loaded = load();
    EXPECT_EQ(textOf(loaded), "root/x: A_One A_Two; root/m: M_A; root/b: B_One");
    EXPECT_EQ(diagnosticsOf(loaded), "");
    const auto derived = loaded.repository->findNamespace("root/x")->findClass("A_Two");
    EXPECT_TRUE(derived->superclass());
}

TEST_F(ServerLoading, AServerThatNoNamespaceNamesIsNotAsked) {
    sources_.namespaces = {source("root/a", "one", "root/a")};
    EXPECT_EQ(textOf(load()), "root/a: A_One A_Two");
    EXPECT_TRUE(two_.requests().empty());
}

TEST_F(ServerLoading, WithoutANameThereAreAllNamespacesThatNothingElseNames) {
    one_.setNamespaces({"root/c", "root/a", "ROOT/M"});
    one_.setClasses("root/c", cimClass("C_One"));
    sources_.namespaces = {
        {.name = "root/m", .paths = {directory_.write("m.mof", "class M_A {};")}},
        {.name = "", .server = "one"}};
    EXPECT_EQ(textOf(load()), "root/m: M_A; root/a: A_One A_Two; root/c: C_One");
}

TEST_F(ServerLoading, ANamespaceThatAServerNamesAndRefusesIsLeftOutWithAWarning) {
    one_.setNamespaces({"root/a", "root/secret"});
    sources_.namespaces = {{.name = "", .server = "one"}};
    const LoadedRepository loaded = load();
    EXPECT_EQ(textOf(loaded), "root/a: A_One A_Two");
    EXPECT_EQ(diagnosticsOf(loaded),
              "ONE: root/secret: warning: the namespace is left out: ONE: EnumerateQualifiers of "
              "root/secret: CIM_ERR_NOT_FOUND (6): none\n");
    one_.setNamespaces({"root/secret"});
    EXPECT_EQ(failure(), "ONE: EnumerateQualifiers of root/secret: CIM_ERR_NOT_FOUND (6): none");
}

TEST_F(ServerLoading, PatternsChooseClassesAndTheirSuperclasses) {
    one_.setClasses("root/a", cimClass("A_One") + cimClass("B_Two", "A_One") + cimClass("C_One"));
    sources_.namespaces = {
        {.name = "root/a", .server = "one", .remoteName = "root/a", .patterns = {"b_*", "none"}}};
    EXPECT_EQ(textOf(load()), "root/a: A_One B_Two");
}

TEST_F(ServerLoading, ANamespaceComesFromOnePlace) {
    sources_.namespaces = {source("root/a", "one", "root/a"),
                           {.name = "ROOT/A", .paths = {directory_.write("m.mof", "")}}};
    EXPECT_EQ(failure(), "the namespace \"ROOT/A\" comes from two places; choose one of them");
    one_.setNamespaces({"root/a"});
    two_.setNamespaces({"root/a"});
    two_.setClasses("root/a", "");
    sources_.namespaces = {{.name = "", .server = "one"}, {.name = "", .server = "two"}};
    EXPECT_EQ(failure(), "the namespace \"root/a\" comes from two places; choose one of them");
}

TEST_F(ServerLoading, AServerThatFailsIsAnErrorWithTheReason) {
    sources_.namespaces = {source("root/a", "one", "root/a")};
    one_.setOutage(kUnavailable);
    EXPECT_EQ(failure(),
              "ONE: EnumerateQualifiers of root/a: the server responds with the status 503");
    one_.setOutage(
        StandInServer::Response{.bytes = "HTTP/1.1 401 no\r\nContent-Length: 0\r\n\r\n"});
    EXPECT_EQ(failure(),
              "ONE: EnumerateQualifiers of root/a: the user or the password is not accepted (401)");
    one_.setOutage(StandInServer::ok("<html/>", "Content-Type: text/html\r\n"));
    EXPECT_EQ(failure(),
              "ONE: EnumerateQualifiers of root/a: the response is of the type \"text/html\"");
}

TEST_F(ServerLoading, APasswordFileThatCannotBeUsedIsAnError) {
    sources_.namespaces = {source("root/a", "one", "root/a")};
    sources_.servers.front().passwordFile = directory_.path("missing");
    EXPECT_EQ(failure(),
              directory_.path("missing") + ": cannot be read: No such file or directory");
}

TEST_F(ServerLoading, ErrorsInFilesLeaveNothing) {
    sources_.namespaces = {source("root/a", "one", "root/a"),
                           {.name = "root/m", .paths = {directory_.write("m.mof", "class")}}};
    const LoadedRepository loaded = load();
    EXPECT_FALSE(loaded.repository);
    EXPECT_EQ(diagnosticsOf(loaded),
              "m.mof:1:6: error: found the end of the file, expected a name\nclass\n     ^\n");
}

TEST_F(ServerLoading, EndsSoonAfterItIsToldTo) {
    sources_.namespaces = {source("root/a", "one", "root/a")};
    one_.setOutage(kSilence);
    std::stop_source stop;
    const std::jthread stopper([&] {
        while (one_.requests().empty())
            std::this_thread::yield();
        stop.request_stop();
    });
    const LoadedRepository before = {};
    EXPECT_EQ(failure({.before = &before, .cacheDirectory = cache_, .stop = stop.get_token()}),
              "ONE: EnumerateQualifiers of root/a: stopped");
}

TEST_F(ServerLoading, WhatHasNotChangedIsNotMadeAgain) {
    sources_.namespaces = {source("root/a", "one", "root/a"), source("root/b", "two", "root/b")};
    const LoadedRepository first = load();
    const LoadedRepository second = loadAgain(first);
    EXPECT_EQ(second.repository.get(), first.repository.get());
    two_.setClasses("root/b", cimClass("B_One") + cimClass("B_Two"));
    const LoadedRepository third = loadAgain(second);
    EXPECT_EQ(textOf(third), "root/a: A_One A_Two; root/b: B_One B_Two");
    EXPECT_EQ(third.repository->findNamespace("root/a")->classes().front().get(),
              first.repository->findNamespace("root/a")->classes().front().get());
}

TEST_F(ServerLoading, ANamespaceThatIsGoneIsNotServedAnyMore) {
    one_.setNamespaces({"root/a", "root/c"});
    one_.setClasses("root/c", "");
    sources_.namespaces = {{.name = "", .server = "one"}};
    const LoadedRepository first = load();
    EXPECT_EQ(textOf(first), "root/a: A_One A_Two; root/c:");
    one_.setNamespaces({"root/a"});
    EXPECT_EQ(textOf(loadAgain(first)), "root/a: A_One A_Two");
}

TEST_F(ServerLoading, OtherOptionsMakeEverythingAgain) {
    sources_.namespaces = {source("root/a", "one", "root/a")};
    const LoadedRepository first = load();
    const LoadedRepository second =
        Loading::loadSources(sources_, {.escapeDescriptions = false}, {.before = &first});
    EXPECT_NE(second.repository.get(), first.repository.get());
}

TEST_F(ServerLoading, FilesAreReadAgainUnlessTheyAreKept) {
    const std::string file = directory_.write("m.mof", "class M_A {};");
    sources_.namespaces = {{.name = "root/m", .paths = {file}}, source("root/a", "one", "root/a")};
    const LoadedRepository first = load();
    directory_.write("m.mof", "class M_B {};");
    const LoadedRepository kept = load({.before = &first, .keepsFiles = true});
    EXPECT_EQ(kept.repository.get(), first.repository.get());
    EXPECT_EQ(textOf(loadAgain(first)), "root/m: M_B; root/a: A_One A_Two");
}

TEST_F(ServerLoading, AServerThatFailsLeavesItsClassesAsTheyWere) {
    sources_.namespaces = {source("root/a", "one", "root/a"), source("root/b", "two", "root/b")};
    const LoadedRepository first = load();
    one_.setOutage(kUnavailable);
    two_.setClasses("root/b", "");
    const LoadedRepository second = loadAgain(first);
    EXPECT_EQ(textOf(second), "root/a: A_One A_Two; root/b:");
    EXPECT_EQ(failuresOf(second),
              "ONE: EnumerateQualifiers of root/a: the server responds with the status 503; its "
              "classes stay as they were\n");
    const LoadedRepository third = loadAgain(second);
    EXPECT_EQ(third.repository.get(), second.repository.get());
    one_.setOutage({});
    const LoadedRepository fourth = loadAgain(third);
    EXPECT_EQ(fourth.repository.get(), second.repository.get());
    EXPECT_EQ(failuresOf(fourth), "");
}

// Classes of different times may not fit each other.
TEST_F(ServerLoading, AServerThatFailsMidwayLeavesAllItsNamespacesAsTheyWere) {
    one_.setClasses("root/c", cimClass("C_One"));
    sources_.namespaces = {source("root/a", "one", "root/a"), source("root/c", "one", "root/c")};
    const LoadedRepository first = load();
    one_.setClasses("root/a", cimClass("A_Three"));
    one_.respond("EnumerateClasses root/c",
                 errorResponseTo("EnumerateClasses", "2", "not for you"));
    const LoadedRepository second = loadAgain(first);
    EXPECT_EQ(second.repository.get(), first.repository.get());
    EXPECT_EQ(second.failures.size(), 1U);
}

TEST_F(ServerLoading, ANewNamespaceOfAServerThatFailsIsAnError) {
    sources_.namespaces = {source("root/a", "one", "root/a")};
    const LoadedRepository first = load();
    one_.setOutage(kUnavailable);
    sources_.namespaces.push_back(source("root/c", "one", "root/c"));
    EXPECT_EQ(failure({.before = &first, .cacheDirectory = cache_}),
              "ONE: EnumerateQualifiers of root/a: the server responds with the status 503");
}

TEST_F(ServerLoading, TheCacheTakesThePlaceOfAServerThatFails) {
    sources_.namespaces = {source("root/x", "one", "root/a"), source("root/b", "two", "root/b")};
    (void)loadWithCache();
    one_.setOutage(kUnavailable);
    const LoadedRepository cached = loadWithCache();
    EXPECT_EQ(textOf(cached), "root/x: A_One A_Two; root/b: B_One");
    EXPECT_EQ(failuresOf(cached),
              "ONE: EnumerateQualifiers of root/a: the server responds with the status 503; its "
              "classes are those that were read last, from " +
                  cache_ + "/http-127.0.0.1-PORT\n");
    // Which is still down.
    EXPECT_EQ(loadWithCache(&cached).repository.get(), cached.repository.get());
    one_.setOutage({});
    const LoadedRepository live = loadWithCache(&cached);
    EXPECT_EQ(textOf(live), textOf(cached));
    EXPECT_EQ(failuresOf(live), "");
    EXPECT_EQ(loadWithCache(&live).repository.get(), live.repository.get());
}

TEST_F(ServerLoading, TheCacheHasWhatWasReadLast) {
    one_.setNamespaces({"root/a", "root/c"});
    one_.setClasses("root/c", cimClass("C_One"));
    sources_.namespaces = {{.name = "", .server = "one"}};
    const LoadedRepository first = loadWithCache();
    one_.setClasses("root/a", cimClass("A_Three"));
    one_.setNamespaces({"root/a"});
    (void)loadWithCache(&first);
    one_.setOutage(kUnavailable);
    EXPECT_EQ(textOf(loadWithCache()), "root/a: A_Three");
}

TEST_F(ServerLoading, TheCacheOfOneServerIsNotThatOfAnother) {
    sources_.namespaces = {source("root/a", "one", "root/a")};
    (void)loadWithCache();
    sources_.servers.front().options.url = two_.url();
    two_.setOutage(kUnavailable);
    EXPECT_EQ(failure({.cacheDirectory = cache_}),
              "TWO: EnumerateQualifiers of root/a: the server responds with the status 503");
}

TEST_F(ServerLoading, ACacheWithErrorsIsNotUsed) {
    sources_.namespaces = {source("root/a", "one", "root/a")};
    (void)loadWithCache();
    one_.setOutage(kUnavailable);
    for (const auto& entry : fs::recursive_directory_iterator(cache_)) {
        if (entry.path().filename() == "A_One.mof")
            fs::resize_file(entry.path(), 5);
    }
    EXPECT_EQ(failure({.cacheDirectory = cache_}),
              "ONE: EnumerateQualifiers of root/a: the server responds with the status 503");
}

// A service runs as well without it.
TEST_F(ServerLoading, ACacheThatCannotBeWrittenIsAWarning) {
    sources_.namespaces = {source("root/a", "one", "root/a")};
    directory_.write("cache", "a file");
    const LoadedRepository loaded = loadWithCache();
    EXPECT_EQ(textOf(loaded), "root/a: A_One A_Two");
    EXPECT_EQ(diagnosticsOf(loaded),
              "cache/http-127.0.0.1-PORT: warning: what the server gave is not kept: cannot make "
              "the directory cache: Not a directory\n");
    // Nor is it tried again before there is something new.
    const LoadedRepository again = loadWithCache(&loaded);
    EXPECT_EQ(again.repository.get(), loaded.repository.get());
    EXPECT_EQ(diagnosticsOf(again), "");
}

TEST_F(ServerLoading, ACacheThatIsNewIsFilledAlthoughNothingHasChanged) {
    sources_.namespaces = {source("root/a", "one", "root/a")};
    const LoadedRepository first = load();
    (void)loadWithCache(&first);
    one_.setOutage(kUnavailable);
    EXPECT_EQ(textOf(loadWithCache()), "root/a: A_One A_Two");
}

}  // namespace

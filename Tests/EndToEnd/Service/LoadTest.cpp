// Many clients at once, slow ones among them, and whether anything is left of them afterwards.

#include <atomic>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <sys/resource.h>

#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderHost.h"
#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"
#include "Tests/Support/CimSchema.h"
#include "Tests/Support/Threads.h"
#include "Tests/Support/WaitUntil.h"

namespace {

// Under sanitizers everything takes ten times as long.
constexpr int kSlowness = TESK_IS_SANITIZED ? 10 : 1;

class ServiceLoad : public RunningService {
  protected:
    [[nodiscard]] std::filesystem::path state(const char* name) const {
        return std::filesystem::path("/proc") / std::to_string(process().id()) / name;
    }

    [[nodiscard]] long openFiles() const {
        return std::distance(std::filesystem::directory_iterator(state("fd")), {});
    }

    [[nodiscard]] long residentKibibytes() const {
        std::ifstream status(state("status"));
        for (std::string word; status >> word;) {
            long size = 0;
            if (word == "VmRSS:" && status >> size)
                return size;
        }
        ADD_FAILURE() << "no VmRSS in " << state("status");
        return 0;
    }

    void waitForOpenFiles(long count) const {
        EXPECT_TRUE(waitUntil([&] { return openFiles() == count; })) << openFiles();
    }

    // Sends so many requests, eight at a time.
    void ask(int requests) const {
        const std::string request = get("/root/test/TST_One.wsdl");
        const std::string document = found(expected("OneClass.wsdl"));
        runOnThreads(8, [&](int /*index*/) {
            for (int count = 0; count < requests / 8; ++count)
                ASSERT_EQ(response(request), document);
        });
    }
};

// Makes the documents in this process, by the same plug-in.
class DirectDocuments {
  public:
    explicit DirectDocuments(const Loading::NamespaceSource& source)
        : repository_(Loading::loadRepository({source}, {}, {}).repository),
          host_(repository_, TSKSmrPtr<Host::LocalAuthenticator>::make(),
                std::filesystem::path(TESK_PROGRAM).parent_path().parent_path() /
                    TESK_INSTALLATION_DIR),
          client_(host_.manager(), {.host = "192.0.2.1:5985"}) {}

    [[nodiscard]] std::vector<std::string> paths() const {
        std::vector<std::string> paths;
        for (const Repository::CimNamespace& nameSpace : repository_->namespaces()) {
            for (const auto& cimClass : nameSpace.classes()) {
                const std::string path =
                    "/" + std::string(nameSpace.name()) + "/" + cimClass->name().data();
                paths.push_back(path + ".wsdl");
                paths.push_back(path + ".xsd");
            }
        }
        return paths;
    }

    [[nodiscard]] std::string document(const std::string& path) const {
        return std::string(client_.get(TSKString(path)).body());
    }

  private:
    TSKSmrPtr<Repository::ClassRepository> repository_;
    Host::ProviderHost host_;
    Host::MemoryClient client_;
};

TEST_F(ServiceLoad, SixtyFourClientsGetEveryDocumentOfTheDmtfSchema) {
    const std::string schema = cimSchemaFile();
    if (schema.empty())
        GTEST_SKIP() << kNoCimSchema;
    namespaces_ = {{"root/cimv2", schema}};
    start();
    const DirectDocuments documents({.name = "root/cimv2", .paths = {schema}});
    const std::vector<std::string> paths = documents.paths();
    ASSERT_EQ(paths.size(), 2 * 1438U);
    std::atomic<std::size_t> next = 0;
    runOnThreads(64, [&](int /*index*/) {
        for (std::size_t index = next++; index < paths.size(); index = next++)
            ASSERT_EQ(response(get(paths[index])), found(documents.document(paths[index])));
    });
}

TEST_F(ServiceLoad, TwoThousandIdleConnectionsKeepNobodyFromBeingServed) {
    constexpr std::size_t kIdle = 2000;
    rlimit files{};
    ASSERT_EQ(getrlimit(RLIMIT_NOFILE, &files), 0);
    if (files.rlim_max < 2 * kIdle)
        GTEST_SKIP() << "no more than " << files.rlim_max << " files may be open";
    files.rlim_cur = files.rlim_max;
    ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &files), 0);
    start();
    const std::string request = get("/root/test/TST_One.wsdl");
    std::vector<Client> idle;
    idle.reserve(kIdle);
    for (std::size_t count = 0; count < kIdle; ++count)
        idle.push_back(count % 2 == 0 ? connect() : sending(request.substr(0, 60)));
    ask(400);
    EXPECT_GT(openFiles(), kIdle);
    const std::string document = found(expected("OneClass.wsdl"));
    for (std::size_t count = 0; count < kIdle; ++count) {
        EXPECT_TRUE(idle[count].send(count % 2 == 0 ? request : request.substr(60)));
        EXPECT_EQ(withoutDate(idle[count].readAll()), document);
    }
}

// A shell lowers the limit that programs begin with, as a careful administrator does.
TEST_F(ServiceLoad, TheFilesThatTheProcessMayOpenAreUsed) {
    writeConfiguration();
    startWith({"-c", "ulimit -S -n 40 && exec \"$@\"", "sh", TESK_PROGRAM, "serve", "--config",
               directory_ / "tesk.toml"},
              "/bin/sh");
    std::vector<Client> idle;
    for (int count = 0; count < 200; ++count)
        idle.push_back(connect());
    ask(8);
    EXPECT_GT(openFiles(), 200);
}

TEST_F(ServiceLoad, SlowClientsDoNotSlowDownOthers) {
    writeModel(
        "test.mof",
        "[Description(\"The first.\")] class TST_One { [Key] uint32 Id; uint32 Stop(); };\n" +
            largeClass());
    start();
    const std::string large = get("/root/test/TST_Large.wsdl");
    const std::string small = get("/root/test/TST_One.wsdl");
    const std::string largeDocument = response(large);
    std::vector<Client> readers;
    std::vector<Client> senders;
    for (int count = 0; count < 8; ++count) {
        readers.push_back(sending(large));
        senders.push_back(connect());
    }
    std::vector<std::string> read(readers.size());
    const std::string document = found(expected("OneClass.wsdl"));
    for (const char byte : small) {
        for (std::size_t index = 0; index < readers.size(); ++index) {
            EXPECT_TRUE(senders[index].send({&byte, 1}));
            read[index] += readers[index].read(100);
        }
        EXPECT_EQ(response(small), document);
    }
    for (std::size_t index = 0; index < readers.size(); ++index) {
        EXPECT_EQ(withoutDate(senders[index].readAll()), document);
        EXPECT_TRUE(withoutDate(read[index] + readers[index].readAll()) == largeDocument);
    }
}

TEST_F(ServiceLoad, NothingIsLeftOfTwentyThousandRequests) {
    start();
    const long filesBefore = openFiles();
    ask(2000 / kSlowness);
    waitForOpenFiles(filesBefore);
    const long memoryBefore = residentKibibytes();
    ask(20'000 / kSlowness);
    waitForOpenFiles(filesBefore);
    // A hundred bytes of each would be 2 MB. Sanitizers keep what is freed, and look for leaks
    // themselves.
    if (!TESK_IS_SANITIZED) {
        EXPECT_LT(residentKibibytes(), memoryBefore + 1024);
    }
}

TEST_F(ServiceLoad, NothingIsLeftOfClientsThatGoAway) {
    writeModel(
        "test.mof",
        "[Description(\"The first.\")] class TST_One { [Key] uint32 Id; uint32 Stop(); };\n" +
            largeClass());
    start();
    const long filesBefore = openFiles();
    const std::string request = get("/root/test/TST_Large.wsdl");
    for (int count = 0; count < 40 / kSlowness; ++count) {
        Client unread = sending(request);
        Client begun = sending(request);
        EXPECT_EQ(begun.read(15), "HTTP/1.1 200 OK");
        Client incomplete = sending(request.substr(0, 30));
        for (Client* const client : {&unread, &begun, &incomplete})
            client->reset();
    }
    waitForOpenFiles(filesBefore);
    ask(80 / kSlowness);
}

}  // namespace

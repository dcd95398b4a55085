#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <gtest/gtest.h>
#include <mutex>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "ObjectManager/Commands/Serve/Reloader.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/ObjectManager/Security/Files.h"
#include "Tests/ObjectManager/Security/Hashes.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/ResourceLimit.h"
#include "Tests/Support/StandInCimServer.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/WaitUntil.h"

namespace {

using Commands::Reloader;
using Lines = std::vector<std::string>;

// Lets the thread that reads the settings go on when the test says so. Shared with that thread,
// which may outlive the test.
class Gate {
  public:
    void pass() {
        std::unique_lock lock(mutex_);
        ++arrived_;
        changed_.notify_all();
        changed_.wait(lock, [&] { return isOpen_; });
    }
    void setOpen(bool isOpen) {
        const std::lock_guard lock(mutex_);
        isOpen_ = isOpen;
        changed_.notify_all();
    }
    void waitForArrivals(int count) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return arrived_ >= count; });
    }
    [[nodiscard]] int arrived() {
        const std::lock_guard lock(mutex_);
        return arrived_;
    }
    void wake() {
        const std::lock_guard lock(mutex_);
        ++woken_;
        changed_.notify_all();
    }
    void waitForWakes(int count) {
        std::unique_lock lock(mutex_);
        changed_.wait(lock, [&] { return woken_ >= count; });
    }

  private:
    std::mutex mutex_;
    std::condition_variable changed_;
    bool isOpen_ = true;
    int arrived_ = 0;
    int woken_ = 0;
};

class ReloaderTest : public testing::Test {
  protected:
    ReloaderTest() {
        directory_.write("test.mof", "class TST_One {};\n");
        writeUsers({"alice"});
        settings_.namespaces = {{.name = "root/test", .paths = {directory_ / "test.mof"}}};
        settings_.security.passwordFile = directory_ / "users";
        reloader_.emplace(
            Commands::ReloaderHooks{.readSettings =
                                        [gate = gate_, settings = settings_](std::ostream&) {
                                            gate->pass();
                                            return settings;
                                        },
                                    .replace =
                                        [this](const auto& classes, auto users) {
                                            failIfAsked();
                                            content_ = std::to_string(classes->countClasses());
                                            if (users)
                                                setUsers(*users);
                                        },
                                    .setUsers =
                                        [this](const auto& users) {
                                            failIfAsked();
                                            setUsers(users);
                                        },
                                    .wake = [gate = gate_] { gate->wake(); },
                                    .clock = [this] { return now_; }},
            settings_, Loading::LoadedRepository(),
            Base::FileVersion::of(settings_.security.passwordFile));
    }

    void writeUsers(const Lines& names) const {
        std::string text;
        for (const std::string& name : names)
            text += name + ":" + kSha512OfSecret + "\n";
        std::filesystem::rename(writePrivate(directory_, "users.new", text), directory_ / "users");
    }

    void setUsers(const Security::UserTable& users) {
        users_.clear();
        for (const Security::User& user : users.users())
            users_.push_back(user.name);
    }

    void failIfAsked() const {
        if (isOutOfMemory_)
            throw std::bad_alloc();
    }

    // What the log says since the last call, without the numbers of its levels.
    [[nodiscard]] Lines logged() {
        Lines lines = log_.lines();
        lines.erase(lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(loggedBefore_));
        loggedBefore_ += lines.size();
        return lines;
    }

    static std::string unsafe(const std::string& file) {
        return "tesk|1|2|The users stay as they were: " + file +
               ": others than its owner can read or write it; correct that with: chmod 600 " + file;
    }

    const LogRecording log_;
    const TemporaryDirectory directory_;
    const std::shared_ptr<Gate> gate_ = std::make_shared<Gate>();
    Configuration::Settings settings_;
    std::chrono::steady_clock::time_point now_;
    bool isOutOfMemory_ = false;
    std::string content_;  // the number of classes that the service was given
    Lines users_ = {"alice"};
    std::size_t loggedBefore_ = 0;
    std::optional<Reloader> reloader_;
};

TEST_F(ReloaderTest, GivesTheServiceWhatItHasRead) {
    reloader_->goOn();
    writeUsers({"alice", "bob"});
    reloader_->reload();
    gate_->waitForWakes(1);
    EXPECT_EQ(content_, "");
    reloader_->goOn();
    EXPECT_EQ(content_, "1");
    EXPECT_EQ(users_, (Lines{"alice", "bob"}));
    EXPECT_FALSE(reloader_->isReading());
    EXPECT_EQ(logged(), Lines{"tesk|3|2|Reloaded: 1 class in 1 namespace"});
    reloader_->goOn();
    EXPECT_EQ(logged(), Lines());
}

TEST_F(ReloaderTest, AUserWhoIsRemovedWhileAModelIsReadIsGoneAtOnce) {
    writeUsers({"alice", "bob"});
    reloader_->goOn();
    EXPECT_EQ(users_, (Lines{"alice", "bob"}));
    gate_->setOpen(false);
    reloader_->reload();
    gate_->waitForArrivals(1);
    writeUsers({"alice"});
    reloader_->goOn();
    EXPECT_EQ(users_, Lines{"alice"});
    EXPECT_TRUE(reloader_->isReading());
    gate_->setOpen(true);
    gate_->waitForWakes(1);
    reloader_->goOn();
    EXPECT_EQ(content_, "1");
    EXPECT_EQ(users_, Lines{"alice"});
}

TEST_F(ReloaderTest, TheEndDoesNotWaitForAModelThatIsRead) {
    gate_->setOpen(false);
    reloader_->reload();
    gate_->waitForArrivals(1);
    reloader_.reset();
    gate_->setOpen(true);
    gate_->waitForWakes(1);
    EXPECT_EQ(content_, "");
    EXPECT_EQ(logged(), Lines());
}

TEST_F(ReloaderTest, AskedForWhileOneRunsMeansOneMore) {
    gate_->setOpen(false);
    reloader_->reload();
    gate_->waitForArrivals(1);
    reloader_->reload();
    reloader_->reload();
    directory_.write("test.mof", "class TST_One {};\nclass TST_Two {};\n");
    gate_->setOpen(true);
    gate_->waitForWakes(1);
    reloader_->goOn();
    EXPECT_TRUE(reloader_->isReading());
    gate_->waitForWakes(2);
    reloader_->goOn();
    EXPECT_FALSE(reloader_->isReading());
    EXPECT_EQ(content_, "2");
    EXPECT_EQ(gate_->arrived(), 2);
}

TEST_F(ReloaderTest, WhatIsWrongWithAModelIsLogged) {
    directory_.write("test.mof", "class TST_One { x };\n");
    reloader_->reload();
    gate_->waitForWakes(1);
    reloader_->goOn();
    EXPECT_EQ(content_, "");
    const Lines lines = logged();
    ASSERT_EQ(lines.size(), 4U);
    EXPECT_TRUE(lines[0].ends_with(":1:19: error: found \"}\", expected \"ref\"")) << lines[0];
    EXPECT_EQ(lines[3],
              "tesk|1|2|Not reloaded, the service goes on as before: the classes have errors and "
              "are not used");
}

TEST_F(ReloaderTest, WarningsAboutAModelThatIsUsedAreLogged) {
    directory_.write("test.mof", "");
    reloader_->reload();
    gate_->waitForWakes(1);
    reloader_->goOn();
    EXPECT_EQ(logged(), (Lines{"tesk|2|2|the namespace root/test has no class",
                               "tesk|3|2|Reloaded: 0 classes in 1 namespace"}));
}

TEST_F(ReloaderTest, APasswordFileThatWasMendedByItsPermissionsAloneIsRead) {
    writeUsers({"bob"});
    const std::filesystem::path file = directory_ / "users";
    std::filesystem::permissions(file, std::filesystem::perms(0644));
    reloader_->goOn();
    EXPECT_EQ(users_, Lines{"alice"});
    EXPECT_EQ(logged(), Lines{unsafe(file)});
    std::filesystem::permissions(file, std::filesystem::perms(0600));
    reloader_->goOn();
    EXPECT_EQ(users_, Lines{"bob"});
    EXPECT_EQ(logged(), Lines{"tesk|3|2|The users have changed"});
}

TEST_F(ReloaderTest, APasswordFileIsTriedAgainWhenThereWereNoDescriptors) {
#ifdef TESK_ADDRESS_SANITIZER
    GTEST_SKIP() << "the check of virtual calls opens a pipe, and takes its failure for a fault";
#endif
    writeUsers({"bob"});
    {
        const ResourceLimit limit(RLIMIT_NOFILE, 0);
        reloader_->goOn();
        reloader_->goOn();
    }
    EXPECT_EQ(users_, Lines{"alice"});
    EXPECT_EQ(logged(),
              Lines{"tesk|1|2|The users stay as they were: " + (directory_ / "users").string() +
                    ": cannot be read: Too many open files"});
    reloader_->goOn();
    EXPECT_EQ(users_, Lines{"bob"});
}

TEST_F(ReloaderTest, APasswordFileThatCannotBeReadIsLoggedOnceAMinute) {
    const std::filesystem::path file = directory_ / "users";
    std::filesystem::permissions(file, std::filesystem::perms(0644));
    reloader_->goOn();
    now_ += std::chrono::seconds(59);
    reloader_->goOn();
    EXPECT_EQ(logged(), Lines{unsafe(file)});
    now_ += std::chrono::seconds(1);
    reloader_->goOn();
    EXPECT_EQ(logged(), Lines{unsafe(file)});
    now_ += std::chrono::seconds(59);
    reloader_->goOn();
    EXPECT_EQ(logged(), Lines());
    // Another change by its owner, who wants to know about it.
    std::filesystem::permissions(file, std::filesystem::perms(0640));
    std::filesystem::permissions(file, std::filesystem::perms(0646));
    reloader_->goOn();
    EXPECT_EQ(logged(), Lines{unsafe(file)});
}

TEST_F(ReloaderTest, WithoutMemoryTheServiceGoesOnAndUsersAreTriedAgain) {
    isOutOfMemory_ = true;
    writeUsers({"bob"});
    reloader_->goOn();
    reloader_->reload();
    gate_->waitForWakes(1);
    reloader_->goOn();
    EXPECT_EQ(users_, Lines{"alice"});
    EXPECT_EQ(logged(),
              (Lines{"tesk|1|2|The users stay as they were: there is not enough memory",
                     "tesk|1|2|Not reloaded, the service goes on as before: there is not enough "
                     "memory"}));
    isOutOfMemory_ = false;
    reloader_->goOn();
    EXPECT_EQ(users_, Lines{"bob"});
}

// A service with the classes of a CIM server, which it asks again every hour.
class ReloaderWithServer : public ReloaderTest {
  protected:
    ReloaderWithServer() {
        server_.setClasses("root/test", kOne);
        settings_.namespaces = {{.name = "root/test", .server = "s", .remoteName = "root/test"}};
        settings_.servers = {{.name = "s", .options = {.url = server_.url()}}};
        settings_.refresh.interval = std::chrono::hours(1);
        run(Loading::loadSources({.namespaces = settings_.namespaces, .servers = settings_.servers},
                                 {}));
    }

    ~ReloaderWithServer() override {
        // Before the server, which a thread may still ask.
        if (reloader_->isReading())
            finish();
    }

    // A service with such classes.
    void run(Loading::LoadedRepository loaded) {
        reloader_.emplace(
            Commands::ReloaderHooks{.readSettings = [this](std::ostream&) { return settings_; },
                                    .replace =
                                        [this](const auto& classes, const auto& /*users*/) {
                                            failIfAsked();
                                            content_ += std::to_string(classes->countClasses());
                                        },
                                    .setUsers = [](const auto& /*users*/) {},
                                    .wake = [gate = gate_] { gate->wake(); },
                                    .clock = [this] { return now_; },
                                    .random = [] { return 1.0; }},
            settings_, std::move(loaded), Base::FileVersion::of(settings_.security.passwordFile));
    }

    // Whether the servers are asked when that time is over.
    bool isAskedAfter(std::chrono::seconds time) {
        now_ += time;
        reloader_->goOn();
        return reloader_->isReading();
    }

    void finish() {
        gate_->waitForWakes(++readings_);
        reloader_->goOn();
    }

    [[nodiscard]] std::string unavailable() const {
        return server_.url() +
               ": EnumerateQualifiers of root/test: the server responds with the status 503";
    }

    static constexpr const char* kOne = "<CLASS NAME=\"TST_One\"/>";
    static constexpr const char* kTwo = "<CLASS NAME=\"TST_One\"/><CLASS NAME=\"TST_Two\"/>";
    const StandInServer::Response kUnavailable = {
        .bytes = "HTTP/1.1 503 no\r\nContent-Length: 0\r\n\r\n"};
    StandInCimServer server_;
    int readings_ = 0;
};

TEST_F(ReloaderWithServer, AsksAfterTheIntervalAndServesWhatHasChanged) {
    EXPECT_FALSE(isAskedAfter(std::chrono::seconds(3599)));
    server_.setClasses("root/test", kTwo);
    EXPECT_TRUE(isAskedAfter(std::chrono::seconds(1)));
    finish();
    EXPECT_EQ(content_, "2");
    EXPECT_EQ(logged(), Lines{"tesk|3|2|The classes of the CIM servers have changed: 2 classes in "
                              "1 namespace"});
    EXPECT_FALSE(isAskedAfter(std::chrono::seconds(3599)));
    EXPECT_TRUE(isAskedAfter(std::chrono::seconds(1)));
}

TEST_F(ReloaderWithServer, WhatHasNotChangedIsNotGivenToTheServiceAgain) {
    EXPECT_TRUE(isAskedAfter(std::chrono::hours(1)));
    finish();
    EXPECT_EQ(content_, "");
    EXPECT_EQ(logged(), Lines());
    reloader_->reload();
    finish();
    EXPECT_EQ(content_, "");
    EXPECT_EQ(logged(), Lines{"tesk|3|2|Reloaded: 1 class in 1 namespace"});
}

TEST_F(ReloaderWithServer, AsksOnlyAtAReloadWithoutAnInterval) {
    settings_.refresh.interval = {};
    reloader_->reload();
    finish();
    EXPECT_FALSE(isAskedAfter(std::chrono::hours(1000)));
    settings_.refresh.interval = std::chrono::seconds(10);
    reloader_->reload();
    finish();
    EXPECT_TRUE(isAskedAfter(std::chrono::seconds(10)));
}

TEST_F(ReloaderWithServer, OneWarningTellsThatAServerFailsAndOneLineThatItResponds) {
    server_.setOutage(kUnavailable);
    EXPECT_TRUE(isAskedAfter(std::chrono::hours(1)));
    finish();
    EXPECT_EQ(logged(), Lines{"tesk|2|2|" + unavailable() + "; its classes stay as they were"});
    for (const int delay : {5, 10, 20, 40}) {
        EXPECT_FALSE(isAskedAfter(std::chrono::seconds(delay - 1)));
        EXPECT_TRUE(isAskedAfter(std::chrono::seconds(1)));
        finish();
    }
    EXPECT_EQ(logged(), Lines());
    EXPECT_EQ(content_, "");
    server_.setOutage({});
    server_.setClasses("root/test", kTwo);
    EXPECT_TRUE(isAskedAfter(std::chrono::seconds(80)));
    finish();
    EXPECT_EQ(content_, "2");
    EXPECT_EQ(logged(), (Lines{"tesk|3|2|All CIM servers respond again",
                               "tesk|3|2|The classes of the CIM servers have changed: 2 classes in "
                               "1 namespace"}));
    EXPECT_FALSE(isAskedAfter(std::chrono::seconds(3599)));
    EXPECT_TRUE(isAskedAfter(std::chrono::seconds(1)));
}

TEST_F(ReloaderWithServer, AReloadTakesEverythingButTheServerThatFails) {
    server_.setOutage(kUnavailable);
    settings_.namespaces.push_back({.name = "root/m", .paths = {directory_ / "test.mof"}});
    reloader_->reload();
    finish();
    EXPECT_EQ(content_, "2");
    EXPECT_EQ(logged(), (Lines{"tesk|2|2|" + unavailable() + "; its classes stay as they were",
                               "tesk|3|2|Reloaded: 2 classes in 2 namespaces"}));
    EXPECT_TRUE(isAskedAfter(std::chrono::seconds(5)));
}

// Of which a service that starts has told already.
TEST_F(ReloaderWithServer, AServiceThatStartedWithoutAServerAsksSoon) {
    Loading::LoadedRepository loaded = Loading::loadSources(
        {.namespaces = settings_.namespaces, .servers = settings_.servers}, {});
    loaded.failures = {{.error = unavailable(), .consequence = "they are old"}};
    run(std::move(loaded));
    server_.setOutage(kUnavailable);
    EXPECT_TRUE(isAskedAfter(std::chrono::seconds(5)));
    finish();
    EXPECT_EQ(logged(), Lines());
    server_.setOutage({});
    EXPECT_TRUE(isAskedAfter(std::chrono::seconds(10)));
    finish();
    EXPECT_EQ(logged(), Lines{"tesk|3|2|All CIM servers respond again"});
}

// The server might be silent for minutes.
TEST_F(ReloaderWithServer, AReloadDoesNotWaitForAServerThatIsAsked) {
    server_.setOutage(StandInServer::Response{.bytes = "", .staysOpen = true});
    const std::size_t before = server_.requests().size();
    EXPECT_TRUE(isAskedAfter(std::chrono::hours(1)));
    ASSERT_TRUE(waitUntil([&] { return server_.requests().size() > before; }));
    server_.setOutage({});
    server_.setClasses("root/test", kTwo);
    reloader_->reload();
    finish();
    finish();
    EXPECT_EQ(content_, "2");
    EXPECT_EQ(logged(), Lines{"tesk|3|2|Reloaded: 2 classes in 1 namespace"});
}

TEST_F(ReloaderWithServer, WithoutMemoryTheServersAreAskedAgainSoon) {
    isOutOfMemory_ = true;
    server_.setClasses("root/test", kTwo);
    EXPECT_TRUE(isAskedAfter(std::chrono::hours(1)));
    finish();
    EXPECT_EQ(logged(), Lines{"tesk|1|2|Not reloaded, the service goes on as before: there is not "
                              "enough memory"});
    isOutOfMemory_ = false;
    EXPECT_TRUE(isAskedAfter(std::chrono::seconds(5)));
    finish();
    EXPECT_EQ(content_, "2");
}

}  // namespace

#include <functional>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Platform/Util/TSKValSlistIterator.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/Support/FixedNamespaces.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Threads.h"

namespace {

using Lines = std::vector<std::string>;

// Notes its life-cycle calls as "NAME CALL", then runs the hook of the call.
class FakeProvider : public urma::pf::Provider {
  public:
    FakeProvider(std::string name, Lines& calls) : name_(std::move(name)), calls_(calls) {}

    TSKString getProviderName() override { return name_.c_str(); }
    void startup() override { note("startup", onStartup); }
    void postStartup() override { note("postStartup", onPostStartup); }
    void postStartupIsComplete() override { note("complete", onComplete); }
    void shutdown() override { note("shutdown", onShutdown); }

    std::function<void()> onStartup;
    std::function<void()> onPostStartup;
    std::function<void()> onComplete;
    std::function<void()> onShutdown;

  private:
    void note(const char* call, const std::function<void()>& hook) {
        calls_.push_back(name_ + " " + call);
        if (hook)
            hook();
    }

    std::string name_;
    Lines& calls_;
};

Lines asLines(const TeskProviderPluginManager::Failures& failures) {
    Lines lines;
    for (const TeskProviderFailure& failure : failures)
        lines.push_back(std::string(failure.file.data()) + ": " + failure.reason.data());
    return lines;
}

Lines asLogLines(const Lines& failures) {
    Lines lines;
    for (const std::string& failure : failures)
        lines.push_back("TeskProviderPluginManager|1|2|" + failure);
    return lines;
}

class TeskProviderPluginManagerTest : public testing::Test {
  protected:
    ~TeskProviderPluginManagerTest() override {
        TeskProviderPluginManager::setTeskProviderPluginManager(nullptr);
    }

    void addAll() {
        for (FakeProvider* provider : {&first_, &second_, &third_})
            EXPECT_EQ(asLines(manager_.addProvider(*provider, provider->getProviderName())),
                      Lines());
    }

    LogRecording log_;
    Lines calls_;
    FakeProvider first_{"first", calls_};
    FakeProvider second_{"second", calls_};
    FakeProvider third_{"third", calls_};
    TeskProviderPluginManager manager_;
};

TEST_F(TeskProviderPluginManagerTest, IsNullForTheProcessUntilOneIsInstalled) {
    EXPECT_EQ(TeskProviderPluginManager::getTeskProviderPluginManager(), nullptr);
    const auto manager = TSKSmrPtr<TeskProviderPluginManager>::make();
    EXPECT_EQ(TeskProviderPluginManager::setTeskProviderPluginManager(manager), nullptr);
    EXPECT_EQ(TeskProviderPluginManager::getTeskProviderPluginManager(), manager);
    EXPECT_EQ(TeskProviderPluginManager::setTeskProviderPluginManager(nullptr), manager);
    EXPECT_EQ(TeskProviderPluginManager::getTeskProviderPluginManager(), nullptr);
}

class Repository : public ITeskRepository {
  public:
    [[nodiscard]] TSKSmrPtr<ITeskClass> getClass(const TSKString& /*nameSpace*/,
                                                 const TSKString& /*className*/) const override {
        return {};
    }
};

TEST_F(TeskProviderPluginManagerTest, HandsOutWhatIsInstalled) {
    EXPECT_EQ(manager_.getRepository(), nullptr);
    EXPECT_TRUE(manager_.getNamespaceList().isEmpty());

    const auto repository = TSKSmrPtr<Repository>::make();
    EXPECT_EQ(manager_.setRepository(repository), nullptr);
    EXPECT_EQ(manager_.getRepository(), repository);
    EXPECT_EQ(manager_.setRepository(nullptr), repository);
    EXPECT_EQ(manager_.getRepository(), nullptr);

    EXPECT_EQ(manager_.setNamespaceList(TSKSmrPtr<FixedNamespaces>::make(
                  TSKValSlist<TSKString>{"root/cimv2", "interop"})),
              nullptr);
    const TSKValSlist<TSKString> names = manager_.getNamespaceList();
    TSKValSlistIterator<TSKString> next(names);
    ASSERT_TRUE(next());
    EXPECT_EQ(next.key(), "root/cimv2");
    ASSERT_TRUE(next());
    EXPECT_EQ(next.key(), "interop");
    EXPECT_FALSE(next());
}

TEST_F(TeskProviderPluginManagerTest, DrivesProvidersThroughTheirLife) {
    addAll();
    EXPECT_EQ(asLines(manager_.startup()), Lines());
    EXPECT_EQ(asLines(manager_.postStartup()), Lines());
    EXPECT_EQ(asLines(manager_.shutdown()), Lines());
    EXPECT_EQ(calls_,
              Lines({"first startup", "second startup", "third startup", "first postStartup",
                     "second postStartup", "third postStartup", "first complete", "second complete",
                     "third complete", "third shutdown", "second shutdown", "first shutdown"}));
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(TeskProviderPluginManagerTest, ShutsDownOnce) {
    addAll();
    manager_.startup();
    manager_.shutdown();
    calls_.clear();
    EXPECT_EQ(asLines(manager_.shutdown()), Lines());
    EXPECT_EQ(calls_, Lines());
}

TEST_F(TeskProviderPluginManagerTest, AProviderThatFailsToStartIsLeftOut) {
    second_.onStartup = [] { throw TeskBaseException("here", "no licence", CIM_ERR_FAILED); };
    addAll();
    const Lines failures = asLines(manager_.startup());
    EXPECT_EQ(failures, Lines({"second: Start-up failed: here: no licence (1)"}));
    EXPECT_EQ(log_.lines(), asLogLines(failures));
    manager_.postStartup();
    manager_.shutdown();
    EXPECT_EQ(calls_, Lines({"first startup", "second startup", "third startup",
                             "first postStartup", "third postStartup", "first complete",
                             "third complete", "third shutdown", "first shutdown"}));
}

TEST_F(TeskProviderPluginManagerTest, AProviderThatFailsAfterItsStartIsShutDown) {
    first_.onPostStartup = [] { throw std::runtime_error("no network"); };
    third_.onComplete = [] { throw 42; };
    third_.onShutdown = [] { throw std::runtime_error("stuck"); };
    addAll();
    manager_.startup();
    calls_.clear();
    const Lines failures = asLines(manager_.postStartup());
    EXPECT_EQ(failures,
              Lines({"first: Post-start-up failed: no network",
                     "third: Completion of post-start-up failed with an exception of unknown type",
                     "third: Shut-down failed: stuck"}));
    EXPECT_EQ(log_.lines(), asLogLines(failures));
    EXPECT_EQ(calls_,
              Lines({"first postStartup", "first shutdown", "second postStartup",
                     "third postStartup", "second complete", "third complete", "third shutdown"}));
    calls_.clear();
    manager_.shutdown();
    EXPECT_EQ(calls_, Lines({"second shutdown"}));
}

TEST_F(TeskProviderPluginManagerTest, AProviderThatFailsToShutDownDoesNotStopTheOthers) {
    second_.onShutdown = [] { throw std::runtime_error("stuck"); };
    addAll();
    manager_.startup();
    calls_.clear();
    const Lines failures = asLines(manager_.shutdown());
    EXPECT_EQ(failures, Lines({"second: Shut-down failed: stuck"}));
    EXPECT_EQ(log_.lines(), asLogLines(failures));
    EXPECT_EQ(calls_, Lines({"third shutdown", "second shutdown", "first shutdown"}));
}

TEST_F(TeskProviderPluginManagerTest, EveryLifeCycleCallMayFailInTurn) {
    const auto fail = [] { throw std::runtime_error("fails"); };
    std::function<void()> FakeProvider::*const hooks[] = {
        &FakeProvider::onStartup, &FakeProvider::onPostStartup, &FakeProvider::onComplete,
        &FakeProvider::onShutdown};
    for (const auto hook : hooks) {
        for (FakeProvider* provider : {&first_, &second_, &third_}) {
            provider->*hook = fail;
            TeskProviderPluginManager manager;
            for (FakeProvider* each : {&first_, &second_, &third_})
                manager.addProvider(*each, "file");
            std::size_t failures = manager.startup().size();
            failures += manager.postStartup().size();
            failures += manager.shutdown().size();
            EXPECT_EQ(failures, 1U);
            provider->*hook = nullptr;
        }
    }
}

TEST_F(TeskProviderPluginManagerTest, RefusesASecondProviderOfTheSameName) {
    FakeProvider twin("first", calls_);
    EXPECT_EQ(asLines(manager_.addProvider(first_, "liba.so")), Lines());
    const Lines failures = asLines(manager_.addProvider(twin, "libb.so"));
    EXPECT_EQ(failures, Lines({"libb.so: Adding failed: TeskProviderPluginManager::addEntry: A "
                               "provider of the name first is already there, from liba.so (11)"}));
    manager_.startup();
    EXPECT_EQ(calls_, Lines({"first startup"}));
}

class NamelessProvider : public urma::pf::Provider {};

TEST_F(TeskProviderPluginManagerTest, RefusesAProviderWithoutAName) {
    NamelessProvider nameless;
    EXPECT_EQ(asLines(manager_.addProvider(nameless, "liba.so")),
              Lines({"liba.so: Adding failed: Provider::getProviderName: The provider does not "
                     "support this operation (7)"}));
}

TEST_F(TeskProviderPluginManagerTest, RoutesRequestsByRegisteredUri) {
    addAll();
    EXPECT_TRUE(manager_.registerURI("first", "/root"));
    EXPECT_TRUE(manager_.registerURI("second", "/root/cimv2"));
    EXPECT_TRUE(manager_.registerURI("third", "/interop"));
    EXPECT_EQ(manager_.findProvider("/root/A.wsdl"), &first_);
    EXPECT_EQ(manager_.findProvider("/ROOT/CIMV2/A.wsdl"), &second_);
    EXPECT_EQ(manager_.findProvider("/A.wsdl"), &third_);
    EXPECT_EQ(manager_.findProvider("/other/A.wsdl"), nullptr);
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(TeskProviderPluginManagerTest, RegisteringAUriTwiceIsHarmlessForTheSameProvider) {
    addAll();
    EXPECT_TRUE(manager_.registerURI("first", "/root"));
    EXPECT_TRUE(manager_.registerURI("first", "/root"));
    EXPECT_EQ(manager_.findProvider("/root"), &first_);
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(TeskProviderPluginManagerTest, RefusedRegistrationsAreLogged) {
    addAll();
    EXPECT_TRUE(manager_.registerURI("first", "/root"));
    EXPECT_FALSE(manager_.registerURI("second", "/ROOT"));
    EXPECT_FALSE(manager_.registerURI("second", "root"));
    EXPECT_FALSE(manager_.registerURI("nobody", "/other"));
    EXPECT_EQ(manager_.findProvider("/root"), &first_);
    EXPECT_EQ(manager_.findProvider("/other"), nullptr);
    EXPECT_EQ(log_.lines(),
              Lines({"TeskProviderPluginManager|2|2|The URI /ROOT is refused to the provider "
                     "second: another provider has registered it",
                     "TeskProviderPluginManager|2|2|The URI root is refused to the provider "
                     "second: it does not begin with a slash",
                     "TeskProviderPluginManager|2|2|The URI /other is refused to the provider "
                     "nobody: there is no such provider"}));
}

TEST_F(TeskProviderPluginManagerTest, AProviderServesGetAndHeadUnlessItTellsOtherMethods) {
    using Methods = std::vector<TSKString>;
    const Methods documents = {"GET", "HEAD"};
    addAll();
    EXPECT_TRUE(manager_.registerURI("first", "/a"));
    EXPECT_EQ(manager_.getMethods("/a/b"), documents);
    EXPECT_TRUE(manager_.registerMethods("first", {"POST", "GET"}));
    EXPECT_EQ(manager_.getMethods("/a/b"), Methods({"POST", "GET"}));
    EXPECT_EQ(manager_.getMethods("/other/path"), documents);
    EXPECT_EQ(log_.lines(), Lines());
    EXPECT_FALSE(manager_.registerMethods("nobody", {"POST"}));
    EXPECT_EQ(log_.lines(),
              Lines({"TeskProviderPluginManager|2|2|The methods of the provider nobody are "
                     "refused: there is no such provider"}));
}

// Asks the manager while it is told of a refusal.
class AskingSink : public TSKLogSink {
  public:
    explicit AskingSink(const TeskProviderPluginManager& manager) : manager_(manager) {}
    void write(const TSKLogEntry& /*entry*/) override { found = manager_.findProvider("/root"); }

    urma::pf::Provider* found = nullptr;

  private:
    const TeskProviderPluginManager& manager_;
};

TEST_F(TeskProviderPluginManagerTest, RequestsAreRoutedWhileARefusalIsLogged) {
    addAll();
    manager_.registerURI("first", "/root");
    const auto sink = TSKSmrPtr<AskingSink>::make(manager_);
    const TSKSmrPtr<TSKLogSink> previous = TSKLog::setSink(sink);
    EXPECT_FALSE(manager_.registerURI("second", "/root"));
    TSKLog::setSink(previous);
    EXPECT_EQ(sink->found, &first_);
}

TEST_F(TeskProviderPluginManagerTest, AFailedProviderLosesItsUris) {
    first_.onPostStartup = [&] {
        manager_.registerURI("first", "/root");
        throw std::runtime_error("too late");
    };
    second_.onPostStartup = [&] { manager_.registerURI("second", "/root"); };
    addAll();
    manager_.startup();
    manager_.postStartup();
    EXPECT_EQ(manager_.findProvider("/root"), &second_);
}

TEST_F(TeskProviderPluginManagerTest, NothingIsRoutedAfterShutdown) {
    addAll();
    manager_.registerURI("first", "/root");
    manager_.shutdown();
    EXPECT_EQ(manager_.findProvider("/root"), nullptr);
    EXPECT_FALSE(manager_.registerURI("first", "/root"));
}

TEST_F(TeskProviderPluginManagerTest, RegistersAndRoutesFromManyThreads) {
    addAll();
    runOnThreads(8, [&](int index) {
        for (int round = 0; round < 100; ++round) {
            const TSKString uri = TSKString().sprintf("/%d/%d", index, round);
            EXPECT_TRUE(manager_.registerURI("first", uri));
            EXPECT_EQ(manager_.findProvider(uri + "/A.wsdl"), &first_);
        }
    });
}

// Namespaces that appear later.

TSKSmrPtr<FixedNamespaces> namespaces(std::initializer_list<const char*> names) {
    TSKValSlist<TSKString> list;
    for (const char* name : names)
        list.append(name);
    return TSKSmrPtr<FixedNamespaces>::make(list);
}

class TeskProviderPluginManagerNamespacesTest : public TeskProviderPluginManagerTest {
  protected:
    TeskProviderPluginManagerNamespacesTest() {
        addAll();
        manager_.setNamespaceList(namespaces({"root/cimv2", "interop"}));
    }

    [[nodiscard]] std::string providerOf(const char* path) const {
        urma::pf::Provider* const provider = manager_.findProvider(path);
        return provider == nullptr ? "nobody" : provider->getProviderName().data();
    }
};

TEST_F(TeskProviderPluginManagerNamespacesTest, LaterNamespacesGoToTheProviderOfEarlierOnes) {
    EXPECT_TRUE(manager_.registerURI("first", "/root/cimv2"));
    EXPECT_TRUE(manager_.registerURI("second", "/metrics"));
    manager_.setNamespaceList(namespaces({"root/cimv2", "interop", "root/acme"}));
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "first");
    EXPECT_EQ(providerOf("/interop/A.xsd"), "first");
    EXPECT_EQ(providerOf("/metrics"), "second");
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(TeskProviderPluginManagerNamespacesTest, ProvidersOfOtherUrisGetNoNamespace) {
    EXPECT_TRUE(manager_.registerURI("first", "/root"));
    EXPECT_TRUE(manager_.registerURI("second", "/root/cimv2/more"));
    manager_.setNamespaceList(namespaces({"root/cimv2", "interop", "root/acme"}));
    EXPECT_EQ(providerOf("/interop/A.xsd"), "nobody");
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "first");
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(TeskProviderPluginManagerNamespacesTest, NamespacesAreTheSameInAnyCase) {
    EXPECT_TRUE(manager_.registerURI("first", "/ROOT/CimV2"));
    manager_.setNamespaceList(namespaces({"Root/CIMV2", "Root/Acme"}));
    EXPECT_EQ(providerOf("/root/ACME/A.xsd"), "first");
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(TeskProviderPluginManagerNamespacesTest, NamespacesAreTheSameWithASlashAtTheEnd) {
    EXPECT_TRUE(manager_.registerURI("first", "/root/cimv2/"));
    EXPECT_TRUE(manager_.registerURI("second", "/root/acme//"));
    manager_.setNamespaceList(namespaces({"root/cimv2", "root/acme", "root/new"}));
    EXPECT_EQ(providerOf("/root/new/A.xsd"), "first");
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "second");
    EXPECT_EQ(log_.lines(), Lines());
}

// What a provider has registered before it became a namespace stays its own.
TEST_F(TeskProviderPluginManagerNamespacesTest, ANamespaceThatIsTakenStaysWhereItIs) {
    EXPECT_TRUE(manager_.registerURI("first", "/interop"));
    EXPECT_TRUE(manager_.registerURI("second", "/Root/Acme"));
    manager_.setNamespaceList(namespaces({"interop", "root/acme"}));
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "second");
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(TeskProviderPluginManagerNamespacesTest, ARefusedRegistrationCountsForNothing) {
    EXPECT_TRUE(manager_.registerURI("first", "/metrics"));
    EXPECT_FALSE(manager_.registerURI("nobody", "/interop"));
    manager_.setNamespaceList(namespaces({"interop", "root/acme"}));
    EXPECT_EQ(providerOf("/interop/A.xsd"), "nobody");
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "nobody");
    EXPECT_EQ(log_.lines(),
              Lines({"TeskProviderPluginManager|2|2|The URI /interop is refused to the provider "
                     "nobody: there is no such provider"}));
}

TEST_F(TeskProviderPluginManagerNamespacesTest, ANamespaceMayGoAndComeBack) {
    EXPECT_TRUE(manager_.registerURI("first", "/root/cimv2"));
    manager_.setNamespaceList(namespaces({}));
    EXPECT_TRUE(manager_.getNamespaceList().isEmpty());
    manager_.setNamespaceList(namespaces({"root/cimv2", "root/acme"}));
    EXPECT_EQ(providerOf("/root/cimv2/A.xsd"), "first");
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "first");
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(TeskProviderPluginManagerNamespacesTest, RequestsAreRoutedWhileNamespacesChange) {
    EXPECT_TRUE(manager_.registerURI("first", "/root/cimv2"));
    runOnThreads(4, [&](int index) {
        for (int round = 0; round < 200; ++round) {
            if (index == 0) {
                const TSKString added = TSKString().sprintf("root/n%d", round);
                manager_.setNamespaceList(namespaces({"root/cimv2", added.data()}));
                EXPECT_EQ(manager_.findProvider("/" + added + "/A.xsd"), &first_);
            } else {
                EXPECT_EQ(manager_.findProvider("/root/cimv2/A.xsd"), &first_);
                EXPECT_TRUE(manager_.registerURI("second", TSKString().sprintf("/%d", index)));
            }
        }
    });
}

// Loading libraries.

TEST_F(TeskProviderPluginManagerTest, LoadsTheGoodLibrariesBesideTheBrokenOnes) {
    const TemporaryDirectory directory;
    for (const char* const name :
         {"GoodProvider", "MissingSymbol", "NoFactory", "NullFactory", "ThrowingFactory"}) {
        const std::string file = std::string("lib") + name + ".so";
        directory.copy(std::string(FIXTURES_DIRECTORY) + "/" + file, file);
    }
    directory.write("libText.so", "this is no library");
    directory.write("Readme.txt", "this is not even meant to be one");
    std::filesystem::create_directory(directory / "libDirectory.so");
    ASSERT_EQ(mkfifo((directory / "libPipe.so").c_str(), 0600), 0);
    std::filesystem::create_symlink("/nowhere/libGone.so", directory / "libGone.so");

    const Lines failures = asLines(manager_.loadProviders((directory / "").c_str()));
    const std::string at = directory.path().string() + "/";
    ASSERT_EQ(failures.size(), 8U);
    const std::string failed = ": Loading failed: ProviderLibrary::load: ";
    EXPECT_EQ(failures[0], at + "libDirectory.so" + failed + "It is no regular file (1)");
    EXPECT_TRUE(failures[1].starts_with(at + "libGone.so" + failed)) << failures[1];
    EXPECT_TRUE(failures[2].starts_with(at + "libMissingSymbol.so" + failed)) << failures[2];
    EXPECT_EQ(failures[3], at + "libNoFactory.so" + failed +
                               "The library does not export the function getTeskNoFactory (1)");
    EXPECT_EQ(failures[4], at + "libNullFactory.so" + failed +
                               "The function getTeskNullFactory returned no provider (1)");
    EXPECT_EQ(failures[5], at + "libPipe.so" + failed + "It is no regular file (1)");
    EXPECT_TRUE(failures[6].starts_with(at + "libText.so" + failed)) << failures[6];
    EXPECT_EQ(failures[7], at + "libThrowingFactory.so: Loading failed: getTeskThrowingFactory: "
                                "There is no hardware to manage (1)");
    EXPECT_EQ(log_.lines(), asLogLines(failures));

    EXPECT_TRUE(manager_.registerURI("GoodProvider", "/good"));
    EXPECT_NE(manager_.findProvider("/good"), nullptr);
    EXPECT_EQ(asLines(manager_.startup()), Lines());
    EXPECT_EQ(asLines(manager_.shutdown()), Lines());
}

TEST_F(TeskProviderPluginManagerTest, ReportsADirectoryThatCannotBeRead) {
    const Lines failures = asLines(manager_.loadProviders("/nowhere"));
    ASSERT_EQ(failures.size(), 1U);
    EXPECT_TRUE(failures[0].starts_with("/nowhere: Reading the directory failed: ")) << failures[0];
    EXPECT_NE(failures[0].find("No such file or directory"), std::string::npos) << failures[0];
    EXPECT_EQ(log_.lines(), asLogLines(failures));
}

TEST_F(TeskProviderPluginManagerTest, ADirectoryWithoutLibrariesIsFine) {
    const TemporaryDirectory directory;
    directory.write("Readme.txt", "");
    EXPECT_EQ(asLines(manager_.loadProviders(directory.path().c_str())), Lines());
}

}  // namespace

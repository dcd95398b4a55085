#include <cstddef>
#include <cstdlib>
#include <dlfcn.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <new>
#include <set>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "Platform/ProviderFramework/TeskProviderGetDllVersion.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Providers/WsdlWebProvider/WsdlWebProvider.h"
#include "Tests/Providers/WsdlWebProvider/ExpectedDocuments.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/Command.h"
#include "Tests/Support/FixedNamespaces.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/RecordingStreams.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/TestHost.h"
#include "Tests/Support/Threads.h"
#include "Tests/Support/VirtualTable.h"

namespace {

using Lines = std::vector<std::string>;
using urma::pf::Provider;

// What the log holds of a message of the provider's life cycle.
std::string lifeCycleLine(const std::string& message) {
    return "WsdlWebProvider|3|2|" + message;
}

// Notes every registration as "PROVIDER URI" and gives the result that it is told to give.
class RecordingManager : public TeskProviderPluginManager {
  public:
    explicit RecordingManager(bool response) : response_(response) {}

    bool registerURI(const TSKString& providerName, const TSKString& uri) override {
        registrations.push_back(std::string(providerName.data()) + " " + uri.data());
        return response_;
    }

    Lines registrations;

  private:
    bool response_;
};

class WsdlWebProviderTest : public testing::Test {
  protected:
    ~WsdlWebProviderTest() override {
        TeskProviderPluginManager::setTeskProviderPluginManager(nullptr);
    }

    static TSKSmrPtr<RecordingManager> installManager(const TSKValSlist<TSKString>& namespaces,
                                                      bool response = true) {
        auto manager = TSKSmrPtr<RecordingManager>::make(response);
        manager->setNamespaceList(TSKSmrPtr<FixedNamespaces>::make(namespaces));
        TeskProviderPluginManager::setTeskProviderPluginManager(manager);
        return manager;
    }

    WsdlWebProvider& provider_ = *WsdlWebProvider::getInstance();
    LogRecording log_;
};

TEST_F(WsdlWebProviderTest, TheFactoryLogsItsCallAndGivesTheInstance) {
    EXPECT_EQ(getTeskWsdlWebProvider(), &provider_);
    EXPECT_EQ(getTeskWsdlWebProvider(), WsdlWebProvider::getInstance());
    EXPECT_EQ(log_.lines(), Lines(2, lifeCycleLine("getTeskWsdlWebProvider() Called!")));
}

TEST_F(WsdlWebProviderTest, StartupAndShutdownOnlyLog) {
    provider_.startup();
    provider_.shutdown();
    EXPECT_EQ(log_.lines(),
              Lines({lifeCycleLine("Startup called"), lifeCycleLine("Shutdown called")}));
}

TEST_F(WsdlWebProviderTest, ShutdownKeepsTheInstanceAndItsUris) {
    const auto manager = installManager({"root/cimv2"});
    provider_.postStartup();
    provider_.shutdown();
    EXPECT_EQ(WsdlWebProvider::getInstance(), &provider_);
    EXPECT_EQ(manager->registrations, Lines({"WsdlWebProvider /root/cimv2"}));
}

TEST_F(WsdlWebProviderTest, TransactionsAreLoggedAndNull) {
    EXPECT_EQ(provider_.startTransaction(TSKSmrPtr<TeskTransactionInfo>::make()), nullptr);
    provider_.endTransaction(nullptr);
    EXPECT_EQ(log_.lines(), Lines({lifeCycleLine("startTransaction called"),
                                   lifeCycleLine("endTransaction called")}));
}

TEST_F(WsdlWebProviderTest, PostStartupRegistersEachNamespaceInListOrder) {
    const auto manager = installManager({"root/cimv2", "interop", "root/PG_Internal"});
    provider_.postStartup();
    EXPECT_EQ(manager->registrations,
              Lines({"WsdlWebProvider /root/cimv2", "WsdlWebProvider /interop",
                     "WsdlWebProvider /root/PG_Internal"}));
    EXPECT_EQ(log_.lines(), Lines({lifeCycleLine("Post Startup called"),
                                   lifeCycleLine("dynamically registering URI/root/cimv2"),
                                   lifeCycleLine("dynamically registering URI/interop"),
                                   lifeCycleLine("dynamically registering URI/root/PG_Internal")}));
}

TEST_F(WsdlWebProviderTest, PostStartupRegistersNothingWithoutNamespaces) {
    const auto manager = installManager({});
    provider_.postStartup();
    EXPECT_EQ(manager->registrations, Lines());
    EXPECT_EQ(log_.lines(), Lines({lifeCycleLine("Post Startup called")}));
}

TEST_F(WsdlWebProviderTest, PostStartupGoesOnWhenARegistrationIsRefused) {
    const auto manager = installManager({"a", "b"}, false);
    provider_.postStartup();
    EXPECT_EQ(manager->registrations, Lines({"WsdlWebProvider /a", "WsdlWebProvider /b"}));
}

TEST_F(WsdlWebProviderTest, PostStartupFailsWithoutAPluginManager) {
    EXPECT_THROW(provider_.postStartup(), TSKNullPointerException);
}

TEST_F(WsdlWebProviderTest, HasItsName) {
    EXPECT_EQ(provider_.getProviderName(), "WsdlWebProvider");
}

TEST_F(WsdlWebProviderTest, HasTheVersionOfThePlatform) {
    TSKString expected;
    TeskProviderGetDllVersion(expected);
    TSKString version = "old";
    EXPECT_TRUE(provider_.getVersion(version));
    EXPECT_EQ(version, expected);
    EXPECT_FALSE(version.isEmpty());
}

TEST_F(WsdlWebProviderTest, HasNoRepositoryOfItsOwn) {
    EXPECT_EQ(provider_.getTeskRepository(), nullptr);
}

TEST_F(WsdlWebProviderTest, HasNoObservers) {
    EXPECT_EQ(provider_.deregisterObserver({}, {}, ITeskIndication::InstanceCreation, {}, {}),
              nullptr);
}

TEST_F(WsdlWebProviderTest, TheRestDoesNothing) {
    std::ostringstream dump;
    provider_.debugDump(9, dump);
    provider_.logAuditInfo({}, {}, {}, "operation");
    TSKString path = "/var/lib/tesk";
    provider_.setWorkArea(path);
    EXPECT_EQ(path, "/var/lib/tesk");
    EXPECT_EQ(dump.str(), "");
    EXPECT_EQ(log_.lines(), Lines());
}

static_assert(sizeof(WsdlWebProvider) == sizeof(Provider), "All state is the base class's");

TEST_F(WsdlWebProviderTest, SetWorkAreaIsANewOperationAfterAllOfTheBaseClass) {
    using SetWorkArea = void (WsdlWebProvider::*)(TSKString&);
    EXPECT_EQ(slotOf<SetWorkArea>(&WsdlWebProvider::setWorkArea),
              slotOf(&Provider::logAuditInfo) + 1);
}

// Tests with a library of their own: each copy of the file is loaded as a library of its own, with
// a provider that is not made yet.

class FreshLibrary {
  public:
    FreshLibrary() {
        const std::filesystem::path copy = directory_.copy(PLUGIN_FILE, "libWsdlWebProvider.so");
        void* library = dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (library == nullptr)
            throw std::runtime_error(dlerror());
        factory_ = reinterpret_cast<Provider* (*)()>(dlsym(library, "getTeskWsdlWebProvider"));
        if (factory_ == nullptr)
            throw std::runtime_error(dlerror());
    }

    Provider* callFactory() const { return factory_(); }

  private:
    TemporaryDirectory directory_;
    Provider* (*factory_)() = nullptr;
};

TEST(WsdlWebProviderLibrary, ThreadsRacingForTheFactoryGetOneObject) {
    constexpr int kThreads = 8;
    for (int round = 0; round < 20; ++round) {
        const FreshLibrary library;
        const LogRecording log(TeskTraceLog::SeverityOff);
        Provider* providers[kThreads] = {};
        AllocationProbe::countAllocationsOf(sizeof(WsdlWebProvider));
        runOnThreads(kThreads, [&](int index) { providers[index] = library.callFactory(); });
        const std::size_t allocations = AllocationProbe::countedAllocations();
        AllocationProbe::countAllocationsOf(0);
        EXPECT_EQ(allocations, 1U);
        EXPECT_NE(providers[0], nullptr);
        EXPECT_EQ(std::set<Provider*>(std::begin(providers), std::end(providers)).size(), 1U);
    }
}

TEST(WsdlWebProviderLibrary, TheFactoryCanBeCalledAgainAfterItFailed) {
#ifdef __SANITIZE_THREAD__
    GTEST_SKIP() << "ThreadSanitizer's pthread_once knows nothing of exceptions and waits for ever";
#endif
    const FreshLibrary library;
    const LogRecording log(TeskTraceLog::SeverityOff);
    Provider* provider = nullptr;
    int failures = 0;
    for (std::size_t occurrence = 1; provider == nullptr; ++occurrence) {
        AllocationProbe::failAt(occurrence);
        try {
            provider = library.callFactory();
        } catch (const std::bad_alloc&) {
            ++failures;
        }
        AllocationProbe::failAt(0);
    }
    EXPECT_GE(failures, 1);
    EXPECT_EQ(provider->getProviderName(), "WsdlWebProvider");
    EXPECT_EQ(library.callFactory(), provider);
}

TEST(WsdlWebProviderLibrary, LoadingItNeedsNoMemoryThatMightBeMissing) {
    const TemporaryDirectory directory;
    const std::filesystem::path copy = directory.copy(PLUGIN_FILE, "libWsdlWebProvider.so");
    AllocationProbe::failAt(1);
    void* const library = dlopen(copy.c_str(), RTLD_NOW | RTLD_LOCAL);
    const bool failed = AllocationProbe::hasFailed();
    AllocationProbe::failAt(0);
    EXPECT_NE(library, nullptr);
    EXPECT_FALSE(failed);
}

// What a host thread is served while the process runs its exit handlers.
class ServingAtExit {
  public:
    // Its handler runs after all that is registered later, by the library for instance.
    static void prepare() {
        setUp();
        std::atexit([] {
            const std::string before = *responses_;
            std::thread([] { serve(); }).join();
            std::_Exit(*responses_ == before && before.find("Internal") != before.npos ? 0 : 1);
        });
        library_ = new FreshLibrary;
        serve();
    }

  private:
    static void setUp() {
        TSKLog::setLevel(TeskTraceLog::SeverityOff);
        responses_ = new std::string;
        host_ = new TestHost;
        host_->repository().add("root/test", classOne());
    }

    static std::string responseTo(const char* path) {
        TSKHTTPRequest request("GET", path, "HTTP/1.1");
        EmptyInput input;
        RecordedOutput output;
        bool handled = true;
        library_->callFactory()->processHTTPRequest(input, output, request, handled, {});
        return output.text;
    }

    static void serve() {
        const auto manager = TeskProviderPluginManager::getTeskProviderPluginManager();
        *responses_ = responseTo("/root/test/TST_One.wsdl") + responseTo("/root/test/TST_One.xsd") +
                      responseTo("/nothing");
        TeskProviderPluginManager::setTeskProviderPluginManager(nullptr);
        *responses_ += responseTo("/root/test/TST_One.wsdl");
        TeskProviderPluginManager::setTeskProviderPluginManager(manager);
    }

    // Never destroyed.
    static inline std::string* responses_;
    static inline TestHost* host_;
    static inline FreshLibrary* library_;
};

TEST(WsdlWebProviderLibrary, AHostThreadMayGenerateWhileTheProcessRunsItsExitHandlers) {
    EXPECT_EXIT(
        {
            ServingAtExit::prepare();
            std::exit(2);
        },
        testing::ExitedWithCode(0), "");
}

// Freed memory mostly reads as before, so the test above fails for sure under AddressSanitizer
// alone.
TEST(WsdlWebProviderLibrary, NothingOfItIsDestroyedAtExit) {
    EXPECT_EQ(outputOf("nm --dynamic --undefined-only --format=just-symbols '" PLUGIN_FILE "'")
                  .find("__cxa_atexit"),
              std::string::npos);
}

TEST(WsdlWebProviderLibrary, DeletingTheInstanceForgetsIt) {
    const FreshLibrary library;
    const LogRecording log;
    delete library.callFactory();
    EXPECT_EQ(library.callFactory(), nullptr);
}

TEST(WsdlWebProviderLibrary, IsLoadedAndDrivenByThePluginManager) {
    const TemporaryDirectory directory;
    directory.copy(PLUGIN_FILE, "libWsdlWebProvider.so");
    directory.write("libBroken.so", "no library");
    const LogRecording log;
    const auto manager = TSKSmrPtr<TeskProviderPluginManager>::make();
    manager->setNamespaceList(
        TSKSmrPtr<FixedNamespaces>::make(TSKValSlist<TSKString>{"root/cimv2", "interop"}));
    TeskProviderPluginManager::setTeskProviderPluginManager(manager);

    EXPECT_EQ(manager->loadProviders(directory.path().c_str()).size(), 1U);  // the broken one
    EXPECT_TRUE(manager->startup().empty());
    EXPECT_TRUE(manager->postStartup().empty());
    Provider* const provider = manager->findProvider("/root/cimv2/CIM_Foo.wsdl");
    ASSERT_NE(provider, nullptr);
    EXPECT_EQ(provider->getProviderName(), "WsdlWebProvider");
    EXPECT_EQ(manager->findProvider("/CIM_Foo.wsdl"), provider);
    EXPECT_EQ(manager->findProvider("/root/other/CIM_Foo.wsdl"), nullptr);
    EXPECT_TRUE(manager->shutdown().empty());
    TeskProviderPluginManager::setTeskProviderPluginManager(nullptr);

    Lines lines = log.lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(lines[0].starts_with("TeskProviderPluginManager|1|2|" +
                                     (directory / "libBroken.so").string()))
        << lines[0];
    lines.erase(lines.begin());
    EXPECT_EQ(lines, Lines({lifeCycleLine("getTeskWsdlWebProvider() Called!"),
                            lifeCycleLine("Startup called"), lifeCycleLine("Post Startup called"),
                            lifeCycleLine("dynamically registering URI/root/cimv2"),
                            lifeCycleLine("dynamically registering URI/interop"),
                            lifeCycleLine("Shutdown called")}));
}

TEST(WsdlWebProviderLibrary, AnswersRequestsFromThePathToTheLastByte) {
    const TemporaryDirectory directory;
    directory.copy(PLUGIN_FILE, "libWsdlWebProvider.so");
    const LogRecording log(TeskTraceLog::SeverityOff);
    TestHost host;
    host.repository().add("root/test", classOne());
    host.manager().setNamespaceList(
        TSKSmrPtr<FixedNamespaces>::make(TSKValSlist<TSKString>{"root/test"}));
    EXPECT_TRUE(host.manager().loadProviders(directory.path().c_str()).empty());
    EXPECT_TRUE(host.manager().startup().empty());
    EXPECT_TRUE(host.manager().postStartup().empty());

    for (const std::string extension : {".wsdl", ".xsd"}) {
        const std::string path = "/root/test/TST_One" + extension;
        const std::string document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" +
                                     expectedDocument("OneClass" + extension);
        TSKHTTPRequest request("GET", path.c_str(), "HTTP/1.1");
        request.setHeaderField("Host", "192.0.2.1:5985", false);
        EmptyInput input;
        RecordedOutput output;
        bool handled = true;
        Provider* const provider = host.manager().findProvider(path.c_str());
        ASSERT_NE(provider, nullptr);
        provider->processHTTPRequest(input, output, request, handled, {});
        EXPECT_EQ(output.text, "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " +
                                   std::to_string(document.size()) +
                                   "\r\nContent-Type: text/xml\r\n\r\n" + document);
        EXPECT_TRUE(handled);
    }
    EXPECT_TRUE(host.manager().shutdown().empty());
}

TEST(WsdlWebProviderLibrary, ExportsItsFactoryAndNothingElse) {
    EXPECT_EQ(outputOf("nm --dynamic --defined-only --format=just-symbols '" PLUGIN_FILE "'"),
              "getTeskWsdlWebProvider\n");
}

}  // namespace

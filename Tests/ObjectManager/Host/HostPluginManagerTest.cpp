#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/Host/HostPluginManager.h"
#include "Tests/Support/FixedNamespaces.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/Threads.h"

namespace {

using Lines = std::vector<std::string>;

class NamedProvider : public urma::pf::Provider {
  public:
    explicit NamedProvider(std::string name) : name_(std::move(name)) {}
    TSKString getProviderName() override { return name_.c_str(); }

  private:
    std::string name_;
};

TSKSmrPtr<FixedNamespaces> namespaces(std::initializer_list<const char*> names) {
    TSKValSlist<TSKString> list;
    for (const char* name : names)
        list.append(name);
    return TSKSmrPtr<FixedNamespaces>::make(list);
}

class HostPluginManagerTest : public testing::Test {
  protected:
    HostPluginManagerTest() {
        EXPECT_TRUE(manager_.addProvider(first_, "first").empty());
        EXPECT_TRUE(manager_.addProvider(second_, "second").empty());
        manager_.setNamespaces(namespaces({"root/cimv2", "interop"}));
    }

    [[nodiscard]] std::string providerOf(const char* path) const {
        urma::pf::Provider* const provider = manager_.findProvider(path);
        return provider == nullptr ? "nobody" : provider->getProviderName().data();
    }

    LogRecording log_;
    NamedProvider first_{"first"};
    NamedProvider second_{"second"};
    Host::HostPluginManager manager_;
};

TEST_F(HostPluginManagerTest, LaterNamespacesGoToTheProviderOfEarlierOnes) {
    EXPECT_TRUE(manager_.registerURI("first", "/root/cimv2"));
    EXPECT_TRUE(manager_.registerURI("second", "/metrics"));
    manager_.setNamespaces(namespaces({"root/cimv2", "interop", "root/acme"}));
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "first");
    EXPECT_EQ(providerOf("/interop/A.xsd"), "first");
    EXPECT_EQ(providerOf("/metrics"), "second");
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(HostPluginManagerTest, ProvidersOfOtherUrisGetNoNamespace) {
    EXPECT_TRUE(manager_.registerURI("first", "/root"));
    EXPECT_TRUE(manager_.registerURI("second", "/root/cimv2/more"));
    manager_.setNamespaces(namespaces({"root/cimv2", "interop", "root/acme"}));
    EXPECT_EQ(providerOf("/interop/A.xsd"), "nobody");
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "first");
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(HostPluginManagerTest, NamespacesAreTheSameInAnyCase) {
    EXPECT_TRUE(manager_.registerURI("first", "/ROOT/CimV2"));
    manager_.setNamespaces(namespaces({"Root/CIMV2", "Root/Acme"}));
    EXPECT_EQ(providerOf("/root/ACME/A.xsd"), "first");
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(HostPluginManagerTest, NamespacesAreTheSameWithASlashAtTheEnd) {
    EXPECT_TRUE(manager_.registerURI("first", "/root/cimv2/"));
    EXPECT_TRUE(manager_.registerURI("second", "/root/acme//"));
    manager_.setNamespaces(namespaces({"root/cimv2", "root/acme", "root/new"}));
    EXPECT_EQ(providerOf("/root/new/A.xsd"), "first");
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "second");
    EXPECT_EQ(log_.lines(), Lines());
}

// What a provider has registered before it became a namespace stays its own.
TEST_F(HostPluginManagerTest, ANamespaceThatIsTakenStaysWhereItIs) {
    EXPECT_TRUE(manager_.registerURI("first", "/interop"));
    EXPECT_TRUE(manager_.registerURI("second", "/Root/Acme"));
    manager_.setNamespaces(namespaces({"interop", "root/acme"}));
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "second");
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(HostPluginManagerTest, ARefusedRegistrationCountsForNothing) {
    EXPECT_TRUE(manager_.registerURI("first", "/metrics"));
    EXPECT_FALSE(manager_.registerURI("nobody", "/interop"));
    manager_.setNamespaces(namespaces({"interop", "root/acme"}));
    EXPECT_EQ(providerOf("/interop/A.xsd"), "nobody");
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "nobody");
    EXPECT_EQ(log_.lines(),
              Lines({"TeskProviderPluginManager|2|2|The URI /interop is refused to the provider "
                     "nobody: there is no such provider"}));
}

TEST_F(HostPluginManagerTest, ANamespaceMayGoAndComeBack) {
    EXPECT_TRUE(manager_.registerURI("first", "/root/cimv2"));
    manager_.setNamespaces(namespaces({}));
    EXPECT_TRUE(manager_.getNamespaceList().isEmpty());
    manager_.setNamespaces(namespaces({"root/cimv2", "root/acme"}));
    EXPECT_EQ(providerOf("/root/cimv2/A.xsd"), "first");
    EXPECT_EQ(providerOf("/root/acme/A.xsd"), "first");
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(HostPluginManagerTest, RequestsAreRoutedWhileNamespacesChange) {
    EXPECT_TRUE(manager_.registerURI("first", "/root/cimv2"));
    runOnThreads(4, [&](int index) {
        for (int round = 0; round < 200; ++round) {
            if (index == 0) {
                const TSKString added = TSKString().sprintf("root/n%d", round);
                manager_.setNamespaces(namespaces({"root/cimv2", added.data()}));
                EXPECT_EQ(manager_.findProvider("/" + added + "/A.xsd"), &first_);
            } else {
                EXPECT_EQ(manager_.findProvider("/root/cimv2/A.xsd"), &first_);
                EXPECT_TRUE(manager_.registerURI("second", TSKString().sprintf("/%d", index)));
            }
        }
    });
}

}  // namespace

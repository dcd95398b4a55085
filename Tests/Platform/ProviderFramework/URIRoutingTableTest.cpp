#include <gtest/gtest.h>
#include <string>

#include "Platform/ProviderFramework/URIRoutingTable.h"

namespace {

using Outcome = URIRoutingTable::Outcome;

class URIRoutingTableTest : public testing::Test {
  protected:
    void add(const char* provider, const char* uri) {
        EXPECT_EQ(table_.add(provider, uri), Outcome::kAdded);
    }
    // The provider's name, "" for none.
    std::string providerOf(const TSKString& path) const {
        const TSKString* provider = table_.find(path);
        return provider == nullptr ? "" : provider->data();
    }

    URIRoutingTable table_;
};

TEST_F(URIRoutingTableTest, AnEmptyTableRoutesNothing) {
    EXPECT_EQ(providerOf("/root/cimv2/CIM_Foo.wsdl"), "");
    EXPECT_EQ(providerOf("/CIM_Foo.wsdl"), "");
    EXPECT_EQ(providerOf("/"), "");
    EXPECT_EQ(providerOf(""), "");
}

TEST_F(URIRoutingTableTest, APrefixEndsAtASlashOrAtTheEnd) {
    add("A", "/root/cimv2");
    EXPECT_EQ(providerOf("/root/cimv2"), "A");
    EXPECT_EQ(providerOf("/root/cimv2/"), "A");
    EXPECT_EQ(providerOf("/root/cimv2/CIM_Foo.wsdl"), "A");
    EXPECT_EQ(providerOf("/root/cimv2/deeper/CIM_Foo.wsdl"), "A");
    EXPECT_EQ(providerOf("/root/cimv22"), "");
    EXPECT_EQ(providerOf("/root/cimv2.wsdl"), "");
    EXPECT_EQ(providerOf("/root/cimv"), "");
    EXPECT_EQ(providerOf("/root"), "");
    EXPECT_EQ(providerOf("/other/root/cimv2"), "");
}

TEST_F(URIRoutingTableTest, TheLongestPrefixWins) {
    add("A", "/root");
    add("B", "/root/cimv2");
    add("C", "/root/cimv2/test");
    EXPECT_EQ(providerOf("/root/CIM_Foo.wsdl"), "A");
    EXPECT_EQ(providerOf("/root/cimv2/CIM_Foo.wsdl"), "B");
    EXPECT_EQ(providerOf("/root/cimv2/test/CIM_Foo.wsdl"), "C");
    EXPECT_EQ(providerOf("/root/cimv2/tests/CIM_Foo.wsdl"), "B");
    EXPECT_EQ(providerOf("/root/other/CIM_Foo.wsdl"), "A");
}

TEST_F(URIRoutingTableTest, IgnoresCase) {
    add("A", "/Root/CIMv2");
    EXPECT_EQ(providerOf("/rOOT/cimV2/CIM_Foo.wsdl"), "A");
    EXPECT_EQ(table_.add("B", "/ROOT/cimv2"), Outcome::kTaken);
}

TEST_F(URIRoutingTableTest, APathOfOneSegmentBelongsToTheProviderOfInterop) {
    add("A", "/root/cimv2");
    EXPECT_EQ(providerOf("/CIM_Foo.wsdl"), "");
    add("I", "/Interop");
    EXPECT_EQ(providerOf("/CIM_Foo.wsdl"), "I");
    EXPECT_EQ(providerOf("/interop"), "I");
    EXPECT_EQ(providerOf("/interop/CIM_Foo.wsdl"), "I");
    EXPECT_EQ(providerOf("/one/two"), "");
    EXPECT_EQ(providerOf("/one/"), "");
    EXPECT_EQ(providerOf("/"), "");
}

TEST_F(URIRoutingTableTest, APathOfOneSegmentThatIsRegisteredBelongsToItsProvider) {
    add("I", "/interop");
    add("A", "/status");
    EXPECT_EQ(providerOf("/status"), "A");
    EXPECT_EQ(providerOf("/statuses"), "I");
}

TEST_F(URIRoutingTableTest, TheRootTakesWhatNobodyElseTakes) {
    add("R", "/");
    EXPECT_EQ(providerOf("/"), "R");
    EXPECT_EQ(providerOf("/CIM_Foo.wsdl"), "R");
    EXPECT_EQ(providerOf("/root/cimv2/CIM_Foo.wsdl"), "R");
    add("I", "/interop");
    EXPECT_EQ(providerOf("/CIM_Foo.wsdl"), "I");
    EXPECT_EQ(providerOf("/root/cimv2/CIM_Foo.wsdl"), "R");
}

TEST_F(URIRoutingTableTest, PathsThatDoNotBeginWithASlashBelongToNobody) {
    add("R", "/");
    EXPECT_EQ(providerOf(""), "");
    EXPECT_EQ(providerOf("root/cimv2"), "");
    EXPECT_EQ(providerOf("*"), "");
}

TEST_F(URIRoutingTableTest, SlashesAtTheEndOfAUriMeanNothing) {
    add("A", "/root/cimv2//");
    EXPECT_EQ(providerOf("/root/cimv2"), "A");
    EXPECT_EQ(table_.add("B", "/root/cimv2"), Outcome::kTaken);
}

TEST_F(URIRoutingTableTest, RegisteringTwiceIsHarmlessForTheSameProvider) {
    add("A", "/root");
    add("A", "/root");
    add("A", "/root/");
    EXPECT_EQ(providerOf("/root"), "A");
}

TEST_F(URIRoutingTableTest, RegisteringTwiceIsRefusedForAnotherProvider) {
    add("A", "/root");
    EXPECT_EQ(table_.add("B", "/root"), Outcome::kTaken);
    EXPECT_EQ(table_.add("a", "/root"), Outcome::kTaken);
    EXPECT_EQ(providerOf("/root"), "A");
}

TEST_F(URIRoutingTableTest, TellsWhoHasRegisteredAUriItself) {
    add("A", "/Root/");
    add("R", "/");
    const auto registered = [&](const char* uri) {
        const TSKString* provider = table_.findRegistered(uri);
        return std::string(provider == nullptr ? "" : provider->data());
    };
    EXPECT_EQ(registered("/root"), "A");
    EXPECT_EQ(registered("/ROOT//"), "A");
    EXPECT_EQ(registered("/"), "R");
    EXPECT_EQ(registered("/root/cimv2"), "");
    EXPECT_EQ(registered("root"), "");
    EXPECT_EQ(registered(""), "");
}

TEST_F(URIRoutingTableTest, RefusesUrisWithoutALeadingSlash) {
    EXPECT_EQ(table_.add("A", ""), Outcome::kMalformed);
    EXPECT_EQ(table_.add("A", "root"), Outcome::kMalformed);
    EXPECT_EQ(table_.add("A", " /root"), Outcome::kMalformed);
}

TEST_F(URIRoutingTableTest, RemovingAProviderRemovesAllOfItsUris) {
    add("A", "/a");
    add("B", "/b");
    add("A", "/b/a");
    table_.removeProvider("A");
    table_.removeProvider("Nobody");
    EXPECT_EQ(providerOf("/a"), "");
    EXPECT_EQ(providerOf("/b/a"), "B");
    add("B", "/a");
}

TEST_F(URIRoutingTableTest, HandlesPathsOfAnyLengthAndBytes) {
    add("A", "/root");
    EXPECT_EQ(providerOf(TSKString(std::string("/root") + std::string(100'000, '/'))), "A");
    EXPECT_EQ(providerOf(TSKString("/root\0/x", 8)), "");
    EXPECT_EQ(providerOf("/root/\xff\xfe"), "A");
}

}  // namespace

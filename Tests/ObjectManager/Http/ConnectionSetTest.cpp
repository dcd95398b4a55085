#include <boost/asio/io_context.hpp>
#include <cstddef>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

#include "ObjectManager/Http/Connection.h"
#include "ObjectManager/Http/ConnectionSet.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/WaitUntil.h"

namespace {

using boost::asio::ip::tcp;
using Http::ClientAddress;
using Http::ClientKey;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

const ClientKey kClient = ClientKey::of(ClientAddress::parse("192.0.2.1").value());
const ClientKey kOther = ClientKey::of(ClientAddress::parse("192.0.2.2").value());

class ConnectionSetTest : public testing::Test {
  protected:
    std::shared_ptr<Http::Connection> makeConnection() {
        return std::make_shared<Http::Connection>(context_, tcp::socket(ioContext_),
                                                  tcp::endpoint());
    }

    Http::ConnectionSet set_;
    TeskProviderPluginManager manager_;
    Http::Dispatcher dispatcher_{manager_};
    Http::WorkerPool workers_{1, {}};
    Http::Options options_;
    Http::ResponseMemory memory_{1000};
    Http::ConnectionContext context_{.options = options_,
                                     .dispatcher = dispatcher_,
                                     .workers = workers_,
                                     .connections = set_,
                                     .memory = memory_};
    boost::asio::io_context ioContext_;
};

TEST_F(ConnectionSetTest, ContainsWhatIsAddedUntilItIsRemoved) {
    const auto first = makeConnection();
    const auto second = makeConnection();
    EXPECT_EQ(set_.size(), 0U);
    set_.add(*first, kClient);
    set_.add(*second, kClient);
    EXPECT_EQ(set_.size(), 2U);
    EXPECT_EQ(set_.all().size(), 2U);
    set_.remove(*first);
    set_.remove(*first);
    EXPECT_EQ(set_.all(), std::vector({second}));
    set_.remove(*second);
    EXPECT_EQ(set_.size(), 0U);
}

TEST_F(ConnectionSetTest, AConnectionThatEndsRemovesItself) {
    {
        const auto connection = makeConnection();
        set_.add(*connection, kClient);
    }
    EXPECT_EQ(set_.size(), 0U);
}

TEST_F(ConnectionSetTest, WaitsUntilTheLastOneLingersOrIsRemoved) {
    EXPECT_TRUE(set_.waitUntilServed(steady_clock::now()));
    const auto first = makeConnection();
    const auto second = makeConnection();
    set_.add(*first, kClient);
    set_.add(*second, kClient);
    EXPECT_FALSE(set_.waitUntilServed(steady_clock::now()));
    EXPECT_FALSE(set_.waitUntilServed(steady_clock::now() + milliseconds(1)));
    std::thread ending([&] {
        set_.remove(*first);
        set_.beginLingering(*second);
    });
    EXPECT_TRUE(set_.waitUntilServed(steady_clock::now() + kPatience));
    ending.join();
    set_.add(*first, kClient);
    set_.endReading(*first);
    EXPECT_FALSE(set_.waitUntilServed(steady_clock::now()));
    set_.remove(*first);
    EXPECT_TRUE(set_.waitUntilServed(steady_clock::now()));
}

TEST_F(ConnectionSetTest, KnowsWhichConnectionHasLingeredForLongest) {
    const auto first = makeConnection();
    const auto second = makeConnection();
    set_.beginLingering(*first);
    EXPECT_EQ(set_.oldestLingering(), nullptr);
    set_.add(*first, kClient);
    set_.add(*second, kClient);
    EXPECT_EQ(set_.oldestLingering(), nullptr);
    set_.beginLingering(*second);
    set_.beginLingering(*first);
    set_.beginLingering(*second);
    EXPECT_EQ(set_.oldestLingering(), second);
    EXPECT_EQ(set_.oldestReading(), nullptr);
    EXPECT_EQ(set_.size(), 2U);
    set_.endReading(*second);
    set_.remove(*second);
    EXPECT_EQ(set_.oldestLingering(), first);
    set_.remove(*first);
    EXPECT_EQ(set_.oldestLingering(), nullptr);
}

TEST_F(ConnectionSetTest, ALingeringConnectionDoesNotCountForItsClient) {
    const auto first = makeConnection();
    const auto second = makeConnection();
    set_.add(*first, kClient);
    set_.add(*second, kClient);
    set_.beginLingering(*first);
    EXPECT_EQ(set_.sizeOf(kClient), 1U);
    set_.remove(*first);
    EXPECT_EQ(set_.sizeOf(kClient), 1U);
    set_.beginLingering(*second);
    EXPECT_EQ(set_.sizeOf(kClient), 0U);
}

TEST_F(ConnectionSetTest, CountsTheConnectionsOfEachClient) {
    const auto first = makeConnection();
    const auto second = makeConnection();
    const auto third = makeConnection();
    set_.add(*first, kClient);
    set_.add(*second, kOther);
    set_.add(*third, kClient);
    EXPECT_EQ(set_.sizeOf(kClient), 2U);
    EXPECT_EQ(set_.sizeOf(kOther), 1U);
    set_.endReading(*first);
    EXPECT_EQ(set_.sizeOf(kClient), 2U);
    set_.remove(*first);
    set_.remove(*first);
    EXPECT_EQ(set_.sizeOf(kClient), 1U);
    set_.remove(*third);
    EXPECT_EQ(set_.sizeOf(kClient), 0U);
    EXPECT_EQ(set_.sizeOf(kOther), 1U);
}

TEST_F(ConnectionSetTest, KnowsTheOldestConnectionThatReads) {
    EXPECT_EQ(set_.oldestReading(), nullptr);
    const auto first = makeConnection();
    const auto second = makeConnection();
    const auto third = makeConnection();
    for (const auto& connection : {first, second, third})
        set_.add(*connection, kClient);
    EXPECT_EQ(set_.oldestReading(), first);
    set_.endReading(*first);
    set_.endReading(*first);
    EXPECT_EQ(set_.oldestReading(), second);
    set_.remove(*second);
    EXPECT_EQ(set_.oldestReading(), third);
    set_.endReading(*third);
    EXPECT_EQ(set_.oldestReading(), nullptr);
    EXPECT_EQ(set_.size(), 2U);
}

TEST_F(ConnectionSetTest, WaitsUntilNoneReads) {
    EXPECT_TRUE(set_.waitUntilNoneReads(steady_clock::now()));
    const auto first = makeConnection();
    const auto second = makeConnection();
    set_.add(*first, kClient);
    set_.add(*second, kClient);
    EXPECT_FALSE(set_.waitUntilNoneReads(steady_clock::now() + milliseconds(1)));
    std::thread reading([&] {
        set_.endReading(*first);
        set_.remove(*second);
    });
    EXPECT_TRUE(set_.waitUntilNoneReads(steady_clock::now() + kPatience));
    reading.join();
    EXPECT_EQ(set_.size(), 1U);
}

TEST_F(ConnectionSetTest, AFailedAllocationAddsNothing) {
    const auto connection = makeConnection();
    const std::size_t failures =
        AllocationProbe::failEachAllocation([&] { set_.add(*connection, kClient); },
                                            [&] {
                                                EXPECT_EQ(set_.size(), 0U);
                                                EXPECT_EQ(set_.sizeOf(kClient), 0U);
                                                EXPECT_EQ(set_.oldestReading(), nullptr);
                                            });
    EXPECT_GT(failures, 2U);
    EXPECT_EQ(set_.oldestReading(), connection);
}

}  // namespace

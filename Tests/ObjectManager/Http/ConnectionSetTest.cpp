#include <boost/asio/io_context.hpp>
#include <chrono>
#include <gtest/gtest.h>
#include <memory>
#include <thread>
#include <vector>

#include "ObjectManager/Http/Connection.h"
#include "ObjectManager/Http/ConnectionSet.h"
#include "Platform/ProviderFramework/TeskProviderPluginManager.h"

namespace {

using Http::Connection;
using std::chrono::steady_clock;

class ConnectionSetTest : public testing::Test {
  protected:
    std::shared_ptr<Connection> makeConnection() {
        return std::make_shared<Connection>(context_, boost::asio::ip::tcp::socket(ioContext_),
                                            boost::asio::ip::tcp::endpoint());
    }

    Http::ConnectionSet set_;
    TeskProviderPluginManager manager_;
    Http::Dispatcher dispatcher_{manager_};
    Http::WorkerPool workers_{1, 1};
    Http::ServerOptions options_;
    Http::ConnectionContext context_{
        .options = options_, .dispatcher = dispatcher_, .workers = workers_, .connections = set_};
    boost::asio::io_context ioContext_;
};

TEST_F(ConnectionSetTest, HoldsWhatIsAddedUntilItIsRemoved) {
    const auto first = makeConnection();
    const auto second = makeConnection();
    EXPECT_EQ(set_.size(), 0U);
    set_.add(*first);
    set_.add(*second);
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
        set_.add(*connection);
    }
    EXPECT_EQ(set_.size(), 0U);
}

TEST_F(ConnectionSetTest, WaitsUntilTheLastOneIsRemoved) {
    EXPECT_TRUE(set_.waitUntilEmpty(steady_clock::now()));
    const auto first = makeConnection();
    const auto second = makeConnection();
    set_.add(*first);
    set_.add(*second);
    EXPECT_FALSE(set_.waitUntilEmpty(steady_clock::now()));
    EXPECT_FALSE(set_.waitUntilEmpty(steady_clock::now() + std::chrono::milliseconds(1)));
    std::thread removing([&] {
        set_.remove(*first);
        set_.remove(*second);
    });
    EXPECT_TRUE(set_.waitUntilEmpty(steady_clock::now() + std::chrono::seconds(30)));
    removing.join();
}

}  // namespace

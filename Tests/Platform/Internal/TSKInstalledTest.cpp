#include <gtest/gtest.h>
#include <new>
#include <string>

#include "Platform/Internal/TSKInstalled.h"
#include "Tests/Support/Threads.h"

namespace {

TEST(TSKInstalled, IsEmptyUntilSomethingIsInstalled) {
    TSKInstalled<std::string> installed;
    EXPECT_EQ(installed.get(), nullptr);
    const auto first = TSKSmrPtr<std::string>::make("first");
    EXPECT_EQ(installed.install(first), nullptr);
    EXPECT_EQ(installed.get(), first);
    EXPECT_EQ(installed.install(nullptr), first);
    EXPECT_EQ(installed.get(), nullptr);
}

TEST(TSKInstalled, AServiceThatWasGotStaysAliveWhenAnotherIsInstalled) {
    TSKInstalled<std::string> installed;
    installed.install(TSKSmrPtr<std::string>::make("old"));
    const TSKSmrPtr<std::string> held = installed.get();
    installed.install(TSKSmrPtr<std::string>::make("new"));
    EXPECT_EQ(*held, "old");
    EXPECT_EQ(held.owners(), 1);
    EXPECT_EQ(*installed.get(), "new");
    installed.install(nullptr);
}

TEST(TSKInstalled, MayBeReplacedWhileThreadsUseIt) {
    TSKInstalled<std::string> installed;
    installed.install(TSKSmrPtr<std::string>::make("service"));
    runOnThreads(8, [&](int index) {
        for (int round = 0; round < 200; ++round) {
            if (index == 0)
                installed.install(TSKSmrPtr<std::string>::make("service"));
            else
                EXPECT_EQ(*installed.get(), "service");
        }
    });
    installed.install(nullptr);
}

TEST(TSKInstalled, ItsEndReleasesNothing) {
    const auto service = TSKSmrPtr<std::string>::make("service");
    alignas(TSKInstalled<std::string>) char memory[sizeof(TSKInstalled<std::string>)];
    auto* const installed = new (memory) TSKInstalled<std::string>;
    installed->install(service);
    installed->~TSKInstalled();
    EXPECT_EQ(service.owners(), 2);
    EXPECT_EQ(*installed->get(), "service");
    installed->install(nullptr);
}

}  // namespace

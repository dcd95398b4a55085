#include <csignal>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

#include "ObjectManager/Commands/StopSignals.h"

namespace {

using Commands::StopSignals;

int lastHandled = 0;

extern "C" void rememberHandled(int signal) {
    lastHandled = signal;
}

TEST(StopSignals, NoneIsReceivedAtFirst) {
    const StopSignals signals;
    EXPECT_EQ(signals.received(), 0);
}

TEST(StopSignals, TheFirstOneIsRemembered) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const StopSignals signals;
        std::raise(signal);
        EXPECT_EQ(signals.received(), signal);
        std::raise(SIGINT);
        EXPECT_EQ(signals.received(), signal);
    }
}

TEST(StopSignals, AnyThreadFindsWhatCameToTheProcess) {
    const StopSignals signals;
    kill(getpid(), SIGTERM);
    int found = 0;
    std::thread([&] { found = signals.received(); }).join();
    EXPECT_EQ(found, SIGTERM);
    EXPECT_EQ(signals.received(), SIGTERM);
}

TEST(StopSignals, WhatWasThereBeforeIsThereAgain) {
    (void)std::signal(SIGINT, rememberHandled);
    {
        const StopSignals signals;
        std::raise(SIGINT);
    }
    EXPECT_EQ(lastHandled, 0);
    std::raise(SIGINT);
    EXPECT_EQ(lastHandled, SIGINT);
    (void)std::signal(SIGINT, SIG_DFL);
}

TEST(StopSignals, WhatIsIgnoredStaysIgnored) {
    (void)std::signal(SIGHUP, SIG_IGN);
    const StopSignals signals;
    std::raise(SIGHUP);
    EXPECT_EQ(signals.received(), 0);
    (void)std::signal(SIGHUP, SIG_DFL);
}

TEST(StopSignals, HaveNamesAndExitStatuses) {
    EXPECT_EQ(StopSignals::nameOf(SIGINT), "SIGINT");
    EXPECT_EQ(StopSignals::nameOf(SIGTERM), "SIGTERM");
    EXPECT_EQ(StopSignals::nameOf(SIGHUP), "SIGHUP");
    EXPECT_EQ(StopSignals::nameOf(SIGUSR1), "signal 10");
    EXPECT_EQ(StopSignals::exitStatus(SIGINT), 130);
    EXPECT_EQ(StopSignals::exitStatus(SIGTERM), 143);
}

}  // namespace

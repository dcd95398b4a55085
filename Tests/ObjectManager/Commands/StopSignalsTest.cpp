#include <csignal>
#include <gtest/gtest.h>

#include "ObjectManager/Commands/StopSignals.h"

namespace {

using Commands::StopSignals;

extern "C" void doNothing(int /*signal*/) {}

void (*handlerOf(int signal))(int) {
    struct sigaction action = {};
    sigaction(signal, nullptr, &action);
    return action.sa_handler;
}

TEST(StopSignals, NoneIsReceivedAtFirst) {
    const StopSignals signals;
    EXPECT_EQ(StopSignals::received(), 0);
}

TEST(StopSignals, TheFirstOneIsRemembered) {
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const StopSignals signals;
        std::raise(signal);
        std::raise(SIGTERM);
        EXPECT_EQ(StopSignals::received(), signal);
    }
}

TEST(StopSignals, WhatWasThereBeforeIsThereAgain) {
    (void)std::signal(SIGINT, doNothing);
    {
        const StopSignals signals;
        EXPECT_NE(handlerOf(SIGINT), doNothing);
    }
    EXPECT_EQ(handlerOf(SIGINT), doNothing);
    EXPECT_EQ(handlerOf(SIGTERM), SIG_DFL);
    (void)std::signal(SIGINT, SIG_DFL);
}

TEST(StopSignals, WhatIsIgnoredStaysIgnored) {
    (void)std::signal(SIGHUP, SIG_IGN);
    const StopSignals signals;
    std::raise(SIGHUP);
    EXPECT_EQ(StopSignals::received(), 0);
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

#include <chrono>
#include <csignal>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

#include "ObjectManager/Base/Signals.h"

namespace {

using Base::SignalQueue;
using Base::StopSignals;

int lastHandled = 0;

extern "C" void rememberHandled(int signal) {
    lastHandled = signal;
}

// Handles a signal by remembering it, while this lives.
class Handled {
  public:
    explicit Handled(int signal) : signal_(signal) {
        lastHandled = 0;
        (void)std::signal(signal_, rememberHandled);
    }
    Handled(const Handled&) = delete;
    Handled& operator=(const Handled&) = delete;
    ~Handled() { (void)std::signal(signal_, SIG_DFL); }

  private:
    int signal_;
};

TEST(SignalQueue, HandsSignalsOutOneByOne) {
    const SignalQueue queue({SIGUSR1, SIGUSR2});
    EXPECT_EQ(queue.waitFor(std::chrono::seconds(0)), 0);
    kill(getpid(), SIGUSR2);
    EXPECT_EQ(queue.waitFor(std::chrono::seconds(60)), SIGUSR2);
    kill(getpid(), SIGUSR1);
    EXPECT_EQ(queue.waitFor(std::chrono::seconds(60)), SIGUSR1);
    EXPECT_EQ(queue.waitFor(std::chrono::seconds(0)), 0);
}

TEST(SignalQueue, AThreadThatWaitsCanBeWoken) {
    const SignalQueue queue({SIGUSR1});
    SignalQueue::wake();
    SignalQueue::wake();
    EXPECT_EQ(queue.waitFor(std::chrono::hours(1)), 0);
    std::thread waker(&SignalQueue::wake);
    EXPECT_EQ(queue.waitFor(std::chrono::hours(1)), 0);
    waker.join();
}

TEST(SignalQueue, ASignalThatStillWaitsHasItsEffectAtTheEnd) {
    const Handled handled(SIGUSR1);
    {
        const SignalQueue queue({SIGUSR1});
        std::raise(SIGUSR1);
        EXPECT_EQ(lastHandled, 0);
    }
    EXPECT_EQ(lastHandled, SIGUSR1);
}

TEST(SignalQueue, LetsSignalsThroughOnRequest) {
    const Handled handled(SIGUSR1);
    const SignalQueue queue({SIGUSR1});
    queue.letThrough();
    std::raise(SIGUSR1);
    EXPECT_EQ(lastHandled, SIGUSR1);
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

TEST(StopSignals, EveryThreadFindsTheSignalOfTheProcess) {
    const StopSignals signals;
    kill(getpid(), SIGTERM);
    int found = 0;
    std::thread([&] { found = signals.received(); }).join();
    EXPECT_EQ(found, SIGTERM);
    EXPECT_EQ(signals.received(), SIGTERM);
}

TEST(StopSignals, SignalsHaveTheirUsualEffectAfterwards) {
    const Handled handled(SIGINT);
    {
        const StopSignals signals;
        std::raise(SIGINT);
    }
    EXPECT_EQ(lastHandled, 0);
    std::raise(SIGINT);
    EXPECT_EQ(lastHandled, SIGINT);
}

TEST(StopSignals, AnIgnoredSignalStaysIgnored) {
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

#include <chrono>
#include <cstdio>
#include <gtest/gtest.h>
#include <memory>
#include <string>

#include "ObjectManager/Commands/ProgressLine.h"
#include "Tests/Support/PseudoTerminal.h"
#include "Tests/Support/Threads.h"

namespace {

using Commands::ProgressLine;

constexpr std::chrono::milliseconds kAtOnce(0);
const std::string kEraseLine = "\r\x1B[K";

// What a terminal shows of work of so many steps.
std::string shownOf(int steps, std::chrono::milliseconds delay) {
    PseudoTerminal terminal([=] {
        ProgressLine progress(stderr, 2400, "classes", delay);
        for (int step = 0; step < steps; ++step)
            progress.step();
        return 0;
    });
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    return terminal.shown();
}

TEST(ProgressLine, TellsHowMuchIsDoneAndIsErasedAtTheEnd) {
    EXPECT_EQ(shownOf(1, kAtOnce), kEraseLine + "1 of 2,400 classes" + kEraseLine);
}

TEST(ProgressLine, IsNotShownForShortWork) {
    EXPECT_EQ(shownOf(2400, std::chrono::hours(1)), "");
}

// So that showing it does not slow the work down.
TEST(ProgressLine, IsShownTenTimesASecondAtMost) {
    constexpr std::chrono::milliseconds kBetweenLines(100);
    const auto start = std::chrono::steady_clock::now();
    const std::string shown = shownOf(100'000, kAtOnce);
    const auto elapsed = std::chrono::steady_clock::now() - start;
    long lines = 0;
    for (auto at = shown.find("classes"); at != std::string::npos;
         at = shown.find("classes", at + 1))
        ++lines;
    EXPECT_GE(lines, 1);
    EXPECT_LE(lines, elapsed / kBetweenLines + 1);
}

TEST(ProgressLine, IsNotShownElsewhere) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
    ASSERT_NE(file, nullptr);
    {
        ProgressLine progress(file.get(), 100, "classes", kAtOnce);
        progress.step();
    }
    EXPECT_EQ(std::ftell(file.get()), 0);
}

TEST(ProgressLine, IsSteppedByManyThreadsAtOnce) {
    PseudoTerminal terminal([] {
        ProgressLine progress(stderr, 4000, "classes", kAtOnce);
        runOnThreads(4, [&](int) {
            for (int step = 0; step < 1000; ++step)
                progress.step();
        });
        return 0;
    });
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_TRUE(terminal.shown().ends_with(kEraseLine)) << terminal.shown();
}

}  // namespace

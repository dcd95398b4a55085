#include <chrono>
#include <cstdio>
#include <gtest/gtest.h>
#include <limits>
#include <memory>
#include <string>

#include "ObjectManager/Commands/ProgressBar.h"
#include "Tests/Support/PseudoTerminal.h"
#include "Tests/Support/Threads.h"

namespace {

using Commands::ProgressBar;

constexpr const char* kStartOfClearedLine = "\r\x1B[K";

std::string line(std::size_t done, std::size_t total, double seconds) {
    return ProgressBar::line(done, total, "classes", std::chrono::duration<double>(seconds));
}

TEST(ProgressBar, ShowsHowFarHowFastAndHowLong) {
    EXPECT_EQ(line(0, 2400, 0), "[                              ] 0/2,400 classes");
    EXPECT_EQ(line(0, 2400, 5), "[                              ] 0/2,400 classes");
    EXPECT_EQ(line(79, 2400, 0), "[                              ] 79/2,400 classes");
    EXPECT_EQ(line(80, 2400, 0.5),
              "[#                             ] 80/2,400 classes, 160/s, 15 s left");
    EXPECT_EQ(line(1200, 2400, 2),
              "[###############               ] 1,200/2,400 classes, 600/s, 2 s left");
    EXPECT_EQ(line(2399, 2400, 2),
              "[############################# ] 2,399/2,400 classes, 1,199/s, 0 s left");
    EXPECT_EQ(line(2400, 2400, 2),
              "[##############################] 2,400/2,400 classes, 1,200/s, 0 s left");
}

TEST(ProgressBar, MakesSomethingOfOddNumbers) {
    EXPECT_EQ(line(0, 0, 0), "[##############################] 0/0 classes");
    EXPECT_EQ(line(5, 2, 1), "[##############################] 5/2 classes, 5/s, 0 s left");
    EXPECT_EQ(line(1, 3, 10), "[##########                    ] 1/3 classes, 0/s, 20 s left");
}

TEST(ProgressBar, ShowsALineOnATerminalThatIsGoneAfterwards) {
    PseudoTerminal terminal([] {
        ProgressBar bar(stderr, 2, "classes");
        bar.step();
        return 0;
    });
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    const std::string& shown = terminal.shown();
    EXPECT_TRUE(shown.starts_with(kStartOfClearedLine +
                                  std::string("[###############               ] 1/2 classes, ")))
        << shown;
    EXPECT_TRUE(shown.ends_with(std::string(" s left") + kStartOfClearedLine)) << shown;
    EXPECT_EQ(shown.find('\n'), std::string::npos);
}

// Twenty lines a second at most, so that showing them does not slow the work down.
TEST(ProgressBar, ShowsOnlySomeOfManySteps) {
    constexpr std::chrono::milliseconds kBetweenLines(50);
    constexpr int kSteps = 100'000;
    const auto start = std::chrono::steady_clock::now();
    PseudoTerminal terminal([] {
        ProgressBar bar(stderr, kSteps, "classes");
        for (int step = 0; step < kSteps; ++step)
            bar.step();
        return 0;
    });
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    const auto elapsed = std::chrono::steady_clock::now() - start;
    long lines = 0;
    const std::string& shown = terminal.shown();
    for (auto at = shown.find("classes"); at != std::string::npos;
         at = shown.find("classes", at + 1))
        ++lines;
    EXPECT_GE(lines, 1);
    EXPECT_LE(lines, elapsed / kBetweenLines + 1);
}

TEST(ProgressBar, ShowsNothingElsewhere) {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::tmpfile(), &std::fclose);
    ASSERT_NE(file, nullptr);
    {
        ProgressBar bar(file.get(), 100, "classes");
        runOnThreads(4, [&](int) {
            for (int step = 0; step < 25; ++step)
                bar.step();
        });
    }
    EXPECT_EQ(std::ftell(file.get()), 0);
}

TEST(ProgressBar, IsSteppedByManyThreadsAtOnce) {
    PseudoTerminal terminal([] {
        ProgressBar bar(stderr, 4000, "classes");
        runOnThreads(4, [&](int) {
            for (int step = 0; step < 1000; ++step)
                bar.step();
        });
        return 0;
    });
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_TRUE(terminal.shown().ends_with(kStartOfClearedLine)) << terminal.shown();
}

}  // namespace

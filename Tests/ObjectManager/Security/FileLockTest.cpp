#include <atomic>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <vector>

#include "ObjectManager/Security/FileLock.h"
#include "Tests/ObjectManager/Security/Failures.h"
#include "Tests/ObjectManager/Security/Files.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/Threads.h"

namespace {

using Security::FileLock;

TEST(FileLock, IsAFileBesideThatGoesWithIt) {
    const TemporaryFolder folder;
    {
        const FileLock lock(folder / "users");
        EXPECT_EQ(namesIn(folder), std::vector<std::string>{"users.lock"});
        EXPECT_EQ(modeOf(folder / "users.lock"), 0600U);
    }
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{});
}

TEST(FileLock, OnlyOneIsHeldAtATime) {
    const TemporaryFolder folder;
    std::atomic<int> holders = 0;
    std::atomic<int> overlaps = 0;
    int plainCount = 0;  // which ThreadSanitizer watches too
    runOnThreads(8, [&](int) {
        for (int turn = 0; turn < 100; ++turn) {
            const FileLock lock(folder / "users");
            overlaps += ++holders == 1 ? 0 : 1;
            std::this_thread::yield();
            ++plainCount;
            --holders;
        }
    });
    EXPECT_EQ(overlaps, 0);
    EXPECT_EQ(plainCount, 800);
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{});
}

TEST(FileLock, LocksOfDifferentFilesDoNotWait) {
    const TemporaryFolder folder;
    const FileLock first(folder / "a");
    const FileLock second(folder / "b");
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"a.lock", "b.lock"}));
}

TEST(FileLock, AFileThatStayedBehindKeepsNobodyOut) {
    const TemporaryFolder folder;
    folder.write("users.lock", "");
    { const FileLock lock(folder / "users"); }
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{});
}

TEST(FileLock, SaysWhyItCannotBeMade) {
    const TemporaryFolder folder;
    const std::string path = folder / "missing/users";
    EXPECT_EQ(failureOf([&] { const FileLock lock(path); }),
              path + ".lock: cannot be locked: No such file or directory");
}

TEST(FileLock, DoesNotFollowALink) {
    const TemporaryFolder folder;
    const std::string path = folder / "users";
    std::filesystem::create_symlink("elsewhere", path + ".lock");
    EXPECT_EQ(failureOf([&] { const FileLock lock(path); }),
              path + ".lock: cannot be locked: Too many levels of symbolic links");
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"users.lock"});
}

}  // namespace

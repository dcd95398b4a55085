// The log in a file, which those who keep logs for a while move away.

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/ObjectManager/Security/Files.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/WaitUntil.h"

namespace {

class ServiceLogFile : public RunningService {
  protected:
    void SetUp() override {
        logKeys_ = "file = \"log\"\n";
        start();
    }

    // The lines of the file that hold one of the service's own words, without the warning that a
    // test which root runs gets.
    [[nodiscard]] Lines linesOf(const char* file) const {
        const std::regex own("[-0-9T:.]+Z (.* tesk: (?!The process runs as root).*)");
        Lines lines;
        std::istringstream stream(contentOfFile(directory_ / file));
        std::smatch match;
        for (std::string line; std::getline(stream, line);) {
            if (std::regex_match(line, match, own))
                lines.push_back(match[1]);
        }
        return lines;
    }

    void waitForLines(const char* file, const Lines& lines) const {
        (void)waitUntil(
            [&] { return std::filesystem::exists(directory_ / file) && linesOf(file) == lines; });
        EXPECT_EQ(linesOf(file), lines);
    }
};

TEST_F(ServiceLogFile, IsOpenedAnewAfterItWasMovedAway) {
    process().signal(SIGHUP);
    waitForLines("log", {"information tesk: Reloaded: 2 classes in 1 namespace"});
    std::filesystem::rename(directory_ / "log", directory_ / "log.1");
    process().signal(SIGHUP);
    waitForLines("log", {"information tesk: Reloaded: 2 classes in 1 namespace"});
    process().signal(SIGTERM);
    EXPECT_EQ(process().wait(), 0);
    EXPECT_EQ(linesOf("log.1"), Lines{"information tesk: Reloaded: 2 classes in 1 namespace"});
    EXPECT_EQ(linesOf("log"), (Lines{"information tesk: Reloaded: 2 classes in 1 namespace",
                                     "information tesk: Stopping"}));
    EXPECT_EQ(process().log(), "");
}

TEST_F(ServiceLogFile, GoesOnWhereItIsWhenItCannotBeOpenedAnew) {
    std::filesystem::rename(directory_ / "log", directory_ / "log.1");
    std::filesystem::create_directory(directory_ / "log");
    process().signal(SIGHUP);
    waitForLines("log.1", {"error tesk: The log goes on as before: the log file " +
                               (directory_ / "log").string() + " cannot be written: Is a directory",
                           "information tesk: Reloaded: 2 classes in 1 namespace"});
}

TEST_F(ServiceLogFile, HoldsWhatKeepsAReloadFromWorking) {
    const std::string file = directory_.write("test.mof", "class TST_One { x };");
    process().signal(SIGHUP);
    waitForLines(
        "log", {"error tesk: " + file + ":1:19: error: found \"}\", expected \"ref\"",
                "error tesk: class TST_One { x };", "error tesk:                   ^",
                "error tesk: Not reloaded, the service goes on as before: the classes have errors "
                "and are not used"});
    EXPECT_EQ(process().log(), "");
}

}  // namespace

#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "ObjectManager/Base/LogFile.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/ResourceLimit.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Threads.h"

namespace {

using Base::LogFile;

// Why the file cannot be opened; empty if it can.
std::string failureOf(const std::string& path) {
    try {
        const LogFile file(path);
        return "";
    } catch (const TeskBaseException& error) {
        return error.getMessage().data();
    }
}

std::string refused(const std::string& path, const std::string& reason) {
    return "the log file " + path + " cannot be written: " + reason;
}

// Standard error, in a pipe: the limit of a file's size would hold for a file that takes it, too.
class CapturedErrors {
  public:
    CapturedErrors() : before_(dup(STDERR_FILENO)) {
        EXPECT_EQ(pipe2(ends_, O_CLOEXEC | O_NONBLOCK), 0);
        dup2(ends_[1], STDERR_FILENO);
    }
    CapturedErrors(const CapturedErrors&) = delete;
    CapturedErrors& operator=(const CapturedErrors&) = delete;
    ~CapturedErrors() {
        dup2(before_, STDERR_FILENO);
        for (const int descriptor : {before_, ends_[0], ends_[1]})
            close(descriptor);
    }

    // What has come since the last call.
    [[nodiscard]] std::string text() const {
        char bytes[4096];
        const ssize_t count = read(ends_[0], bytes, sizeof bytes);
        return {bytes, static_cast<std::size_t>(std::max<ssize_t>(count, 0))};
    }

  private:
    int before_;
    int ends_[2] = {-1, -1};
};

class LogFileTest : public testing::Test {
  protected:
    [[nodiscard]] std::string content() const { return contentOfFile(path_); }

    const TemporaryDirectory directory_;
    const std::string path_ = directory_ / "log";
};

TEST_F(LogFileTest, IsMadeForItsOwnerAndReadableByItsGroup) {
    const mode_t before = umask(0);
    LogFile file(path_);
    umask(before);
    EXPECT_EQ(std::filesystem::status(path_).permissions(), std::filesystem::perms(0640));
    EXPECT_EQ(file.write("first\n"), 0U);
    EXPECT_EQ(content(), "first\n");
}

TEST_F(LogFileTest, KeepsWhatAFileHasAndItsPermissions) {
    directory_.write("log", "earlier\n");
    std::filesystem::permissions(path_, std::filesystem::perms(0600));
    LogFile file(path_);
    EXPECT_EQ(file.write("now\n"), 0U);
    EXPECT_EQ(content(), "earlier\nnow\n");
    EXPECT_EQ(std::filesystem::status(path_).permissions(), std::filesystem::perms(0600));
}

TEST_F(LogFileTest, PipesDirectoriesAndDevicesAreRefusedAtOnce) {
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    EXPECT_EQ(failureOf(path_), refused(path_, "it is not a regular file"));
    const int reader = open(path_.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    EXPECT_EQ(failureOf(path_), refused(path_, "it is not a regular file"));
    close(reader);
    EXPECT_EQ(failureOf(directory_.path()), refused(directory_.path(), "Is a directory"));
    EXPECT_EQ(failureOf("/dev/full"), refused("/dev/full", "it is not a regular file"));
    EXPECT_EQ(failureOf("/dev/null"), "");
    EXPECT_EQ(failureOf("/dev/stdout"), "");
    EXPECT_EQ(failureOf("/dev/stderr"), "");
}

TEST_F(LogFileTest, StandardOutputMayBeAnything) {
    testing::internal::CaptureStdout();
    LogFile file("/dev/stdout");
    EXPECT_EQ(file.write("a line\n"), 0U);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "a line\n");
}

TEST_F(LogFileTest, IsOpenedAgainByItsName) {
    LogFile file(path_);
    EXPECT_EQ(file.write("first\n"), 0U);
    std::filesystem::rename(path_, directory_ / "log.1");
    EXPECT_EQ(file.write("second\n"), 0U);
    file.reopen();
    EXPECT_EQ(file.write("third\n"), 0U);
    EXPECT_EQ(contentOfFile(directory_ / "log.1"), "first\nsecond\n");
    EXPECT_EQ(content(), "third\n");
}

TEST_F(LogFileTest, StaysWhereItIsWhenItCannotBeOpenedAgain) {
    LogFile file(path_);
    std::filesystem::rename(path_, directory_ / "log.1");
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    EXPECT_THROW(file.reopen(), TeskBaseException);
    EXPECT_EQ(file.write("a line\n"), 0U);
    EXPECT_EQ(contentOfFile(directory_ / "log.1"), "a line\n");
}

TEST_F(LogFileTest, LinesThatDoNotFitOnTheDiskAreCountedAndToldOnce) {
    LogFile file(path_);
    EXPECT_EQ(file.write("first\n"), 0U);
    const CapturedErrors errors;
    {
        const ResourceLimit full(RLIMIT_FSIZE, 10);
        EXPECT_EQ(file.write("cut line\n"), 0U);
        EXPECT_EQ(file.write("lost\n"), 0U);
        EXPECT_EQ(file.write("lost\n"), 0U);
    }
    EXPECT_EQ(errors.text(),
              "tesk: the log file " + path_ +
                  " cannot be written: a line was cut short; its lines are lost until it can\n");
    EXPECT_EQ(file.write("second\n"), 3U);
    EXPECT_EQ(file.write("third\n"), 0U);
    EXPECT_EQ(content(), "first\ncut \nsecond\nthird\n");
}

TEST_F(LogFileTest, IsToldAgainWhenItFailsAgain) {
    LogFile file(path_);
    const CapturedErrors errors;
    for (int round = 0; round < 2; ++round) {
        {
            const ResourceLimit full(RLIMIT_FSIZE, 0);
            EXPECT_EQ(file.write("lost\n"), 0U);
        }
        EXPECT_EQ(errors.text(),
                  "tesk: the log file " + path_ +
                      " cannot be written: File too large; its lines are lost until it can\n");
        EXPECT_EQ(file.write("a line\n"), 1U);
    }
}

TEST_F(LogFileTest, LinesOfSeveralThreadsAreWholeWhileItIsOpenedAgain) {
    LogFile file(path_);
    const std::string line = std::string(100, 'x') + "\n";
    constexpr int kLines = 200;
    runOnThreads(3, [&](int number) {
        for (int count = 0; count < kLines; ++count) {
            if (number == 0)
                file.reopen();
            else
                EXPECT_EQ(file.write(line), 0U);
        }
    });
    std::string expected;
    for (int count = 0; count < 2 * kLines; ++count)
        expected += line;
    EXPECT_EQ(content(), expected);
}

}  // namespace

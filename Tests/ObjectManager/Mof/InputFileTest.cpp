#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <thread>

#include "ObjectManager/Mof/InputFile.h"
#include "Tests/Support/TemporaryFolder.h"

namespace {

using Mof::InputFile;

constexpr std::size_t kNoLimit = 1'000'000;

InputFile opened(const std::string& path) {
    std::optional<InputFile> file = InputFile::openIfThere(path, InputFile::Kind::kAny);
    EXPECT_TRUE(file) << path;
    return std::move(*file);
}

TEST(InputFile, ReadsAllBytes) {
    const TemporaryFolder folder;
    for (const std::size_t length : {0U, 1U, 4095U, 4096U, 4097U, 100000U}) {
        const std::string content(length, 'x');
        EXPECT_EQ(opened(folder.write("a.mof", content)).readAll(kNoLimit), content) << length;
    }
}

TEST(InputFile, ReadsAPipeToItsEnd) {
    const TemporaryFolder folder;
    const std::string path = folder / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string content(10'000, 'x');
    std::thread writer([&] { folder.write("pipe", content); });
    const std::string read = opened(path).readAll(kNoLimit);
    writer.join();
    EXPECT_EQ(read, content);
}

std::error_code failureOfReading(const std::string& path, std::size_t mostBytes) {
    try {
        (void)opened(path).readAll(mostBytes);
    } catch (const std::system_error& error) {
        return error.code();
    }
    return {};
}

TEST(InputFile, ALargerFileThanAllowedIsNotRead) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.mof", std::string(10'000, 'x'));
    EXPECT_EQ(opened(path).readAll(10'000).size(), 10'000U);
    EXPECT_EQ(failureOfReading(path, 9'999), std::errc::file_too_large);
}

TEST(InputFile, AnEndlessDeviceIsNotRead) {
    EXPECT_EQ(failureOfReading("/dev/zero", kNoLimit), std::errc::file_too_large);
}

TEST(InputFile, AFileThatIsNotThereIsNone) {
    const TemporaryFolder folder;
    EXPECT_FALSE(InputFile::openIfThere(folder / "missing", InputFile::Kind::kAny));
    EXPECT_FALSE(
        InputFile::openIfThere(folder.write("a.mof", "") / "below", InputFile::Kind::kAny));
}

TEST(InputFile, WhatCannotBeReadThrows) {
    const TemporaryFolder folder;
    EXPECT_THROW((void)opened(folder.path()).readAll(kNoLimit), std::system_error);
    std::filesystem::create_symlink("loop", folder / "loop");
    EXPECT_THROW((void)InputFile::openIfThere(folder / "loop", InputFile::Kind::kAny),
                 std::system_error);
}

// Which nobody ever writes to.
TEST(InputFile, APipeIsNotWaitedForWhereARegularFileIsWanted) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {pipe, std::string("/dev/null")}) {
        try {
            (void)InputFile::openIfThere(path, InputFile::Kind::kRegular);
            ADD_FAILURE() << path << " is opened";
        } catch (const std::system_error& error) {
            EXPECT_EQ(error.code(), std::errc::not_supported);
        }
    }
    const std::string file = folder.write("a.mof", "x");
    EXPECT_EQ(InputFile::openIfThere(file, InputFile::Kind::kRegular)->readAll(kNoLimit), "x");
}

TEST(InputFile, IsTheSameByEveryPath) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.mof", "");
    std::filesystem::create_symlink("a.mof", folder / "link");
    EXPECT_TRUE(opened(path).identity() == opened(folder / "link").identity());
    EXPECT_FALSE(opened(path).identity() == opened(folder.write("b.mof", "")).identity());
}

}  // namespace

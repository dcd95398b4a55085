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

InputFile opened(const std::string& path) {
    std::optional<InputFile> file = InputFile::openIfThere(path);
    EXPECT_TRUE(file) << path;
    return std::move(*file);
}

TEST(InputFile, ReadsAllBytes) {
    const TemporaryFolder folder;
    for (const std::size_t length : {0U, 1U, 4095U, 4096U, 4097U, 100000U}) {
        const std::string content(length, 'x');
        EXPECT_EQ(opened(folder.write("a.mof", content)).readAll(), content) << length;
    }
}

TEST(InputFile, ReadsAPipeToItsEnd) {
    const TemporaryFolder folder;
    const std::string path = folder / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string content(10'000, 'x');
    std::thread writer([&] { folder.write("pipe", content); });
    const std::string read = opened(path).readAll();
    writer.join();
    EXPECT_EQ(read, content);
}

TEST(InputFile, AFileThatIsNotThereIsNone) {
    const TemporaryFolder folder;
    EXPECT_FALSE(InputFile::openIfThere(folder / "missing"));
    EXPECT_FALSE(InputFile::openIfThere(folder.write("a.mof", "") / "below"));
}

TEST(InputFile, WhatCannotBeReadThrows) {
    const TemporaryFolder folder;
    EXPECT_THROW((void)opened(folder.path()).readAll(), std::system_error);
    std::filesystem::create_symlink("loop", folder / "loop");
    EXPECT_THROW((void)InputFile::openIfThere(folder / "loop"), std::system_error);
}

TEST(InputFile, IsTheSameByEveryPath) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.mof", "");
    std::filesystem::create_symlink("a.mof", folder / "link");
    EXPECT_TRUE(opened(path).identity() == opened(folder / "link").identity());
    EXPECT_FALSE(opened(path).identity() == opened(folder.write("b.mof", "")).identity());
}

}  // namespace

#include <filesystem>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "ObjectManager/Mof/SourceFiles.h"
#include "Tests/Support/MofFolder.h"
#include "Tests/Support/TemporaryFolder.h"

namespace {

using Mof::InputFile;

constexpr std::size_t kNoLimit = 1'000'000;

InputFile opened(const std::string& path) {
    std::optional<InputFile> file = InputFile::openIfExists(path, InputFile::Kind::kAny);
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

std::error_code failureOfReading(const std::string& path, std::size_t maxBytes) {
    try {
        (void)opened(path).readAll(maxBytes);
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

TEST(InputFile, AFileThatDoesNotExistIsNone) {
    const TemporaryFolder folder;
    EXPECT_FALSE(InputFile::openIfExists(folder / "missing", InputFile::Kind::kAny));
    EXPECT_FALSE(
        InputFile::openIfExists(folder.write("a.mof", "") / "below", InputFile::Kind::kAny));
}

TEST(InputFile, WhatCannotBeReadThrows) {
    const TemporaryFolder folder;
    EXPECT_THROW((void)opened(folder.path()).readAll(kNoLimit), std::system_error);
    std::filesystem::create_symlink("loop", folder / "loop");
    EXPECT_THROW((void)InputFile::openIfExists(folder / "loop", InputFile::Kind::kAny),
                 std::system_error);
}

// Nothing ever writes to the pipe.
TEST(InputFile, APipeIsNotWaitedForWhereARegularFileIsWanted) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {pipe, std::string("/dev/null")}) {
        try {
            (void)InputFile::openIfExists(path, InputFile::Kind::kRegular);
            ADD_FAILURE() << path << " is opened";
        } catch (const std::system_error& error) {
            EXPECT_EQ(error.code(), std::errc::not_supported);
        }
    }
    const std::string file = folder.write("a.mof", "x");
    EXPECT_EQ(InputFile::openIfExists(file, InputFile::Kind::kRegular)->readAll(kNoLimit), "x");
}

TEST(InputFile, IsTheSameByEveryPath) {
    const TemporaryFolder folder;
    const std::string path = folder.write("a.mof", "");
    std::filesystem::create_symlink("a.mof", folder / "link");
    EXPECT_TRUE(opened(path).identity() == opened(folder / "link").identity());
    EXPECT_FALSE(opened(path).identity() == opened(folder.write("b.mof", "")).identity());
}

// The paths of the files in a directory, relative to the test's own.
std::vector<std::string> pathsIn(const MofFolder& folder, const char* name = "") {
    const std::string path = folder.path(name);
    std::vector<std::string> paths;
    for (const Mof::DirectoryFile& file : Mof::mofFilesIn(path))
        paths.push_back(file.path.substr(folder.path("").size()));
    return paths;
}

using Paths = std::vector<std::string>;

TEST(MofFilesIn, ListsTheFilesOfAllDirectoriesBelowInTheOrderOfTheirPaths) {
    const MofFolder folder;
    folder.write("b.mof", "");
    folder.write("a/z.mof", "");
    folder.write("a/y/x.mof", "");
    folder.write("a.mof", "");
    std::filesystem::create_directory(folder.path("empty"));
    EXPECT_EQ(pathsIn(folder), Paths({"a.mof", "a/y/x.mof", "a/z.mof", "b.mof"}));
}

TEST(MofFilesIn, ListsFilesWhoseNameEndsWithMofInAnyCase) {
    const MofFolder folder;
    for (const char* const name :
         {"A.MOF", "b.Mof", "c.mof", "d.mof.txt", "e.mo", "fmof", ".mof", "g.mofs", "h.\xADmof"})
        folder.write(name, "");
    EXPECT_EQ(pathsIn(folder), Paths({"A.MOF", "b.Mof", "c.mof"}));
}

TEST(MofFilesIn, ADirectoryIsNoFileWhateverItsName) {
    const MofFolder folder;
    folder.write("folder.mof/a.mof", "");
    EXPECT_EQ(pathsIn(folder), Paths({"folder.mof/a.mof"}));
}

TEST(MofFilesIn, LinksToFilesAndDirectoriesAreFollowed) {
    const MofFolder folder;
    folder.write("elsewhere/a.mof", "");
    folder.write("elsewhere/below/b.mof", "");
    folder.write("here/c.mof", "");
    std::filesystem::create_symlink("../elsewhere", folder.path("here/link"));
    std::filesystem::create_symlink("../elsewhere/a.mof", folder.path("here/d.mof"));
    std::filesystem::create_symlink("../elsewhere/a.mof", folder.path("here/e"));
    EXPECT_EQ(pathsIn(folder, "here"),
              Paths({"here/c.mof", "here/d.mof", "here/link/a.mof", "here/link/below/b.mof"}));
}

TEST(MofFilesIn, ADirectoryThatIsReachedAgainIsReadOnce) {
    const MofFolder folder;
    folder.write("z/a.mof", "");
    std::filesystem::create_symlink(".", folder.path("self"));
    std::filesystem::create_symlink("..", folder.path("z/up"));
    std::filesystem::create_symlink("z", folder.path("a"));
    EXPECT_EQ(pathsIn(folder), Paths({"z/a.mof"}));
}

TEST(MofFilesIn, TheFirstOfTwoLinksCounts) {
    const MofFolder folder;
    folder.write("elsewhere/a.mof", "");
    folder.write("here/b.mof", "");
    std::filesystem::create_symlink("../elsewhere", folder.path("here/y"));
    std::filesystem::create_symlink("../elsewhere", folder.path("here/x"));
    EXPECT_EQ(pathsIn(folder, "here"), Paths({"here/b.mof", "here/x/a.mof"}));
}

TEST(MofFilesIn, ABrokenLinkIsListedWhereItHasTheName) {
    const MofFolder folder;
    folder.write("b.mof", "");
    std::filesystem::create_symlink("nowhere", folder.path("a.mof"));
    std::filesystem::create_symlink("nowhere", folder.path("c"));
    EXPECT_EQ(pathsIn(folder), Paths({"a.mof", "b.mof"}));
}

TEST(MofFilesIn, AFileHasTheSameIdentityByEveryPath) {
    const MofFolder folder;
    folder.write("a.mof", "");
    folder.write("b.mof", "");
    std::filesystem::create_symlink("a.mof", folder.path("c.mof"));
    const std::vector<Mof::DirectoryFile> files = Mof::mofFilesIn(folder.path(""));
    ASSERT_EQ(files.size(), 3U);
    EXPECT_TRUE(files[0].identity == files[2].identity);
    EXPECT_FALSE(files[0].identity == files[1].identity);
}

TEST(MofFilesIn, ADirectoryThatCannotBeReadIsNamed) {
    const MofFolder folder;
    const std::string missing = folder.path("missing");
    try {
        (void)Mof::mofFilesIn(missing);
        ADD_FAILURE() << "the directory is read";
    } catch (const std::filesystem::filesystem_error& error) {
        EXPECT_EQ(error.path1(), missing);
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
}

}  // namespace

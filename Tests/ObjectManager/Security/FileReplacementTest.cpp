#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

#include "ObjectManager/Security/FileReplacement.h"
#include "Tests/ObjectManager/Security/Failures.h"
#include "Tests/ObjectManager/Security/Files.h"
#include "Tests/Support/FolderContent.h"
#include "Tests/Support/TemporaryFolder.h"

namespace {

using Security::replacePrivateFile;

class FileReplacementTest : public testing::Test {
  protected:
    // What is in the folder: one file with this content.
    void expectOnlyFile(const std::string& content) const {
        EXPECT_EQ(namesIn(folder_), std::vector<std::string>{"users"});
        EXPECT_EQ(contentOfFile(path_), content);
    }

    const TemporaryFolder folder_;
    const std::string path_ = folder_ / "users";
};

TEST_F(FileReplacementTest, MakesAFileForItsOwnerAlone) {
    const mode_t previous = umask(0);
    replacePrivateFile(path_, "one\n");
    umask(previous);
    expectOnlyFile("one\n");
    EXPECT_EQ(modeOf(path_), 0600U);
}

TEST_F(FileReplacementTest, TakesThePlaceOfAFile) {
    folder_.write("users", "a longer text than the new one\n");
    std::filesystem::permissions(path_, std::filesystem::perms::all);
    replacePrivateFile(path_, "new\n");
    expectOnlyFile("new\n");
    EXPECT_EQ(modeOf(path_), 0600U);
}

TEST_F(FileReplacementTest, WritesLongAndEmptyTexts) {
    const std::string text(1'000'000, 'x');
    replacePrivateFile(path_, text);
    expectOnlyFile(text);
    replacePrivateFile(path_, "");
    expectOnlyFile("");
}

TEST_F(FileReplacementTest, WritesIntoTheCurrentFolder) {
    const std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::current_path(folder_.path());
    replacePrivateFile("users", "one\n");
    std::filesystem::current_path(previous);
    expectOnlyFile("one\n");
}

TEST_F(FileReplacementTest, WhoEverHasTheOldFileOpenReadsTheOldText) {
    folder_.write("users", "old\n");
    std::ifstream stream(path_);
    replacePrivateFile(path_, "new\n");
    std::string line;
    std::getline(stream, line);
    EXPECT_EQ(line, "old");
}

TEST_F(FileReplacementTest, TheOwnerStaysTheSameWhereRootWrites) {
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can give files away";
    folder_.write("users", "old\n");
    ASSERT_EQ(chown(path_.c_str(), 12345, 12346), 0);
    replacePrivateFile(path_, "new\n");
    struct stat status = {};
    ASSERT_EQ(stat(path_.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 12345U);
    EXPECT_EQ(status.st_gid, 12346U);
    EXPECT_EQ(modeOf(path_), 0600U);
}

TEST_F(FileReplacementTest, AFullDiskLeavesTheOldFile) {
    folder_.write("users", "old\n");
    std::string failure;
    {
        const FileSizeLimit limit(2);
        failure = failureOf([&] { replacePrivateFile(path_, "new\n"); });
    }
    EXPECT_EQ(failure, path_ + ": cannot be written: File too large");
    expectOnlyFile("old\n");
}

TEST_F(FileReplacementTest, AFullDiskLeavesNoNewFile) {
    std::string failure;
    {
        const FileSizeLimit limit(2);
        failure = failureOf([&] { replacePrivateFile(path_, "new\n"); });
    }
    EXPECT_EQ(failure, path_ + ": cannot be written: File too large");
    EXPECT_EQ(namesIn(folder_), std::vector<std::string>{});
}

TEST_F(FileReplacementTest, AMissingFolderIsReported) {
    const std::string path = folder_ / "missing/users";
    EXPECT_EQ(failureOf([&] { replacePrivateFile(path, "new\n"); }),
              path + ": cannot be written: No such file or directory");
}

TEST_F(FileReplacementTest, AFolderIsNotReplaced) {
    std::filesystem::create_directory(path_);
    EXPECT_EQ(failureOf([&] { replacePrivateFile(path_, "new\n"); }),
              path_ + ": cannot be written: Is a directory");
    EXPECT_EQ(namesIn(folder_), std::vector<std::string>{"users"});
}

}  // namespace

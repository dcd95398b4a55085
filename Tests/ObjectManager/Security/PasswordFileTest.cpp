#include <fcntl.h>
#include <filesystem>
#include <gtest/gtest.h>
#include <stdexcept>
#include <string>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include "ObjectManager/Security/PasswordFile.h"
#include "Tests/ObjectManager/Security/Failures.h"
#include "Tests/ObjectManager/Security/Files.h"
#include "Tests/ObjectManager/Security/Hashes.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Threads.h"
#include "Tests/Support/WaitUntil.h"

namespace {

using Security::PasswordFile;
using Security::User;

const std::string kHash = kHashesOfSecret[0];
const std::string kOtherHash = kHashesOfSecret[1];

// "NAME:HASH" of each user.
std::vector<std::string> usersOf(const PasswordFile& file) {
    std::vector<std::string> texts;
    const Security::UserTable table = file.users();
    for (const User& user : table.users())
        texts.push_back(user.name + ":" + user.passwordHash);
    return texts;
}

std::string faultIn(const std::string& text) {
    return failureOf([&] { const PasswordFile file("users", text); });
}

TEST(PasswordFile, HoldsUsersCommentsAndEmptyLines) {
    const std::string text =
        "# the staff\n\nbob:" + kHash + "\n#alice:off\nalice:" + kOtherHash + "\n";
    const PasswordFile file("users", text);
    EXPECT_EQ(usersOf(file), (std::vector<std::string>{"alice:" + kOtherHash, "bob:" + kHash}));
    EXPECT_EQ(file.text(), text);
}

TEST(PasswordFile, MayBeEmpty) {
    const PasswordFile file("users", "");
    EXPECT_EQ(usersOf(file), std::vector<std::string>{});
    EXPECT_EQ(file.text(), "");
}

TEST(PasswordFile, TheLastLineNeedsNoEnd) {
    const PasswordFile file("users", "bob:" + kHash);
    EXPECT_EQ(usersOf(file), std::vector<std::string>{"bob:" + kHash});
    EXPECT_EQ(file.text(), "bob:" + kHash + "\n");
}

TEST(PasswordFile, SetsAndRemovesUsersAndKeepsEverythingElseInPlace) {
    PasswordFile file("users", "# first\na:" + kHash + "\n\nb:" + kHash + "\n# last");
    EXPECT_FALSE(file.set("a", kOtherHash));
    EXPECT_EQ(file.text(), "# first\na:" + kOtherHash + "\n\nb:" + kHash + "\n# last\n");
    EXPECT_TRUE(file.set("c", kHash));
    EXPECT_EQ(file.text(),
              "# first\na:" + kOtherHash + "\n\nb:" + kHash + "\n# last\nc:" + kHash + "\n");
    EXPECT_TRUE(file.remove("b"));
    EXPECT_EQ(file.text(), "# first\na:" + kOtherHash + "\n\n# last\nc:" + kHash + "\n");
    EXPECT_FALSE(file.remove("b"));
    EXPECT_FALSE(file.remove("A"));
    EXPECT_EQ(usersOf(file), (std::vector<std::string>{"a:" + kOtherHash, "c:" + kHash}));
}

TEST(PasswordFile, TakesHashesOfEveryMethod) {
    for (const char* hash : kHashesOfSecret) {
        const PasswordFile file("users", std::string("a:") + hash);
        EXPECT_EQ(usersOf(file), std::vector<std::string>{std::string("a:") + hash});
    }
}

TEST(PasswordFile, AWrongLineIsReportedWithItsNumberAndNotShown) {
    const std::string before = "# comment\n\nalice:" + kHash + "\n";
    EXPECT_EQ(faultIn(before + "topsecret\n"),
              "users:4: there is no colon between user name and hash");
    EXPECT_EQ(faultIn(" \n"), "users:1: there is no colon between user name and hash");
    EXPECT_EQ(faultIn(before + ":" + kHash), "users:4: the user name cannot be used: it is empty");
    EXPECT_EQ(faultIn(before + std::string(256, 'n') + ":" + kHash),
              "users:4: the user name cannot be used: it is longer than 255 bytes");
    EXPECT_EQ(faultIn(before + "b\tb:" + kHash),
              "users:4: the user name cannot be used: "
              "it contains control characters or is not UTF-8");
}

TEST(PasswordFile, AnUnusableHashIsReportedAndNotShown) {
    const std::string expected = "users:1: this system cannot check such a password hash";
    for (const std::string& hash :
         {std::string(), std::string("topsecret"), std::string("*"), kHash + ":0:", kHash + "\r",
          kHash.substr(0, 20), " " + kHash, std::string("alice"), "$9$" + kHash.substr(3)})
        EXPECT_EQ(faultIn("alice:" + hash + "\n"), expected) << hash;
}

TEST(PasswordFile, ADoubledUserIsReportedWithBothLines) {
    EXPECT_EQ(faultIn("# users\na:" + kHash + "\nb:" + kHash + "\na:" + kOtherHash + "\n"),
              "users:4: the user \"a\" is already in line 2");
}

class PasswordFileOnDiskTest : public testing::Test {
  protected:
    std::string failureToRead() const {
        return failureOf([this] { static_cast<void>(PasswordFile::read(path_)); });
    }
    static void addBob(PasswordFile& file) { file.set("bob", kHash); }

    const TemporaryDirectory directory_;
    const std::string path_ = directory_ / "users";
};

TEST_F(PasswordFileOnDiskTest, IsRead) {
    writePrivate(directory_, "users", "bob:" + kHash + "\n");
    EXPECT_EQ(usersOf(PasswordFile::read(path_)), std::vector<std::string>{"bob:" + kHash});
}

TEST_F(PasswordFileOnDiskTest, ALongOneIsReadToItsEnd) {
    std::string text;
    for (int number = 0; number < 1000; ++number)
        text += "user" + std::to_string(number) + ":" + kHash + "\n";
    writePrivate(directory_, "users", text);
    EXPECT_EQ(PasswordFile::read(path_).text(), text);
}

TEST_F(PasswordFileOnDiskTest, AWrongLineIsReportedWithThePath) {
    writePrivate(directory_, "users", "\nbob\n");
    EXPECT_EQ(failureToRead(), path_ + ":2: there is no colon between user name and hash");
}

TEST_F(PasswordFileOnDiskTest, AMissingOneIsReported) {
    EXPECT_EQ(failureToRead(), path_ + ": cannot be read: No such file or directory");
}

TEST_F(PasswordFileOnDiskTest, WhatOthersCanReadOrWriteIsRefusedWithTheCommandThatMendsIt) {
    writePrivate(directory_, "users", "bob:" + kHash + "\n");
    for (const mode_t mode : {0604U, 0602U, 0660U, 0620U, 0666U, 0644U, 0777U}) {
        ASSERT_EQ(chmod(path_.c_str(), mode), 0);
        EXPECT_EQ(failureToRead(),
                  path_ +
                      ": others than its owner can read or write it; correct that with: "
                      "chmod 600 " +
                      path_)
            << mode;
    }
    for (const mode_t mode : {0600U, 0400U, 0700U, 0711U}) {
        ASSERT_EQ(chmod(path_.c_str(), mode), 0);
        EXPECT_EQ(failureToRead(), "no failure") << mode;
    }
}

TEST_F(PasswordFileOnDiskTest, TheGroupOfTheProcessMayReadItAndNoOther) {
    writePrivate(directory_, "users", "bob:" + kHash + "\n");
    ASSERT_EQ(chown(path_.c_str(), geteuid(), getegid()), 0);
    ASSERT_EQ(chmod(path_.c_str(), 0640), 0);
    EXPECT_EQ(failureToRead(), "no failure");
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can give a file to any group";
    ASSERT_EQ(chown(path_.c_str(), 0, 12346), 0);
    EXPECT_EQ(failureToRead(),
              path_ +
                  ": others than its owner can read or write it; correct that with: chmod 600 " +
                  path_);
}

TEST_F(PasswordFileOnDiskTest, OfAnotherUserIsReadByNobodyButRootForAChange) {
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can change the owner of a file";
    writePrivate(directory_, "users", "bob:" + kHash + "\n");
    ASSERT_EQ(chown(path_.c_str(), 12345, 0), 0);
    EXPECT_EQ(failureToRead(), path_ + ": must belong to root or to the user of this process");
    EXPECT_EQ(PasswordFile::readForChange(path_).users().users().size(), 1U);
}

TEST_F(PasswordFileOnDiskTest, InADirectoryThatOthersWriteToIsRefusedUnlessThatIsSticky) {
    writePrivate(directory_, "users", "bob:" + kHash + "\n");
    const std::string directory = directory_.path();
    for (const mode_t mode : {0770U, 0702U, 0777U}) {
        ASSERT_EQ(chmod(directory.c_str(), mode), 0);
        const std::string expected =
            directory +
            ": others than its owner can replace the password file in it; correct that with: "
            "chmod go-w " +
            directory;
        EXPECT_EQ(failureToRead(), expected) << mode;
        EXPECT_EQ(failureOf([&] { PasswordFile::change(directory_ / "new", addBob); }), expected);
    }
    for (const mode_t mode : {0755U, 01777U, 0711U}) {
        ASSERT_EQ(chmod(directory.c_str(), mode), 0);
        EXPECT_EQ(failureToRead(), "no failure") << mode;
    }
}

TEST_F(PasswordFileOnDiskTest, InADirectoryOfAnotherUserIsRefused) {
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can change the owner of a directory";
    writePrivate(directory_, "users", "bob:" + kHash + "\n");
    ASSERT_EQ(chown(directory_.path().c_str(), 12345, 0), 0);
    EXPECT_EQ(failureToRead(), directory_.path().string() +
                                   ": the directory of a password file must belong to root "
                                   "or to the user of this process");
}

TEST_F(PasswordFileOnDiskTest, BehindALinkTheDirectoryOfTheLinkMustBeSafeToo) {
    writePrivate(directory_, "users", "bob:" + kHash + "\n");
    const std::string open = directory_ / "open";
    std::filesystem::create_directory(open);
    std::filesystem::create_symlink(path_, open + "/link");
    EXPECT_EQ(failureOf([&] { static_cast<void>(PasswordFile::read(open + "/link")); }),
              "no failure");
    ASSERT_EQ(chmod(open.c_str(), 0777), 0);
    EXPECT_NE(failureOf([&] { static_cast<void>(PasswordFile::read(open + "/link")); }),
              "no failure");
    std::filesystem::rename(path_, open + "/users");
    std::filesystem::create_symlink("open/users", path_);
    EXPECT_NE(failureToRead(), "no failure");
}

TEST_F(PasswordFileOnDiskTest, HasUpTo16Megabytes) {
    writePrivate(directory_, "users", "#" + std::string(15'999'999, 'x'));
    EXPECT_EQ(failureToRead(), "no failure");
    writePrivate(directory_, "users", "#" + std::string(16'000'000, 'x'));
    EXPECT_EQ(failureToRead(), path_ + ": is larger than 16.0 MB");
}

TEST_F(PasswordFileOnDiskTest, TheCommandThatMendsItCanBePasted) {
    const std::string path = directory_.write("it's \"mine\" $x", "");
    ASSERT_EQ(chmod(path.c_str(), 0644), 0);
    EXPECT_EQ(failureOf([&] { static_cast<void>(PasswordFile::read(path)); }),
              path +
                  ": others than its owner can read or write it; correct that with: chmod 600 '" +
                  directory_.path().string() + "/it'\\''s \"mine\" $x'");
}

TEST_F(PasswordFileOnDiskTest, WhatIsNoRegularFileIsRefused) {
    std::filesystem::create_directory(path_);
    EXPECT_EQ(failureToRead(), path_ + ": is not a regular file");
    std::filesystem::remove(path_);
    // Nobody writes to it, which must keep nobody waiting.
    ASSERT_EQ(mkfifo(path_.c_str(), 0600), 0);
    EXPECT_EQ(failureToRead(), path_ + ": is not a regular file");
}

TEST_F(PasswordFileOnDiskTest, AChangeMakesAMissingFile) {
    PasswordFile::change(path_, addBob);
    EXPECT_EQ(contentOfFile(path_), "bob:" + kHash + "\n");
    EXPECT_EQ(modeOf(path_), 0600U);
    EXPECT_EQ(namesIn(directory_), std::vector<std::string>{"users"});
}

TEST_F(PasswordFileOnDiskTest, AChangeKeepsWhatItDoesNotChange) {
    writePrivate(directory_, "users", "# users\nalice:" + kOtherHash + "\n");
    PasswordFile::change(path_, addBob);
    EXPECT_EQ(contentOfFile(path_), "# users\nalice:" + kOtherHash + "\nbob:" + kHash + "\n");
    EXPECT_EQ(namesIn(directory_), std::vector<std::string>{"users"});
}

TEST_F(PasswordFileOnDiskTest, AChangeThroughALinkKeepsTheLink) {
    writePrivate(directory_, "users", "");
    std::filesystem::create_symlink("users", directory_ / "link");
    PasswordFile::change(directory_ / "link", addBob);
    EXPECT_TRUE(std::filesystem::is_symlink(directory_ / "link"));
    EXPECT_EQ(contentOfFile(path_), "bob:" + kHash + "\n");
    EXPECT_EQ(namesIn(directory_), (std::vector<std::string>{"link", "users"}));
}

TEST_F(PasswordFileOnDiskTest, AFailedChangeLeavesTheFile) {
    const std::string text = "alice:" + kHash + "\n";
    writePrivate(directory_, "users", text);
    EXPECT_THROW(PasswordFile::change(path_,
                                      [](PasswordFile& file) {
                                          file.remove("alice");
                                          throw std::runtime_error("no");
                                      }),
                 std::runtime_error);
    EXPECT_EQ(contentOfFile(path_), text);
    EXPECT_EQ(namesIn(directory_), std::vector<std::string>{"users"});
}

TEST_F(PasswordFileOnDiskTest, AFullDiskLeavesTheFile) {
    const std::string text = "alice:" + kHash + "\n";
    writePrivate(directory_, "users", text);
    std::string failure;
    {
        const FileSizeLimit limit(10);
        failure = failureOf([&] { PasswordFile::change(path_, addBob); });
    }
    EXPECT_EQ(failure, path_ + ": cannot be written: File too large");
    EXPECT_EQ(contentOfFile(path_), text);
    EXPECT_EQ(namesIn(directory_), std::vector<std::string>{"users"});
}

TEST_F(PasswordFileOnDiskTest, AWrongFileIsNotChanged) {
    const std::string text = "alice\n";
    writePrivate(directory_, "users", text);
    EXPECT_EQ(failureOf([&] { PasswordFile::change(path_, addBob); }),
              path_ + ":1: there is no colon between user name and hash");
    EXPECT_EQ(contentOfFile(path_), text);
    ASSERT_EQ(chmod(path_.c_str(), 0644), 0);
    EXPECT_EQ(failureOf([&] { PasswordFile::change(path_, addBob); }),
              path_ +
                  ": others than its owner can read or write it; correct that with: chmod 600 " +
                  path_);
    EXPECT_EQ(contentOfFile(path_), text);
}

TEST_F(PasswordFileOnDiskTest, AChangeByRootKeepsTheOwner) {
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can change the owner of a file";
    writePrivate(directory_, "users", "");
    ASSERT_EQ(chown(path_.c_str(), 12345, 12346), 0);
    PasswordFile::change(path_, addBob);
    struct stat status = {};
    ASSERT_EQ(stat(path_.c_str(), &status), 0);
    EXPECT_EQ(status.st_uid, 12345U);
    EXPECT_EQ(status.st_gid, 12346U);
    EXPECT_EQ(modeOf(path_), 0600U);
}

TEST_F(PasswordFileOnDiskTest, AChangeByRootKeepsWhatTheGroupOfAServiceMayRead) {
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can give a file to any group";
    writePrivate(directory_, "users", "");
    ASSERT_EQ(chown(path_.c_str(), 0, 12346), 0);
    ASSERT_EQ(chmod(path_.c_str(), 0640), 0);
    PasswordFile::change(path_, addBob);
    struct stat status = {};
    ASSERT_EQ(stat(path_.c_str(), &status), 0);
    EXPECT_EQ(status.st_gid, 12346U);
    EXPECT_EQ(modeOf(path_), 0640U);
}

TEST_F(PasswordFileOnDiskTest, AChangeWaitsForTheLockAndSaysSo) {
    const int other = open(directory_.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    std::vector<std::string> told;
    PasswordFile::change(path_, addBob,
                         {.timeout = kPatience, .tell = [&](const std::string& path) {
                              told.push_back(path);
                              close(other);
                          }});
    EXPECT_EQ(told, std::vector<std::string>{directory_.path()});
    EXPECT_EQ(contentOfFile(path_), "bob:" + kHash + "\n");
}

TEST_F(PasswordFileOnDiskTest, AChangeDoesNotWaitForTheLockForEver) {
    const int other = open(directory_.path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    ASSERT_EQ(flock(other, LOCK_EX), 0);
    EXPECT_EQ(failureOf([&] {
                  PasswordFile::change(path_, addBob, {.timeout = std::chrono::milliseconds(1)});
              }),
              directory_.path().string() +
                  ": another process, perhaps another \"tesk passwd\", has locked this directory "
                  "and does not release it");
    EXPECT_FALSE(std::filesystem::exists(path_));
    close(other);
}

TEST_F(PasswordFileOnDiskTest, AFileInTheCurrentDirectoryIsChanged) {
    const std::filesystem::path previous = std::filesystem::current_path();
    std::filesystem::current_path(directory_.path());
    PasswordFile::change("users", addBob);
    std::filesystem::current_path(previous);
    EXPECT_EQ(contentOfFile(path_), "bob:" + kHash + "\n");
}

TEST_F(PasswordFileOnDiskTest, AMissingDirectoryIsReported) {
    EXPECT_EQ(failureOf([&] { PasswordFile::change(directory_ / "missing/users", addBob); }),
              (directory_ / "missing").string() + ": cannot be locked: No such file or directory");
}

TEST_F(PasswordFileOnDiskTest, ManyThreadsThatChangeItAtOnceLoseNothing) {
    runOnThreads(8, [&](int index) {
        for (int number = 0; number < 10; ++number) {
            PasswordFile::change(path_, [&](PasswordFile& file) {
                file.set("user" + std::to_string(index * 10 + number), kHash);
            });
        }
    });
    EXPECT_EQ(PasswordFile::read(path_).users().users().size(), 80U);
    EXPECT_EQ(namesIn(directory_), std::vector<std::string>{"users"});
}

TEST_F(PasswordFileOnDiskTest, ManyProcessesThatChangeItAtOnceLoseNothing) {
    constexpr int kProcesses = 8;
    constexpr int kUsersEach = 10;
    std::vector<pid_t> children;
    for (int index = 0; index < kProcesses; ++index) {
        const pid_t child = fork();
        ASSERT_GE(child, 0);
        if (child == 0) {
            for (int number = 0; number < kUsersEach; ++number) {
                PasswordFile::change(path_, [&](PasswordFile& file) {
                    file.set("user" + std::to_string(index * kUsersEach + number), kHash);
                });
            }
            _exit(0);
        }
        children.push_back(child);
    }
    for (const pid_t child : children) {
        int status = -1;
        ASSERT_EQ(waitpid(child, &status, 0), child);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(PasswordFile::read(path_).users().users().size(), 80U);
    EXPECT_EQ(namesIn(directory_), std::vector<std::string>{"users"});
}

}  // namespace

#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

#include "ObjectManager/Base/Files.h"
#include "Tests/Support/FolderContent.h"
#include "Tests/Support/ResourceLimit.h"
#include "Tests/Support/TemporaryFolder.h"
#include "Tests/Support/Threads.h"

namespace {

namespace fs = std::filesystem;
using Base::FileDescriptor;
using Base::FileKind;
using Base::FileVersion;
using Base::openForReading;
using Base::readAll;
using Base::readFile;
using Base::replaceFile;
using Base::ReplaceOptions;

constexpr std::size_t kNoLimit = 1'000'000;

// The code of the error that `work` fails with; none when it does not.
template <typename Work>
std::error_code failureOf(const Work& work) {
    try {
        work();
    } catch (const std::system_error& error) {
        return error.code();
    }
    return {};
}

bool isOpen(int descriptor) {
    return fcntl(descriptor, F_GETFD) >= 0;
}

TEST(FileDescriptor, ClosesItsFileOnce) {
    int number = -1;
    {
        FileDescriptor first = openForReading("/dev/null", FileKind::kAny);
        number = first.get();
        FileDescriptor second = std::move(first);
        FileDescriptor third;
        third = std::move(second);
        EXPECT_EQ(third.get(), number);
        EXPECT_TRUE(isOpen(number));
    }
    EXPECT_FALSE(isOpen(number));
}

TEST(FileDescriptor, AnAssignmentClosesTheFormerFile) {
    FileDescriptor descriptor = openForReading("/dev/null", FileKind::kAny);
    const int former = descriptor.get();
    descriptor = openForReading("/dev/null", FileKind::kAny);
    EXPECT_FALSE(isOpen(former));
    EXPECT_TRUE(isOpen(descriptor.get()));
}

TEST(FileDescriptor, IsClosedOrHandedOverOnRequest) {
    FileDescriptor closed = openForReading("/dev/null", FileKind::kAny);
    const int number = closed.get();
    closed.close();
    EXPECT_FALSE(closed.isOpen());
    EXPECT_FALSE(isOpen(number));
    closed.close();

    FileDescriptor released = openForReading("/dev/null", FileKind::kAny);
    const FileDescriptor owner(released.release());
    EXPECT_FALSE(released.isOpen());
    EXPECT_TRUE(isOpen(owner.get()));
}

TEST(FileDescriptor, AFailedCloseIsReported) {
    FileDescriptor descriptor = openForReading("/dev/null", FileKind::kAny);
    ::close(descriptor.get());
    EXPECT_EQ(failureOf([&] { descriptor.close(); }), std::errc::bad_file_descriptor);
    EXPECT_FALSE(descriptor.isOpen());
}

TEST(Reading, ReadsAllBytes) {
    const TemporaryFolder folder;
    for (const std::size_t length : {0U, 1U, 4095U, 4096U, 4097U, 100000U}) {
        const std::string content(length, 'x');
        EXPECT_EQ(readFile(folder.write("file", content), kNoLimit), content) << length;
    }
}

TEST(Reading, ReadsAPipeToItsEnd) {
    const TemporaryFolder folder;
    const std::string path = folder / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string content(10'000, 'x');
    std::thread writer([&] { folder.write("pipe", content); });
    const std::string read = readFile(path, kNoLimit, FileKind::kAny);
    writer.join();
    EXPECT_EQ(read, content);
}

TEST(Reading, ReadsAFileInParts) {
    const TemporaryFolder folder;
    const FileDescriptor file = openForReading(folder.write("file", "0123456789"), FileKind::kAny);
    char buffer[4] = {};
    std::string content;
    for (std::size_t count = sizeof buffer; count == sizeof buffer;) {
        count = Base::readUpTo(file, buffer);
        content += std::string(buffer, count) + "|";
    }
    EXPECT_EQ(content, "0123|4567|89|");
    EXPECT_EQ(Base::readUpTo(file, buffer), 0U);
}

TEST(Reading, ReadsFromWhereTheFileStands) {
    const TemporaryFolder folder;
    const FileDescriptor file = openForReading(folder.write("file", "0123456789"), FileKind::kAny);
    char buffer[4] = {};
    (void)Base::readUpTo(file, buffer);
    EXPECT_EQ(readAll(file, kNoLimit), "456789");
}

TEST(Reading, AFileMayHaveAsManyBytesAsAllowedAndNoMore) {
    const TemporaryFolder folder;
    const std::string path = folder.write("file", std::string(10'000, 'x'));
    EXPECT_EQ(readFile(path, 10'000).size(), 10'000U);
    EXPECT_EQ(failureOf([&] { (void)readFile(path, 9'999); }), std::errc::file_too_large);
}

TEST(Reading, AnEndlessDeviceIsNotRead) {
    EXPECT_EQ(failureOf([] { (void)readFile("/dev/zero", kNoLimit, FileKind::kAny); }),
              std::errc::file_too_large);
}

TEST(Reading, AFileThatIsNotThereIsNone) {
    const TemporaryFolder folder;
    const std::string missing = folder / "missing";
    EXPECT_FALSE(Base::openIfThere(missing, FileKind::kAny));
    EXPECT_FALSE(Base::openIfThere(folder.write("file", "") / "below", FileKind::kAny));
    EXPECT_EQ(failureOf([&] { (void)openForReading(missing, FileKind::kAny); }),
              std::errc::no_such_file_or_directory);
}

TEST(Reading, WhatCannotBeReadIsAnError) {
    const TemporaryFolder folder;
    EXPECT_EQ(failureOf([&] { (void)readFile(folder.path(), kNoLimit); }),
              std::errc::is_a_directory);
    fs::create_symlink("loop", folder / "loop");
    EXPECT_EQ(failureOf([&] { (void)Base::openIfThere(folder / "loop", FileKind::kAny); }),
              std::errc::too_many_symbolic_link_levels);
    char buffer[4] = {};
    EXPECT_EQ(failureOf([&] { (void)Base::readUpTo(FileDescriptor(), buffer); }),
              std::errc::bad_file_descriptor);
}

// To which no process ever writes.
TEST(Reading, APipeIsNotWaitedForWhereARegularFileIsWanted) {
    const TemporaryFolder folder;
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    for (const std::string& path : {pipe, std::string("/dev/null")}) {
        EXPECT_EQ(failureOf([&] { (void)openForReading(path, FileKind::kRegular); }),
                  std::errc::not_supported)
            << path;
    }
}

class FileVersionTest : public testing::Test {
  protected:
    TemporaryFolder folder_;
    const std::string file_ = folder_.write("file", "text");
    const FileVersion before_ = FileVersion::of(file_);
};

TEST_F(FileVersionTest, StaysWhileNothingChanges) {
    EXPECT_EQ(readFile(file_, kNoLimit), "text");
    EXPECT_EQ(FileVersion::of(file_), before_);
    EXPECT_EQ(FileVersion::of(openForReading(file_, FileKind::kRegular)), before_);
}

TEST_F(FileVersionTest, ChangesWithTheContent) {
    const auto time = fs::last_write_time(file_);
    folder_.write("file", "texts");
    fs::last_write_time(file_, time);
    EXPECT_NE(FileVersion::of(file_), before_);
}

TEST_F(FileVersionTest, ChangesWithTheTimeOfTheLastChange) {
    fs::last_write_time(file_, fs::last_write_time(file_) + std::chrono::nanoseconds(1));
    EXPECT_NE(FileVersion::of(file_), before_);
}

TEST_F(FileVersionTest, ChangesWithThePermissions) {
    fs::permissions(file_, fs::perms::owner_read);
    EXPECT_NE(FileVersion::of(file_), before_);
}

TEST_F(FileVersionTest, ChangesWhenAnotherFileTakesTheName) {
    const auto time = fs::last_write_time(file_);
    const std::string other = folder_.write("other", "text");
    fs::last_write_time(other, time);
    fs::rename(other, file_);
    EXPECT_NE(FileVersion::of(file_), before_);
}

TEST_F(FileVersionTest, ThereMayBeNoFile) {
    EXPECT_EQ(FileVersion::of(folder_ / "none"), FileVersion());
    EXPECT_NE(before_, FileVersion());
    EXPECT_EQ(failureOf([] { (void)FileVersion::of(FileDescriptor()); }),
              std::errc::bad_file_descriptor);
}

TEST_F(FileVersionTest, TheIdentityIsTheSameByEveryPath) {
    fs::create_symlink("file", folder_ / "link");
    EXPECT_EQ(FileVersion::of(folder_ / "link").identity, before_.identity);
    EXPECT_NE(FileVersion::of(folder_.write("other", "")).identity, before_.identity);
}

TEST_F(FileVersionTest, TellsTheTypeAndWhoHasAccess) {
    EXPECT_TRUE(before_.isRegular());
    EXPECT_FALSE(before_.isDirectory());
    EXPECT_TRUE(FileVersion::of(folder_.path()).isDirectory());
    EXPECT_FALSE(FileVersion::of("/dev/null").isRegular());
    for (const unsigned mode : {0600U, 0700U, 0611U}) {
        fs::permissions(file_, fs::perms(mode));
        EXPECT_FALSE(FileVersion::of(file_).isAccessibleToOthers()) << mode;
    }
    for (const unsigned mode : {0640U, 0620U, 0604U, 0602U}) {
        fs::permissions(file_, fs::perms(mode));
        EXPECT_TRUE(FileVersion::of(file_).isAccessibleToOthers()) << mode;
    }
}

// Sets the umask of the process while this lives.
class Umask {
  public:
    explicit Umask(mode_t mask) : before_(umask(mask)) {}
    Umask(const Umask&) = delete;
    Umask& operator=(const Umask&) = delete;
    ~Umask() { umask(before_); }

  private:
    mode_t before_;
};

constexpr ReplaceOptions kPrivate = {.mode = 0600, .keepsOwner = true, .isDurable = true};

class ReplaceFileTest : public testing::Test {
  protected:
    // What is in the directory is one file with this content.
    void expectOnlyFile(const std::string& content) const {
        EXPECT_EQ(contentOf(folder_.path()), (FolderContent{{"users", content}}));
    }
    [[nodiscard]] unsigned mode() const {
        return static_cast<unsigned>(fs::status(path_).permissions());
    }

    const TemporaryFolder folder_;
    const std::string path_ = folder_ / "users";
};

TEST_F(ReplaceFileTest, MakesANewFileWithItsPermissions) {
    const Umask mask(027);
    replaceFile(path_, "one\n");
    expectOnlyFile("one\n");
    EXPECT_EQ(mode(), 0640U);
    fs::remove(path_);
    replaceFile(path_, "one\n", kPrivate);
    expectOnlyFile("one\n");
    EXPECT_EQ(mode(), 0600U);
}

TEST_F(ReplaceFileTest, TakesThePlaceOfAFile) {
    const Umask mask(0);
    folder_.write("users", "a longer text than the new one\n");
    fs::permissions(path_, fs::perms::all);
    replaceFile(path_, "new\n", kPrivate);
    expectOnlyFile("new\n");
    EXPECT_EQ(mode(), 0600U);
}

TEST_F(ReplaceFileTest, WritesLongAndEmptyTexts) {
    const std::string text(1'000'000, 'x');
    replaceFile(path_, text);
    expectOnlyFile(text);
    replaceFile(path_, "");
    expectOnlyFile("");
}

TEST_F(ReplaceFileTest, WritesIntoTheCurrentDirectory) {
    const fs::path previous = fs::current_path();
    fs::current_path(folder_.path());
    replaceFile("users", "one\n");
    fs::current_path(previous);
    expectOnlyFile("one\n");
}

TEST_F(ReplaceFileTest, WritesIntoADirectoryThatIsOpen) {
    const FileDescriptor directory = Base::openDirectory(folder_.path());
    replaceFile(directory, "users", "one\n", kPrivate);
    expectOnlyFile("one\n");
}

TEST_F(ReplaceFileTest, AReaderOfTheOldFileGoesOnReadingIt) {
    folder_.write("users", "old\n");
    std::ifstream stream(path_);
    replaceFile(path_, "new\n");
    std::string line;
    std::getline(stream, line);
    EXPECT_EQ(line, "old");
}

TEST_F(ReplaceFileTest, ALinkIsReplacedAndItsTargetStays) {
    const TemporaryFolder elsewhere;
    fs::create_symlink(elsewhere.write("target", "old\n"), path_);
    replaceFile(path_, "new\n", kPrivate);
    expectOnlyFile("new\n");
    EXPECT_EQ(contentOf(elsewhere.path()), (FolderContent{{"target", "old\n"}}));
}

TEST_F(ReplaceFileTest, TheOwnerStaysTheSameWhereRootWrites) {
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can give files away";
    folder_.write("users", "old\n");
    for (const bool keeps : {true, false}) {
        ASSERT_EQ(chown(path_.c_str(), 12345, 12346), 0);
        replaceFile(path_, "new\n", {.mode = 0600, .keepsOwner = keeps});
        struct stat status = {};
        ASSERT_EQ(stat(path_.c_str(), &status), 0);
        EXPECT_EQ(status.st_uid == 12345 && status.st_gid == 12346, keeps);
        EXPECT_EQ(mode(), 0600U);
    }
}

TEST_F(ReplaceFileTest, AFullDiskLeavesEverythingAsItWas) {
    const std::string text(100'000, 'x');
    for (const bool isThere : {false, true}) {
        if (isThere)
            folder_.write("users", "old\n");
        const FolderContent before = contentOf(folder_.path());
        for (const rlim_t size : {0U, 1U, 4096U, 99'999U}) {
            const ResourceLimit limit(RLIMIT_FSIZE, size);
            EXPECT_EQ(failureOf([&] { replaceFile(path_, text, kPrivate); }),
                      std::errc::file_too_large);
            EXPECT_EQ(contentOf(folder_.path()), before) << size;
        }
    }
    const ResourceLimit limit(RLIMIT_FSIZE, 100'000);
    replaceFile(path_, text, kPrivate);
    expectOnlyFile(text);
}

// The first descriptor is the directory's, the second one the temporary file's.
TEST_F(ReplaceFileTest, WithoutDescriptorsTheOldFileStays) {
    folder_.write("users", "old\n");
    const int next = Base::openDirectory("/").get();
    for (const int more : {0, 1}) {
        std::error_code failure;
        {
            const ResourceLimit limit(RLIMIT_NOFILE, static_cast<rlim_t>(next + more));
            failure = failureOf([&] { replaceFile(path_, "new\n"); });
        }
        EXPECT_EQ(failure, std::errc::too_many_files_open) << more;
        expectOnlyFile("old\n");
    }
}

TEST_F(ReplaceFileTest, AMissingDirectoryIsReported) {
    EXPECT_EQ(failureOf([&] { replaceFile(folder_ / "missing/users", "new\n"); }),
              std::errc::no_such_file_or_directory);
}

TEST_F(ReplaceFileTest, ADirectoryIsNotReplaced) {
    fs::create_directory(path_);
    for (const std::string& path : {path_, path_ + "/"}) {
        EXPECT_EQ(failureOf([&] { replaceFile(path, "new\n"); }), std::errc::is_a_directory);
        EXPECT_EQ(contentOf(folder_.path()), (FolderContent{{"users", "(folder)"}}));
    }
}

// What processes left behind that were killed, or that run on another machine.
TEST_F(ReplaceFileTest, TemporaryNamesThatAreTakenAreNotUsed) {
    FolderContent expected;
    for (const std::string prefix : {"users.", ".export-"}) {
        for (int number = 1; number <= 100; ++number) {
            const std::string name =
                prefix + std::to_string(getpid()) + "-" + std::to_string(number);
            folder_.write(name, "part");
            expected[name] = "part";
        }
    }
    replaceFile(path_, "one\n");
    replaceFile(folder_ / "other", "two\n", {.temporaryPrefix = ".export-"});
    expected["users"] = "one\n";
    expected["other"] = "two\n";
    EXPECT_EQ(contentOf(folder_.path()), expected);
}

TEST_F(ReplaceFileTest, SeveralThreadsReplaceTheSameFile) {
    const std::string text(10'000, 'x');
    runOnThreads(4, [&](int thread) {
        for (int number = 0; number < 50; ++number)
            replaceFile(path_, text + std::to_string(thread));
    });
    const std::string content = contentOfFile(path_);
    EXPECT_EQ(content.size(), text.size() + 1);
    expectOnlyFile(content);
}

}  // namespace

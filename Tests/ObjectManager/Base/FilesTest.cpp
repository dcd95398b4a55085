#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <thread>
#include <unistd.h>
#include <utility>

#include "ObjectManager/Base/Files.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/ResourceLimit.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Threads.h"

namespace {

namespace fs = std::filesystem;
using Base::FileDescriptor;
using Base::FileVersion;
using Base::openForReading;
using Base::readAll;
using Base::readFile;
using Base::replaceFile;
using Base::ReplaceOptions;

constexpr std::size_t kNoLimit = 1'000'000;

// A regular file that is always there.
constexpr const char* kAnyFile = "/proc/self/exe";

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
        FileDescriptor first = openForReading(kAnyFile);
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
    FileDescriptor descriptor = openForReading(kAnyFile);
    const int former = descriptor.get();
    descriptor = openForReading(kAnyFile);
    EXPECT_FALSE(isOpen(former));
    EXPECT_TRUE(isOpen(descriptor.get()));
}

TEST(FileDescriptor, IsClosedOrHandedOverOnRequest) {
    FileDescriptor closed = openForReading(kAnyFile);
    const int number = closed.get();
    closed.close();
    EXPECT_FALSE(closed.isOpen());
    EXPECT_FALSE(isOpen(number));
    closed.close();

    FileDescriptor released = openForReading(kAnyFile);
    const FileDescriptor owner(released.release());
    EXPECT_FALSE(released.isOpen());
    EXPECT_TRUE(isOpen(owner.get()));
}

TEST(FileDescriptor, AFailedCloseIsReported) {
    FileDescriptor descriptor = openForReading(kAnyFile);
    ::close(descriptor.get());
    EXPECT_EQ(failureOf([&] { descriptor.close(); }), std::errc::bad_file_descriptor);
    EXPECT_FALSE(descriptor.isOpen());
}

TEST(Reading, ReadsAllBytes) {
    const TemporaryDirectory directory;
    for (const std::size_t length : {0U, 1U, 4095U, 4096U, 4097U, 100000U}) {
        const std::string content(length, 'x');
        EXPECT_EQ(readFile(directory.write("file", content), kNoLimit), content) << length;
    }
}

TEST(Reading, ReadsAPipeToItsEnd) {
    const TemporaryDirectory directory;
    const std::string path = directory / "pipe";
    ASSERT_EQ(mkfifo(path.c_str(), 0600), 0);
    const std::string content(10'000, 'x');
    std::thread writer([&] { directory.write("pipe", content); });
    const std::string read = readAll(FileDescriptor(open(path.c_str(), O_RDONLY)), kNoLimit);
    writer.join();
    EXPECT_EQ(read, content);
}

TEST(Reading, ReadsAFileInParts) {
    const TemporaryDirectory directory;
    const FileDescriptor file = openForReading(directory.write("file", "0123456789"));
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
    const TemporaryDirectory directory;
    const FileDescriptor file = openForReading(directory.write("file", "0123456789"));
    char buffer[4] = {};
    (void)Base::readUpTo(file, buffer);
    EXPECT_EQ(readAll(file, kNoLimit), "456789");
}

TEST(Reading, AFileMayHaveAsManyBytesAsAllowedAndNoMore) {
    const TemporaryDirectory directory;
    const std::string path = directory.write("file", std::string(10'000, 'x'));
    EXPECT_EQ(readFile(path, 10'000).size(), 10'000U);
    EXPECT_EQ(failureOf([&] { (void)readFile(path, 9'999); }), std::errc::file_too_large);
}

TEST(Reading, AnEndlessDeviceIsNotRead) {
    const FileDescriptor zeros(open("/dev/zero", O_RDONLY));
    EXPECT_EQ(failureOf([&] { (void)readAll(zeros, kNoLimit); }), std::errc::file_too_large);
}

TEST(Reading, AFileThatIsNotThereIsNone) {
    const TemporaryDirectory directory;
    const std::string missing = directory / "missing";
    EXPECT_FALSE(Base::openIfThere(missing));
    EXPECT_FALSE(Base::openIfThere(directory.write("file", "") / "below"));
    EXPECT_EQ(failureOf([&] { (void)openForReading(missing); }),
              std::errc::no_such_file_or_directory);
}

TEST(Reading, WhatCannotBeReadIsAnError) {
    const TemporaryDirectory directory;
    EXPECT_EQ(failureOf([&] { (void)readFile(directory.path(), kNoLimit); }),
              std::errc::is_a_directory);
    fs::create_symlink("loop", directory / "loop");
    EXPECT_EQ(failureOf([&] { (void)Base::openIfThere(directory / "loop"); }),
              std::errc::too_many_symbolic_link_levels);
    char buffer[4] = {};
    EXPECT_EQ(failureOf([&] { (void)Base::readUpTo(FileDescriptor(), buffer); }),
              std::errc::bad_file_descriptor);
}

// To the pipe no process ever writes.
TEST(Reading, WhatIsNoRegularFileIsRefusedAtOnce) {
    const TemporaryDirectory directory;
    const std::string pipe = directory / "pipe";
    ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
    const std::string socket = directory / "socket";
    ASSERT_EQ(mknod(socket.c_str(), S_IFSOCK | 0600, 0), 0);
    for (const std::string& path : {pipe, socket, std::string("/dev/null")}) {
        EXPECT_EQ(failureOf([&] { (void)openForReading(path); }), std::errc::not_supported) << path;
    }
    EXPECT_EQ(failureOf([&] { (void)openForReading(directory.path()); }),
              std::errc::is_a_directory);
}

TEST(Reading, AnOpenFileWaits) {
    const TemporaryDirectory directory;
    const FileDescriptor file = openForReading(directory.write("file", ""));
    EXPECT_EQ(fcntl(file.get(), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_NE(fcntl(file.get(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(Reading, SaysWhyAFileCannotBeRead) {
    const auto reasonFor = [](std::errc code) {
        return Base::readFailure(std::system_error(std::make_error_code(code)));
    };
    EXPECT_EQ(reasonFor(std::errc::not_supported),
              "it is not a regular file; a pipe or a device could not be read again at a reload");
    EXPECT_EQ(reasonFor(std::errc::is_a_directory), "it is a directory");
    EXPECT_EQ(reasonFor(std::errc::permission_denied), "Permission denied");
}

TEST(Location, IsThatOfTheFileItself) {
    const TemporaryDirectory directory;
    const fs::path real = fs::canonical(directory.path());
    fs::create_directory(real / "below");
    fs::create_symlink("../file", real / "below/link");
    directory.write("file", "");
    const FileDescriptor file = openForReading(real / "below/.././below/link");
    EXPECT_EQ(Base::locationOf(file), real / "file");
    EXPECT_EQ(Base::locationOf(Base::openDirectory(real / "below")), real / "below");
    fs::rename(real / "file", real / "other");
    EXPECT_EQ(Base::locationOf(file), real / "other");
    EXPECT_EQ(failureOf([] { (void)Base::locationOf(FileDescriptor()); }),
              std::errc::no_such_file_or_directory);
}

TEST(Entries, AreAllNamesWithTheirKinds) {
    using Kind = Base::DirectoryEntry::Kind;
    const TemporaryDirectory directory;
    directory.write("file", "");
    fs::create_directory(directory / "directory");
    fs::create_symlink("file", directory / "link");
    ASSERT_EQ(mkfifo((directory / "pipe").c_str(), 0600), 0);
    const FileDescriptor opened = Base::openDirectory(directory.path());
    for (int times = 0; times < 2; ++times) {
        std::map<std::string, Kind> kinds;
        for (const auto& [name, kind] : Base::entriesOf(opened))
            kinds[name] = kind;
        EXPECT_EQ(kinds, (std::map<std::string, Kind>{{"directory", Kind::kDirectory},
                                                      {"file", Kind::kRegular},
                                                      {"link", Kind::kLink},
                                                      {"pipe", Kind::kOther}}));
    }
}

class FileVersionTest : public testing::Test {
  protected:
    TemporaryDirectory directory_;
    const std::string file_ = directory_.write("file", "text");
    const FileVersion before_ = FileVersion::of(file_);
};

TEST_F(FileVersionTest, StaysWhileNothingChanges) {
    EXPECT_EQ(readFile(file_, kNoLimit), "text");
    EXPECT_EQ(FileVersion::of(file_), before_);
    EXPECT_EQ(FileVersion::of(openForReading(file_)), before_);
}

TEST_F(FileVersionTest, ChangesWithTheContent) {
    const auto time = fs::last_write_time(file_);
    directory_.write("file", "texts");
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
    const std::string other = directory_.write("other", "text");
    fs::last_write_time(other, time);
    fs::rename(other, file_);
    EXPECT_NE(FileVersion::of(file_), before_);
}

TEST_F(FileVersionTest, ThereMayBeNoFile) {
    EXPECT_EQ(FileVersion::of(directory_ / "none"), FileVersion());
    EXPECT_NE(before_, FileVersion());
    EXPECT_EQ(failureOf([] { (void)FileVersion::of(FileDescriptor()); }),
              std::errc::bad_file_descriptor);
}

TEST_F(FileVersionTest, TheIdentityIsTheSameByEveryPath) {
    fs::create_symlink("file", directory_ / "link");
    EXPECT_EQ(FileVersion::of(directory_ / "link").identity, before_.identity);
    EXPECT_NE(FileVersion::of(directory_.write("other", "")).identity, before_.identity);
}

TEST_F(FileVersionTest, TellsTheType) {
    EXPECT_TRUE(before_.isRegular());
    EXPECT_FALSE(before_.isDirectory());
    EXPECT_TRUE(FileVersion::of(directory_.path()).isDirectory());
    EXPECT_FALSE(FileVersion::of("/dev/null").isRegular());
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
        EXPECT_EQ(contentOf(directory_.path()), (DirectoryContent{{"users", content}}));
    }
    [[nodiscard]] unsigned mode() const {
        return static_cast<unsigned>(fs::status(path_).permissions());
    }

    const TemporaryDirectory directory_;
    const std::string path_ = directory_ / "users";
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
    directory_.write("users", "a longer text than the new one\n");
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
    fs::current_path(directory_.path());
    replaceFile("users", "one\n");
    fs::current_path(previous);
    expectOnlyFile("one\n");
}

TEST_F(ReplaceFileTest, WritesIntoADirectoryThatIsOpen) {
    const FileDescriptor directory = Base::openDirectory(directory_.path());
    replaceFile(directory, "users", "one\n", kPrivate);
    expectOnlyFile("one\n");
}

TEST_F(ReplaceFileTest, AReaderOfTheOldFileGoesOnReadingIt) {
    directory_.write("users", "old\n");
    std::ifstream stream(path_);
    replaceFile(path_, "new\n");
    std::string line;
    std::getline(stream, line);
    EXPECT_EQ(line, "old");
}

TEST_F(ReplaceFileTest, ALinkIsReplacedAndItsTargetStays) {
    const TemporaryDirectory elsewhere;
    fs::create_symlink(elsewhere.write("target", "old\n"), path_);
    replaceFile(path_, "new\n", kPrivate);
    expectOnlyFile("new\n");
    EXPECT_EQ(contentOf(elsewhere.path()), (DirectoryContent{{"target", "old\n"}}));
}

TEST_F(ReplaceFileTest, TheOwnerStaysTheSameWhereRootWrites) {
    if (geteuid() != 0)
        GTEST_SKIP() << "Only root can give files away";
    directory_.write("users", "old\n");
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
            directory_.write("users", "old\n");
        const DirectoryContent before = contentOf(directory_.path());
        for (const rlim_t size : {0U, 1U, 4096U, 99'999U}) {
            const ResourceLimit limit(RLIMIT_FSIZE, size);
            EXPECT_EQ(failureOf([&] { replaceFile(path_, text, kPrivate); }),
                      std::errc::file_too_large);
            EXPECT_EQ(contentOf(directory_.path()), before) << size;
        }
    }
    const ResourceLimit limit(RLIMIT_FSIZE, 100'000);
    replaceFile(path_, text, kPrivate);
    expectOnlyFile(text);
}

// The first descriptor is the directory's, the second one the temporary file's.
TEST_F(ReplaceFileTest, WithoutDescriptorsTheOldFileStays) {
#ifdef TESK_ADDRESS_SANITIZER
    GTEST_SKIP() << "the check of virtual calls opens a pipe, and takes its failure for a fault";
#endif
    directory_.write("users", "old\n");
    const int next = Base::openDirectory("/").get();
    for (const int more : {0, 1}) {
        EXPECT_EQ(failureOf([&] {
                      const ResourceLimit limit(RLIMIT_NOFILE, static_cast<rlim_t>(next + more));
                      replaceFile(path_, "new\n");
                  }),
                  std::errc::too_many_files_open)
            << more;
        expectOnlyFile("old\n");
    }
}

TEST_F(ReplaceFileTest, AMissingDirectoryIsReported) {
    EXPECT_EQ(failureOf([&] { replaceFile(directory_ / "missing/users", "new\n"); }),
              std::errc::no_such_file_or_directory);
}

TEST_F(ReplaceFileTest, ADirectoryIsNotReplaced) {
    fs::create_directory(path_);
    for (const std::string& path : {path_, path_ + "/"}) {
        EXPECT_EQ(failureOf([&] { replaceFile(path, "new\n"); }), std::errc::is_a_directory);
        EXPECT_EQ(contentOf(directory_.path()), (DirectoryContent{{"users", "(directory)"}}));
    }
}

// What processes left behind that were killed, or that run on another machine.
TEST_F(ReplaceFileTest, TemporaryNamesThatAreTakenAreNotUsed) {
    DirectoryContent expected;
    for (const std::string prefix : {"users.", ".export-"}) {
        for (int number = 1; number <= 100; ++number) {
            const std::string name =
                prefix + std::to_string(getpid()) + "-" + std::to_string(number);
            directory_.write(name, "part");
            expected[name] = "part";
        }
    }
    replaceFile(path_, "one\n");
    replaceFile(directory_ / "other", "two\n", {.temporaryPrefix = ".export-"});
    expected["users"] = "one\n";
    expected["other"] = "two\n";
    EXPECT_EQ(contentOf(directory_.path()), expected);
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

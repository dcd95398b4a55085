#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <limits>
#include <optional>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <system_error>

#include "ObjectManager/Base/OutputDirectory.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/TemporaryDirectory.h"
#include "Tests/Support/Threads.h"

namespace {

namespace fs = std::filesystem;
using Base::OutputDirectory;
using Outcome = OutputDirectory::Outcome;

// A limit of the process, for the time that this lives.
class Limit {
  public:
    Limit(int resource, rlim_t most) : resource_(resource) {
        getrlimit(static_cast<__rlimit_resource>(resource_), &before_);
        const rlimit limit = {.rlim_cur = most, .rlim_max = before_.rlim_max};
        setrlimit(static_cast<__rlimit_resource>(resource_), &limit);
    }
    Limit(const Limit&) = delete;
    Limit& operator=(const Limit&) = delete;
    ~Limit() { setrlimit(static_cast<__rlimit_resource>(resource_), &before_); }

  private:
    int resource_;
    rlimit before_ = {};
};

class OutputDirectoryTest : public testing::Test {
  protected:
    // What the message of an error says, with "OUT" for the directory; empty without one.
    template <typename Work>
    [[nodiscard]] std::string errorOf(const Work& work) const {
        try {
            work();
            return "";
        } catch (const std::system_error& error) {
            std::string text = error.what();
            const std::string path = directory_.path();
            for (auto at = text.find(path); at != std::string::npos; at = text.find(path))
                text.replace(at, path.size(), "OUT");
            return text;
        }
    }

    [[nodiscard]] DirectoryContent content() const { return contentOf(directory_.path()); }

    TemporaryDirectory directory_;
    OutputDirectory output_ = OutputDirectory::create(directory_.path(), "export");
};

TEST_F(OutputDirectoryTest, MakesTheDirectoriesThatAreMissing) {
    const OutputDirectory made = OutputDirectory::create(directory_ / "a/b", "export");
    made.createBelow("c").put("d", "text");
    made.createBelow("c").put("e", "");
    EXPECT_EQ(content(), (DirectoryContent{{"a", "(directory)"},
                                           {"a/b", "(directory)"},
                                           {"a/b/c", "(directory)"},
                                           {"a/b/c/d", "text"},
                                           {"a/b/c/e", ""}}));
    EXPECT_EQ(made.createBelow("c").path(), fs::path(directory_ / "a/b/c"));
}

TEST_F(OutputDirectoryTest, AFileInPlaceOfADirectoryIsAnError) {
    directory_.write("file", "");
    EXPECT_EQ(errorOf([&] { (void)OutputDirectory::create(directory_ / "file", "export"); }),
              "cannot make the directory OUT/file: Not a directory");
    EXPECT_EQ(errorOf([&] { (void)OutputDirectory::create(directory_ / "file/below", "export"); }),
              "cannot make the directory OUT/file/below: Not a directory");
    EXPECT_EQ(errorOf([&] { (void)output_.createBelow("file"); }),
              "cannot make the directory OUT/file: Not a directory");
}

TEST_F(OutputDirectoryTest, ADirectoryThatIsGoneIsAnError) {
    const OutputDirectory gone = output_.createBelow("gone");
    fs::remove(directory_ / "gone");
    EXPECT_EQ(errorOf([&] { (void)gone.createBelow("a"); }),
              "cannot make the directory OUT/gone/a: No such file or directory");
    EXPECT_EQ(errorOf([&] { gone.put("a", "text"); }),
              "cannot write OUT/gone/a: No such file or directory");
    EXPECT_EQ(errorOf([&] { gone.remove("a"); }),
              "cannot remove OUT/gone/a: No such file or directory");
}

TEST_F(OutputDirectoryTest, TheDirectoryItselfMayBeALinkButNoneBelow) {
    const TemporaryDirectory elsewhere;
    fs::create_directory_symlink(elsewhere.path(), directory_ / "link");
    OutputDirectory::create(directory_ / "link", "export").put("a", "text");
    EXPECT_EQ(contentOf(elsewhere.path()), (DirectoryContent{{"a", "text"}}));
    EXPECT_EQ(errorOf([&] { (void)output_.createBelow("link"); }),
              "files are not written through a symbolic link: OUT/link: Not a directory");
}

TEST_F(OutputDirectoryTest, AFileIsReplacedWhenItWouldChange) {
    EXPECT_EQ(output_.put("a", "first"), Outcome::kWritten);
    EXPECT_EQ(output_.put("a", "other"), Outcome::kWritten);
    EXPECT_EQ(output_.put("a", "longer text"), Outcome::kWritten);
    EXPECT_EQ(output_.put("a", "long"), Outcome::kWritten);
    EXPECT_EQ(content(), (DirectoryContent{{"a", "long"}}));
}

TEST_F(OutputDirectoryTest, AnUnchangedFileKeepsItsTimeStamp) {
    // Around the length of what is compared at once.
    for (const std::size_t length : {0U, 1U, 32767U, 32768U, 32769U, 100'000U}) {
        const std::string text(length, 'x');
        output_.put("a", text);
        const auto longAgo = fs::file_time_type::clock::now() - std::chrono::hours(1000);
        fs::last_write_time(directory_ / "a", longAgo);
        const auto before = fs::last_write_time(directory_ / "a");
        EXPECT_EQ(output_.put("a", text), Outcome::kUnchanged) << length;
        EXPECT_EQ(fs::last_write_time(directory_ / "a"), before) << length;
        if (length == 0)
            continue;
        std::string other = text;
        other.back() = 'y';
        EXPECT_EQ(output_.put("a", other), Outcome::kWritten) << length;
        EXPECT_GT(fs::last_write_time(directory_ / "a"), before) << length;
    }
}

TEST_F(OutputDirectoryTest, AStagedFileIsThereOnceItIsPublished) {
    output_.put("a", "first");
    EXPECT_EQ(output_.stage("a", "first"), nullptr);
    {
        const auto dropped = output_.stage("a", "dropped");
        const auto staged = output_.stage("a", "second");
        EXPECT_EQ(content().size(), 3U);
        EXPECT_EQ(content()["a"], "first");
        staged->publish();
        EXPECT_EQ(content()["a"], "second");
    }
    EXPECT_EQ(content(), (DirectoryContent{{"a", "second"}}));
    (void)output_.createBelow("below");
    const auto staged = output_.stage("below", "text");
    EXPECT_EQ(errorOf([&] { staged->publish(); }), "cannot write OUT/below: Is a directory");
}

TEST_F(OutputDirectoryTest, MakesTheDirectoriesOfAPath) {
    output_.createPath("a/b").put("c", "text");
    output_.createPath("a").put("d", "text");
    EXPECT_EQ(
        content(),
        (DirectoryContent{
            {"a", "(directory)"}, {"a/b", "(directory)"}, {"a/b/c", "text"}, {"a/d", "text"}}));
}

TEST_F(OutputDirectoryTest, AFileHasThePermissionsThatTheUmaskLeaves) {
    const mode_t before = umask(027);
    output_.put("a", "text");
    (void)output_.createBelow("b");
    umask(before);
    EXPECT_EQ(fs::status(directory_ / "a").permissions(), fs::perms(0640));
    EXPECT_EQ(fs::status(directory_ / "b").permissions(), fs::perms(0750));
}

TEST_F(OutputDirectoryTest, WhatIsNoRegularFileIsReplacedExceptADirectory) {
    const TemporaryDirectory elsewhere;
    const fs::path target = elsewhere.write("target", "text");
    fs::create_symlink(target, directory_ / "link");
    EXPECT_EQ(output_.put("link", "text"), Outcome::kWritten);
    ASSERT_EQ(mkfifo((directory_ / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(output_.put("pipe", "text"), Outcome::kWritten);
    (void)output_.createBelow("directory");
    EXPECT_EQ(errorOf([&] { output_.put("directory", "text"); }),
              "cannot write OUT/directory: Is a directory");
    EXPECT_EQ(content(),
              (DirectoryContent{{"link", "text"}, {"pipe", "text"}, {"directory", "(directory)"}}));
    EXPECT_EQ(contentOf(elsewhere.path()), (DirectoryContent{{"target", "text"}}));
}

// As on a disk that is full, but for the words: the file takes so many bytes and no more.
TEST_F(OutputDirectoryTest, WhatCannotBeWrittenToItsEndLeavesEverythingAsItWas) {
    (void)std::signal(SIGXFSZ, SIG_IGN);
    const std::string text(100'000, 'x');
    output_.put("old", "old text");
    const DirectoryContent before = content();
    for (const rlim_t most : {0U, 1U, 4096U, 99'999U}) {
        const Limit limit(RLIMIT_FSIZE, most);
        EXPECT_EQ(errorOf([&] { output_.put("old", text); }),
                  "cannot write OUT/old: File too large");
        EXPECT_EQ(errorOf([&] { output_.put("new", text); }),
                  "cannot write OUT/new: File too large");
        EXPECT_EQ(content(), before) << most;
    }
    const Limit limit(RLIMIT_FSIZE, 100'000);
    output_.put("old", text);
    EXPECT_EQ(content(), (DirectoryContent{{"old", text}}));
}

TEST_F(OutputDirectoryTest, AFileThatCannotBeMadeIsAnError) {
#ifdef TESK_ADDRESS_SANITIZER
    GTEST_SKIP() << "the check of virtual calls opens a pipe, and takes its failure for a fault";
#endif
    output_.put("old", "old text");
    const auto errorWithoutDescriptors = [&](const auto& work) {
        return errorOf([&] {
            const Limit limit(RLIMIT_NOFILE, 0);
            work();
        });
    };
    EXPECT_EQ(errorWithoutDescriptors([&] { output_.put("old", "text"); }),
              "cannot write OUT/old: Too many open files");
    EXPECT_EQ(errorWithoutDescriptors([&] { (void)output_.createBelow("below"); }),
              "cannot make the directory OUT/below: Too many open files");
    EXPECT_EQ(errorWithoutDescriptors([&] { (void)output_.files(); }),
              "cannot read the directory OUT: Too many open files");
    EXPECT_EQ(contentOfFile(directory_ / "old"), "old text");
}

TEST_F(OutputDirectoryTest, WhatAKilledProcessLeftBehindIsNotInTheWay) {
    // The names that this process uses next, and then some.
    for (int number = 1; number <= 50; ++number) {
        directory_.write(".tesk-export-" + std::to_string(getpid()) + "-" + std::to_string(number),
                         "part");
    }
    DirectoryContent expected = content();
    output_.put("a", "text");
    expected["a"] = "text";
    EXPECT_EQ(content(), expected);
}

TEST_F(OutputDirectoryTest, ListsRegularFilesInOrder) {
    output_.put("b", "");
    output_.put(".a", "");
    (void)output_.createBelow("directory").put("c", "");
    fs::create_symlink("b", directory_ / "link");
    ASSERT_EQ(mkfifo((directory_ / "pipe").c_str(), 0600), 0);
    const std::vector<std::string> expected = {".a", "b"};
    EXPECT_EQ(output_.files(), expected);
    EXPECT_EQ(output_.files(), expected);
}

TEST_F(OutputDirectoryTest, ReadsAFile) {
    output_.put("a", "0123456789");
    EXPECT_EQ(output_.contentOf("a", 10), "0123456789");
    EXPECT_EQ(output_.contentOf("none", 10), "");
    fs::create_symlink("a", directory_ / "link");
    (void)output_.createBelow("directory");
    EXPECT_THROW((void)output_.contentOf("a", 9), std::system_error);
    EXPECT_THROW((void)output_.contentOf("link", 10), std::system_error);
    EXPECT_THROW((void)output_.contentOf("directory", 10), std::system_error);
}

TEST_F(OutputDirectoryTest, RemovesAFile) {
    output_.put("a", "");
    output_.put("b", "");
    output_.remove("a");
    EXPECT_EQ(content(), (DirectoryContent{{"b", ""}}));
}

TEST_F(OutputDirectoryTest, SeveralThreadsWriteAtOnce) {
    const std::string text(10'000, 'x');
    runOnThreads(4, [&](int thread) {
        for (int number = 0; number < 50; ++number) {
            output_.put(std::to_string(thread) + "-" + std::to_string(number), text);
            output_.put("shared", text + std::to_string(thread));
        }
    });
    DirectoryContent all = content();
    EXPECT_EQ(all["shared"].size(), text.size() + 1);
    all.erase("shared");
    EXPECT_EQ(all.size(), 200U);
    EXPECT_TRUE(
        std::all_of(all.begin(), all.end(), [&](const auto& file) { return file.second == text; }));
}

TEST_F(OutputDirectoryTest, CanBeMoved) {
    OutputDirectory other = OutputDirectory::create(directory_ / "other", "export");
    other = std::move(output_);
    other.put("a", "text");
    const OutputDirectory last = std::move(other);
    last.put("b", "text");
    EXPECT_EQ(content(),
              (DirectoryContent{{"a", "text"}, {"b", "text"}, {"other", "(directory)"}}));
}

// Their numbers say nothing: an export may run in a container, where processes have other numbers.
TEST_F(OutputDirectoryTest, RemovesTemporaryFilesOnceItIsLocked) {
    for (const std::string& name :
         {".tesk-export-" + std::to_string(getpid()) + "-1", std::string(".tesk-export-1-23"),
          std::string(".tesk-export-2147483647-18446744073709551615")})
        directory_.write(name, "part");
    directory_.write("CIM_Foo.xsd", "text");
    EXPECT_EQ(output_.removeUnfinishedFiles(), 0U);
    output_.lock();
    EXPECT_EQ(output_.removeUnfinishedFiles(), 3U);
    EXPECT_EQ(content(), (DirectoryContent{{"CIM_Foo.xsd", "text"}}));
    EXPECT_EQ(output_.removeUnfinishedFiles(), 0U);
}

TEST_F(OutputDirectoryTest, IsLockedByOneExportAtATime) {
    OutputDirectory other = OutputDirectory::create(directory_.path(), "export");
    directory_.write(".tesk-export-1-1", "part");
    {
        OutputDirectory first = OutputDirectory::create(directory_.path(), "export");
        first.lock();
        try {
            other.lock();
            FAIL();
        } catch (const std::system_error& error) {
            EXPECT_EQ(error.what(), "another export or import is at work in " +
                                        directory_.path().string() +
                                        ": Resource temporarily unavailable");
        }
        EXPECT_EQ(other.removeUnfinishedFiles(), 0U);
    }
    other.lock();
    EXPECT_EQ(other.removeUnfinishedFiles(), 1U);
}

TEST_F(OutputDirectoryTest, KeepsFilesWhoseNamesOnlyLookLikeTemporaryOnes) {
    const std::string prefix = ".tesk-export-";
    const std::string ended = "4711";
    for (const std::string& process :
         {std::string(), "-" + ended, "+" + ended, "0" + ended, " " + ended, ended + "x",
          std::string("0"), std::string("-1")})
        directory_.write(prefix + process + "-1", "text");
    for (const std::string& name :
         {prefix + ended, prefix + ended + "-", prefix + ended + "-0", prefix + ended + "-1x",
          prefix + ended + "-1-1", prefix + ended + "--1", prefix + ended + "-1.xsd",
          "tesk-export-" + ended + "-1", ".tesk-import-" + ended + "-1",
          " .tesk-export-" + ended + "-1", prefix})
        directory_.write(name, "text");
    (void)output_.createBelow(prefix + ended + "-4").put(prefix + ended + "-1", "text");
    const DirectoryContent before = content();
    output_.lock();
    EXPECT_EQ(output_.removeUnfinishedFiles(), 0U);
    EXPECT_EQ(content(), before);
}

TEST(OutputDirectory, NamesThatAreNoneInADirectoryAreRefused) {
    using namespace std::string_view_literals;
    const std::string longest(255, 'a');
    const std::string tooLong(256, 'a');
    const std::pair<std::string_view, std::string_view> cases[] = {
        {"CIM_Foo", ""},
        {"CIM_Foo.wsdl", ""},
        {"a", ""},
        {"...", ""},
        {".a", ""},
        {"..a", ""},
        {"Größe", ""},
        {longest, ""},
        {"", "is empty"},
        {".", "is \".\""},
        {"..", "is \"..\""},
        {"../CIM_Foo", "has a \"/\""},
        {"/", "has a \"/\""},
        {"CIM_Foo\0.xsd"sv, "has a zero byte"},
        {tooLong, "is longer than 255 bytes"},
    };
    for (const auto& [name, fault] : cases)
        EXPECT_EQ(OutputDirectory::validateName(name), fault) << name;
}

}  // namespace

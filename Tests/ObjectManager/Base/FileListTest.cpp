#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "ObjectManager/Base/FileList.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using Base::FileList;
using Base::OutputDirectory;

const FileList::Kind kKind = {
    .file = ".list",
    .heading = "# Texts.\n",
    .content = "a text",
    .isOfKind = [](std::string_view name) { return name.size() > 4 && name.ends_with(".txt"); }};

class FileListTest : public testing::Test {
  protected:
    // Lists files and removes those that are not made any more, when "here.txt" and "Case.txt" are.
    // Returns what is left.
    [[nodiscard]] DirectoryContent prune(const std::vector<std::string>& listed,
                                         std::size_t expectedRemoved) const {
        FileList list(kKind);
        for (const std::string& file : listed)
            list.add(file);
        EXPECT_EQ(removeStale(list), expectedRemoved);
        return contentOf(directory_.path());
    }

    std::size_t removeStale(FileList& list) const {
        return list.removeStale(output_, [](const std::string& file) -> std::string {
            if (file == "here.txt")
                return file;
            return file == "CASE.txt" || file == "Case.txt" ? "Case.txt" : "";
        });
    }

    TemporaryDirectory directory_;
    OutputDirectory output_ = OutputDirectory::create(directory_.path(), "test");
};

TEST_F(FileListTest, IsKeptInAFile) {
    FileList list(kKind);
    for (const char* const file : {"b.txt", "a.txt", "b.txt"})
        list.add(file);
    list.write(output_);
    EXPECT_EQ(contentOf(directory_.path()),
              (DirectoryContent{{".list", "# Texts.\na.txt\nb.txt\n"}}));
    FileList again = FileList::read(output_, kKind);
    EXPECT_EQ(again.fault(), "");
    again.add("\xC3\xA9.txt");
    again.write(output_);
    EXPECT_EQ(contentOf(directory_.path()),
              (DirectoryContent{{".list", "# Texts.\na.txt\nb.txt\n\xC3\xA9.txt\n"}}));
}

TEST_F(FileListTest, IsEmptyWhereNoneIsKept) {
    const FileList list = FileList::read(output_, kKind);
    EXPECT_EQ(list.fault(), "");
    list.write(output_);
    EXPECT_EQ(contentOf(directory_.path()), (DirectoryContent{{".list", "# Texts.\n"}}));
}

// Names that lead elsewhere, that the command has not made, or that are half a name.
TEST_F(FileListTest, WithAnotherLineThanANameIsNotUsed) {
    for (const std::string line : {"../a.txt\n", "/a.txt\n", "below/a.txt\n", "..\n", "\n",
                                   ".txt\n", "a.html\n", ".list\n", "a.txt\r\n", "b.txt"}) {
        directory_.write(".list", "gone.txt\n" + line);
        directory_.write("gone.txt", "");
        FileList list = FileList::read(output_, kKind);
        EXPECT_EQ(list.fault(), "it has a line that is no name of a text") << line;
        EXPECT_EQ(removeStale(list), 0U);
    }
}

TEST_F(FileListTest, HoldsNoNameThatItCouldNotRead) {
    FileList list(kKind);
    for (const char* const name : {"../a.txt", "a\n.txt", "a.html", ".txt", "#.txt", "# a.txt", ""})
        list.add(name);
    list.write(output_);
    EXPECT_EQ(contentOf(directory_.path())[".list"], kKind.heading);
}

TEST_F(FileListTest, IsNotReadThroughALinkNorFromAPipe) {
    const TemporaryDirectory elsewhere;
    fs::create_symlink(elsewhere.write("list", "gone.txt\n"), directory_ / ".list");
    EXPECT_EQ(FileList::read(output_, kKind).fault(), "Too many levels of symbolic links");
    fs::remove(directory_ / ".list");
    ASSERT_EQ(mkfifo((directory_ / ".list").c_str(), 0600), 0);
    EXPECT_EQ(FileList::read(output_, kKind).fault().substr(0, 24), "it is not a regular file");
}

TEST_F(FileListTest, FilesThatAreNotListedStay) {
    for (const char* const file : {"gone.txt", "GONE2.txt", "notes"})
        directory_.write(file, "");
    EXPECT_EQ(prune({"gone.txt", "gone2.txt", "here.txt"}, 1),
              (DirectoryContent{{"GONE2.txt", ""}, {"notes", ""}}));
}

TEST_F(FileListTest, AFileUnderAFormerCaseIsRemovedBesideThePresentOneOnly) {
    directory_.write("CASE.txt", "");
    EXPECT_EQ(prune({"CASE.txt", "Case.txt"}, 0).size(), 1U);
    directory_.write("Case.txt", "");
    EXPECT_EQ(prune({"CASE.txt", "Case.txt"}, 1), (DirectoryContent{{"Case.txt", ""}}));
}

TEST_F(FileListTest, DirectoriesAndLinksStayAndAreNotFollowed) {
    fs::create_directory(directory_ / "gone.txt");
    const TemporaryDirectory elsewhere;
    const fs::path target = elsewhere.write("gone2.txt", "");
    fs::create_symlink(target, directory_ / "gone2.txt");
    const DirectoryContent before = contentOf(directory_.path());
    EXPECT_EQ(prune({"gone.txt", "gone2.txt"}, 0), before);
    EXPECT_TRUE(fs::exists(target));
}

}  // namespace

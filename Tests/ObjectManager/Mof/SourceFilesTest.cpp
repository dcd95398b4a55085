#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <system_error>
#include <vector>

#include "ObjectManager/Mof/SourceFiles.h"
#include "Tests/Support/MofDirectory.h"

namespace {

// The paths of the files in a directory, relative to the test's own.
std::vector<std::string> pathsIn(const MofDirectory& directory, const char* name = "") {
    const std::string path = directory.path(name);
    std::vector<std::string> paths;
    for (const Mof::DirectoryFile& file : Mof::mofFilesIn(path))
        paths.push_back(file.path.substr(directory.path("").size()));
    return paths;
}

using Paths = std::vector<std::string>;

TEST(MofFilesIn, ListsTheFilesOfAllDirectoriesBelowInTheOrderOfTheirPaths) {
    const MofDirectory directory;
    directory.write("b.mof", "");
    directory.write("a/z.mof", "");
    directory.write("a/y/x.mof", "");
    directory.write("a.mof", "");
    std::filesystem::create_directory(directory.path("empty"));
    EXPECT_EQ(pathsIn(directory), Paths({"a.mof", "a/y/x.mof", "a/z.mof", "b.mof"}));
}

TEST(MofFilesIn, ListsFilesWhoseNameEndsWithMofInAnyCase) {
    const MofDirectory directory;
    for (const char* const name :
         {"A.MOF", "b.Mof", "c.mof", "d.mof.txt", "e.mo", "fmof", ".mof", "g.mofs", "h.\xADmof"})
        directory.write(name, "");
    EXPECT_EQ(pathsIn(directory), Paths({"A.MOF", "b.Mof", "c.mof"}));
}

TEST(MofFilesIn, ADirectoryIsNoFileWhateverItsName) {
    const MofDirectory directory;
    directory.write("directory.mof/a.mof", "");
    EXPECT_EQ(pathsIn(directory), Paths({"directory.mof/a.mof"}));
}

TEST(MofFilesIn, LinksToFilesAndDirectoriesAreFollowed) {
    const MofDirectory directory;
    directory.write("elsewhere/a.mof", "");
    directory.write("elsewhere/below/b.mof", "");
    directory.write("here/c.mof", "");
    std::filesystem::create_symlink("../elsewhere", directory.path("here/link"));
    std::filesystem::create_symlink("../elsewhere/a.mof", directory.path("here/d.mof"));
    std::filesystem::create_symlink("../elsewhere/a.mof", directory.path("here/e"));
    EXPECT_EQ(pathsIn(directory, "here"),
              Paths({"here/c.mof", "here/d.mof", "here/link/a.mof", "here/link/below/b.mof"}));
}

TEST(MofFilesIn, ADirectoryThatIsReachedAgainIsReadOnce) {
    const MofDirectory directory;
    directory.write("z/a.mof", "");
    std::filesystem::create_symlink(".", directory.path("self"));
    std::filesystem::create_symlink("..", directory.path("z/up"));
    std::filesystem::create_symlink("z", directory.path("a"));
    EXPECT_EQ(pathsIn(directory), Paths({"z/a.mof"}));
}

TEST(MofFilesIn, TheFirstOfTwoLinksCounts) {
    const MofDirectory directory;
    directory.write("elsewhere/a.mof", "");
    directory.write("here/b.mof", "");
    std::filesystem::create_symlink("../elsewhere", directory.path("here/y"));
    std::filesystem::create_symlink("../elsewhere", directory.path("here/x"));
    EXPECT_EQ(pathsIn(directory, "here"), Paths({"here/b.mof", "here/x/a.mof"}));
}

TEST(MofFilesIn, ABrokenLinkIsListedWhereItHasTheName) {
    const MofDirectory directory;
    directory.write("b.mof", "");
    std::filesystem::create_symlink("nowhere", directory.path("a.mof"));
    std::filesystem::create_symlink("nowhere", directory.path("c"));
    EXPECT_EQ(pathsIn(directory), Paths({"a.mof", "b.mof"}));
}

TEST(MofFilesIn, AFileHasTheSameIdentityByEveryPath) {
    const MofDirectory directory;
    directory.write("a.mof", "");
    directory.write("b.mof", "");
    std::filesystem::create_symlink("a.mof", directory.path("c.mof"));
    const std::vector<Mof::DirectoryFile> files = Mof::mofFilesIn(directory.path(""));
    ASSERT_EQ(files.size(), 3U);
    EXPECT_TRUE(files[0].identity == files[2].identity);
    EXPECT_FALSE(files[0].identity == files[1].identity);
}

TEST(MofFilesIn, ADirectoryThatCannotBeReadIsNamed) {
    const MofDirectory directory;
    const std::string missing = directory.path("missing");
    try {
        (void)Mof::mofFilesIn(missing);
        ADD_FAILURE() << "the directory is read";
    } catch (const std::filesystem::filesystem_error& error) {
        EXPECT_EQ(error.path1(), missing);
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
    }
}

}  // namespace

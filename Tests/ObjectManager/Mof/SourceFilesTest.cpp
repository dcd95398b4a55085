#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <system_error>
#include <vector>

#include "ObjectManager/Mof/SourceFiles.h"
#include "Tests/Support/MofFolder.h"

namespace {

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

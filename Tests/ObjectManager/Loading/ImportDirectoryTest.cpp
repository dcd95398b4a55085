#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <system_error>
#include <vector>

#include "ObjectManager/Loading/ImportDirectory.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/ResourceLimit.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

namespace fs = std::filesystem;
using namespace Loading;
using Base::OutputDirectory;

class ImportDirectoryTest : public testing::Test {
  protected:
    [[nodiscard]] ImportResult write(const std::vector<ImportedNamespace>& namespaces,
                                     const ImportOptions& options = {}) const {
        return writeImport(namespaces, output_, options);
    }

    // What is there but for the lists.
    [[nodiscard]] DirectoryContent content() const {
        DirectoryContent content = contentOf(directory_.path());
        std::erase_if(content, [](const auto& file) {
            return fs::path(file.first).filename() == kImportListFile;
        });
        return content;
    }

    [[nodiscard]] std::string refusalOf(const std::vector<ImportedNamespace>& namespaces) const {
        try {
            (void)write(namespaces);
            return "none";
        } catch (const TeskBaseException& error) {
            EXPECT_EQ(contentOf(directory_.path()), DirectoryContent());
            return error.getMessage().data();
        }
    }

    TemporaryDirectory directory_;
    OutputDirectory output_ = OutputDirectory::create(directory_.path(), "import");
};

const ImportOptions kPrune = {.prune = true, .isStopped = [] { return false; }};

TEST_F(ImportDirectoryTest, HasADirectoryForEachNamespace) {
    const ImportResult result = write({{"root", {{"A.mof", "class A {};"}, {"main.mof", "a"}}},
                                       {"root/x", {{"B.mof", "class B {};"}}}});
    EXPECT_EQ(content(), (DirectoryContent{{"root", "(directory)"},
                                           {"root/A.mof", "class A {};"},
                                           {"root/main.mof", "a"},
                                           {"root/x", "(directory)"},
                                           {"root/x/B.mof", "class B {};"}}));
    EXPECT_EQ(result.written, 3U);
    EXPECT_EQ(result.bytes, 23U);
    EXPECT_EQ(contentOfFile(directory_ / "root/.tesk-import"),
              "# The files that \"tesk import\" has written here, of which --prune removes those "
              "that are not imported any more.\nA.mof\nmain.mof\n");
}

TEST_F(ImportDirectoryTest, UnchangedFilesKeepTheirTimeStamps) {
    (void)write({{"root", {{"A.mof", "a"}, {"B.mof", "b"}}}});
    const auto past = fs::file_time_type::clock::now() - std::chrono::hours(1);
    for (const char* const file : {"root/A.mof", "root/B.mof", "root/.tesk-import"})
        fs::last_write_time(directory_ / file, past);
    const ImportResult result = write({{"root", {{"A.mof", "a"}, {"B.mof", "changed"}}}});
    EXPECT_EQ(result.written, 1U);
    EXPECT_EQ(result.unchanged, 1U);
    EXPECT_EQ(fs::last_write_time(directory_ / "root/A.mof"), past);
    EXPECT_NE(fs::last_write_time(directory_ / "root/B.mof"), past);
    EXPECT_EQ(fs::last_write_time(directory_ / "root/.tesk-import"), past);
}

TEST_F(ImportDirectoryTest, PrunesWhatImportsHaveWrittenAndNothingElse) {
    (void)write({{"root", {{"A.mof", "a"}, {"B.mof", "b"}}}, {"other", {{"C.mof", "c"}}}});
    directory_.write("root/notes.txt", "");
    directory_.write("root/Own.mof", "");
    directory_.write("root/.tesk-import-1-1", "part");
    EXPECT_EQ(write({{"root", {{"B.mof", "b"}}}}).removed, 0U);
    EXPECT_EQ(write({{"root", {{"B.mof", "b"}}}}, kPrune).removed, 2U);
    EXPECT_EQ(content(), (DirectoryContent{{"other", "(directory)"},
                                           {"other/C.mof", "c"},
                                           {"root", "(directory)"},
                                           {"root/B.mof", "b"},
                                           {"root/Own.mof", ""},
                                           {"root/notes.txt", ""}}));
    EXPECT_EQ(write({{"root", {{"B.mof", "b"}}}}, kPrune).removed, 0U);
}

TEST_F(ImportDirectoryTest, ANameInAnotherCaseIsPrunedBesideTheNewOne) {
    (void)write({{"root", {{"CIM_A.mof", "a"}}}});
    EXPECT_EQ(write({{"root", {{"Cim_A.mof", "a"}}}}, kPrune).removed, 1U);
    EXPECT_EQ(content(), (DirectoryContent{{"root", "(directory)"}, {"root/Cim_A.mof", "a"}}));
}

TEST_F(ImportDirectoryTest, WithAListThatCannotBeReadNothingIsListedOrRemoved) {
    fs::create_directory(directory_ / "root");
    directory_.write("root/.tesk-import", "../A.mof\n");
    directory_.write("root/A.mof", "");
    const ImportResult result = write({{"root", {{"B.mof", "b"}}}}, kPrune);
    EXPECT_EQ(result.removed, 0U);
    EXPECT_EQ(result.failures,
              std::vector<std::string>{(directory_ / "root/.tesk-import").string() +
                                       " cannot be read, so no file is listed or removed there: "
                                       "it has a line that is no name of a MOF file"});
    EXPECT_EQ(content(),
              (DirectoryContent{{"root", "(directory)"}, {"root/A.mof", ""}, {"root/B.mof", "b"}}));
    EXPECT_EQ(contentOfFile(directory_ / "root/.tesk-import"), "../A.mof\n");
}

// At whatever file it is stopped, also in the second of two namespaces.
TEST_F(ImportDirectoryTest, StoppedItLeavesEverythingAsItWas) {
    (void)write({{"root", {{"A.mof", "old"}, {"main.mof", "old"}}}, {"x", {}}});
    const DirectoryContent before = contentOf(directory_.path());
    const std::vector<ImportedNamespace> changed = {
        {"root", {{"A.mof", "new"}, {"B.mof", "new"}, {"main.mof", "new"}}},
        {"x", {{"C.mof", "new"}}}};
    for (int calls = 0; calls < 4; ++calls) {
        int called = 0;
        const ImportOptions options = {.prune = true,
                                       .isStopped = [&] { return called++ == calls; }};
        EXPECT_TRUE(write(changed, options).isStopped);
        EXPECT_EQ(contentOf(directory_.path()), before);
    }
    EXPECT_FALSE(write(changed).isStopped);
    EXPECT_EQ(content()["x/C.mof"], "new");
}

TEST_F(ImportDirectoryTest, AFileThatCannotBeWrittenLeavesEverythingAsItWas) {
    (void)write({{"root", {{"A.mof", "old"}}}});
    const DirectoryContent before = contentOf(directory_.path());
    const ResourceLimit limit(RLIMIT_FSIZE, 1000);
    EXPECT_THROW((void)write({{"root", {{"A.mof", "new"}, {"B.mof", std::string(1001, 'x')}}}}),
                 std::system_error);
    EXPECT_EQ(contentOf(directory_.path()), before);
}

TEST_F(ImportDirectoryTest, AnotherImportAtWorkIsNotDisturbed) {
    OutputDirectory other = OutputDirectory::create(directory_ / "root", "import");
    other.lock();
    EXPECT_THROW((void)write({{"root", {{"A.mof", "a"}}}}), std::system_error);
    EXPECT_EQ(content(), (DirectoryContent{{"root", "(directory)"}}));
}

TEST_F(ImportDirectoryTest, NamespacesThatCannotBePathsAreRefusedBeforeAllElse) {
    const auto refused = [](const std::string& name, const std::string& reason) {
        return "the namespace \"" + name + "\" cannot be the path of a directory: " + reason;
    };
    const ImportedNamespace good = {"a", {{"B.mof", ""}}};
    EXPECT_EQ(refusalOf({good, {"../a", {}}}), refused("../a", "a name in it is \"..\""));
    EXPECT_EQ(refusalOf({good, {"/a", {}}}), refused("/a", "a name in it is empty"));
    EXPECT_EQ(refusalOf({good, {"", {}}}), refused("", "a name in it is empty"));
    EXPECT_EQ(refusalOf({good, {"A", {}}}), refused("A", "there are two of that name"));
    EXPECT_EQ(refusalOf({good, {"a/b.MOF", {}}}),
              refused("a/b.MOF", "the import has a file \"b.MOF\""));
    EXPECT_EQ(refusalOf({{"a/b.mof/c", {}}, good}),
              refused("a/b.mof/c", "the import has a file \"b.mof\""));
    EXPECT_EQ(refusalOf({good, {"a/.tesk-IMPORT", {}}}),
              refused("a/.tesk-IMPORT", "the import has a file \".tesk-IMPORT\""));
    EXPECT_EQ(refusalOf({good, {".tesk-import-1-1", {}}}),
              refused(".tesk-import-1-1", "the import has a file \".tesk-import-1-1\""));
}

}  // namespace

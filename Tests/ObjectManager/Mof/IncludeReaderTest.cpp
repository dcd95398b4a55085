#include <filesystem>
#include <gtest/gtest.h>
#include <string>
#include <sys/stat.h>
#include <thread>
#include <utility>
#include <vector>

#include "ObjectManager/Mof/IncludeReader.h"
#include "Tests/ObjectManager/Mof/DeclarationText.h"
#include "Tests/Support/MofDirectory.h"

namespace {

using Mof::Compilation;

Mof::CompilerOptions withIncludePath(std::vector<std::string> includePath) {
    Mof::CompilerOptions options;
    options.includePath = std::move(includePath);
    return options;
}

class IncludeReaderTest : public testing::Test {
  protected:
    // The declarations of a file or directory, not yet checked.
    Compilation read(const char* name, const Mof::CompilerOptions& options = {}) {
        Compilation compilation;
        Mof::Reporter reporter(compilation.files, compilation.diagnostics, options.diagnostics);
        Mof::readFiles({directory_.path(name)}, options, compilation, reporter);
        return compilation;
    }

    void write(const char* name, const std::string& mof) { directory_.write(name, mof); }

    std::string shown(const Compilation& compilation) {
        return directory_.shown(compilation.diagnostics);
    }

    MofDirectory directory_;
};

TEST_F(IncludeReaderTest, IncludedFilesAreFoundBesideTheFile) {
    write("main.mof", "#pragma include (\"sub/b.mof\")\nclass A_A : A_B {};");
    write("sub/b.mof", "#pragma include (\"c.mof\")\nclass A_B : A_C {};");
    write("sub/c.mof", "class A_C {};");
    const Compilation compilation = read("main.mof");
    EXPECT_EQ(shown(compilation), "");
    EXPECT_EQ(textOf(compilation), "class A_A : A_B\nclass A_B : A_C\nclass A_C\n");
}

TEST_F(IncludeReaderTest, BackslashesSeparateDirectoriesToo) {
    write("main.mof", "#pragma include (\"sub\\new\\b.mof\")");
    write("sub/new/b.mof", "class A_B {};");
    EXPECT_EQ(textOf(read("main.mof")), "class A_B\n");
}

TEST_F(IncludeReaderTest, IncludedFilesAreFoundOnTheIncludePath) {
    write("main.mof", "#pragma include (\"b.mof\")");
    write("first/other.mof", "");
    write("second/b.mof", "class A_B {};");
    const Compilation compilation =
        read("main.mof", withIncludePath({directory_.path("first"), directory_.path("second")}));
    EXPECT_EQ(textOf(compilation), "class A_B\n");
}

TEST_F(IncludeReaderTest, AMissingIncludedFileIsAnError) {
    write("main.mof", "class A_B {};\n  #pragma include (\"b.mof\")\n");
    EXPECT_EQ(shown(read("main.mof")),
              "main.mof:2:3: error: the included file \"b.mof\" is not there\n"
              "  #pragma include (\"b.mof\")\n"
              "  ^\n");
}

TEST_F(IncludeReaderTest, AnIncludeCycleIsAnError) {
    write("main.mof", "#pragma include (\"b.mof\")");
    write("b.mof", "#pragma include (\"b.mof\")\n#pragma include (\"main.mof\")");
    EXPECT_EQ(shown(read("main.mof")),
              "b.mof:1:1: error: the file \"b.mof\" includes itself\n"
              "#pragma include (\"b.mof\")\n"
              "^\n"
              "b.mof:2:1: error: the file \"main.mof\" includes itself by way of others\n"
              "#pragma include (\"main.mof\")\n"
              "^\n");
}

TEST_F(IncludeReaderTest, AFileIncludedTwiceIsReadOnce) {
    write("main.mof", "#pragma include (\"b.mof\")\n#pragma include (\"./b.mof\")");
    write("b.mof", "class A_B {};");
    const Compilation compilation = read("main.mof");
    EXPECT_EQ(textOf(compilation), "class A_B\n");
    EXPECT_FALSE(compilation.hasErrors());
    EXPECT_EQ(shown(compilation),
              "main.mof:2:1: warning: the file \"./b.mof\" is included already and not read again\n"
              "#pragma include (\"./b.mof\")\n"
              "^\n");
}

TEST_F(IncludeReaderTest, ADirectoryIsReadWithThoseBelowItInTheOrderOfNames) {
    write("b.mof", "class A_B {};");
    write("a/z.mof", "class A_Z {};");
    write("c.txt", "no MOF");
    const Compilation compilation = read("");
    EXPECT_EQ(shown(compilation), "");
    EXPECT_EQ(textOf(compilation), "class A_Z\nclass A_B\n");
}

TEST_F(IncludeReaderTest, ADirectoryMayHoldAFileThatIncludesTheOthers) {
    write("a.mof", "#pragma include (\"b.mof\")");
    write("b.mof", "class A_B {};");
    const Compilation compilation = read("");
    EXPECT_EQ(shown(compilation), "");
    EXPECT_EQ(textOf(compilation), "class A_B\n");
}

// Like the DMTF's schema, whose main file is in the middle.
TEST_F(IncludeReaderTest, TheOrderOfADirectoryMakesNoDifferenceToAFileThatIncludesTheOthers) {
    write("a.mof", "class A_A {};");
    write("main.mof", "#pragma include (\"a.mof\")\n#pragma include (\"z.mof\")");
    write("more.mof", "#pragma include (\"a.mof\")\n#pragma include (\"z.mof\")");
    write("z.mof", "class A_Z {};");
    const Compilation compilation = read("");
    EXPECT_EQ(shown(compilation), "");
    EXPECT_EQ(textOf(compilation), "class A_A\nclass A_Z\n");
}

TEST_F(IncludeReaderTest, AFileOutsideADirectoryThatIsIncludedTwiceIsAWarning) {
    write("directory/a.mof", "#pragma include (\"../b.mof\")\n#pragma include (\"../b.mof\")");
    write("b.mof", "class A_B {};");
    Mof::CompilerOptions options;
    options.includePath = {directory_.path("")};
    EXPECT_EQ(
        shown(read("directory", options)),
        "directory/a.mof:2:1: warning: the file \"../b.mof\" is included already and not read "
        "again\n"
        "#pragma include (\"../b.mof\")\n"
        "^\n");
}

// Nothing ever writes to the pipe.
TEST_F(IncludeReaderTest, APipeInADirectoryOrIncludedIsAnErrorAndNotOpened) {
    write("directory/b.mof", "#pragma include (\"../pipe\")");
    for (const char* const name : {"pipe", "directory/a.mof"})
        ASSERT_EQ(mkfifo(directory_.path(name).c_str(), 0600), 0);
    EXPECT_EQ(
        shown(read("directory")),
        "directory/a.mof: error: cannot be read: it is not a regular file; a pipe or a device "
        "could not be read again at a reload\n"
        "directory/b.mof:1:1: error: the included file \"../pipe\" cannot be read: it is not a "
        "regular file; a pipe or a device could not be read again at a reload\n"
        "#pragma include (\"../pipe\")\n"
        "^\n");
}

TEST_F(IncludeReaderTest, APipeThatIsNamedByTheUserIsAnErrorAndNotOpened) {
    ASSERT_EQ(mkfifo(directory_.path("pipe").c_str(), 0600), 0);
    EXPECT_EQ(shown(read("pipe")),
              "pipe: error: cannot be read: it is not a regular file; a pipe or a device could not "
              "be read again at a reload\n");
}

// What a model that came from a stranger could show of this machine.
constexpr const char* kElsewhere =
    " is elsewhere: files are read below \"model\" only; include_path and --include-path add "
    "directories\n";

TEST_F(IncludeReaderTest, NoLineOfAFileOutsideTheModelIsShown) {
    write("secret", "root:$6$x:1::::::");
    const std::string secret = directory_.path("secret");
    std::filesystem::create_directories(directory_.path("model"));
    std::filesystem::create_symlink("../secret", directory_.path("model/relative.mof"));
    std::filesystem::create_symlink(secret, directory_.path("model/absolute.mof"));
    std::filesystem::create_directory_symlink("..", directory_.path("model/above"));
    for (const std::string& include :
         {secret, std::string("../secret"), std::string("above/secret"),
          std::string("relative.mof"), std::string("absolute.mof")}) {
        write("model/main.mof", "#pragma include (\"" + include + "\")\n");
        const std::string all = shown(read("model/main.mof"));
        EXPECT_NE(all.find(kElsewhere), std::string::npos) << all;
        EXPECT_EQ(all.find("root:"), std::string::npos) << all;
    }
}

TEST_F(IncludeReaderTest, ALinkInADirectoryThatLeadsElsewhereIsAnError) {
    write("secret.mof", "root:$6$x:1::::::");
    write("model/a.mof", "class A_B {};");
    std::filesystem::create_symlink("../secret.mof", directory_.path("model/b.mof"));
    EXPECT_EQ(shown(read("model")),
              "model/b.mof: error: is a link that leads elsewhere: files are read below \"model\" "
              "only; include_path and --include-path add directories\n");
}

TEST_F(IncludeReaderTest, LinksMayLeadBelowTheModelAndTheIncludePath) {
    write("common/c.mof", "class A_C {};");
    write("model/below/b.mof", "class A_B {};");
    std::filesystem::create_symlink(directory_.path("model/below/b.mof"),
                                    directory_.path("model/b.mof"));
    std::filesystem::create_symlink("../common/c.mof", directory_.path("model/c.mof"));
    write("model/main.mof", "#pragma include (\"b.mof\")\n#pragma include (\"c.mof\")");
    std::filesystem::create_directory_symlink("model", directory_.path("link"));
    Mof::CompilerOptions options;
    options.includePath = {directory_.path("common")};
    const Compilation compilation = read("link/main.mof", options);
    EXPECT_EQ(shown(compilation), "");
    EXPECT_EQ(textOf(compilation), "class A_B\nclass A_C\n");
}

// "model" is the beginning of "model2".
TEST_F(IncludeReaderTest, ADirectoryWithALongerNameIsElsewhere) {
    write("model2/b.mof", "class A_B {};");
    write("model/main.mof", "#pragma include (\"../model2/b.mof\")\n");
    EXPECT_EQ(shown(read("model/main.mof")),
              "model/main.mof:1:1: error: the included file \"../model2/b.mof\"" +
                  std::string(kElsewhere) + "#pragma include (\"../model2/b.mof\")\n^\n");
}

TEST_F(IncludeReaderTest, AllFilesTogetherMayHaveALargestSize) {
    write("main.mof", "class A_B {};\n#pragma include (\"b.mof\")");
    write("b.mof", "class A_C {};");
    Mof::CompilerOptions options;
    options.maxTotalSize = 52;
    EXPECT_EQ(shown(read("main.mof", options)), "");
    options.maxTotalSize = 51;
    EXPECT_EQ(shown(read("main.mof", options)),
              "b.mof: error: is not read: with it the model would be larger than "
              "repository.max_model_size\n");
}

TEST_F(IncludeReaderTest, AnIncludedDirectoryIsAnError) {
    write("directory/b.mof", "");
    write("main.mof", "#pragma include (\"directory\")");
    EXPECT_EQ(
        shown(read("main.mof")),
        "main.mof:1:1: error: the included file \"directory\" cannot be read: it is a directory\n"
        "#pragma include (\"directory\")\n"
        "^\n");
}

TEST_F(IncludeReaderTest, AFileThatCannotBeReadIsAnError) {
    const Compilation compilation = read("missing.mof");
    EXPECT_EQ(shown(compilation),
              "missing.mof: error: cannot be read: No such file or directory\n");
    EXPECT_TRUE(compilation.hasErrors());
}

TEST_F(IncludeReaderTest, AFileOfADirectoryThatCannotBeReadIsAnErrorAndTheOthersAreRead) {
    std::filesystem::create_symlink("nowhere", directory_.path("a.mof"));
    write("b.mof", "class A_B {};");
    const Compilation compilation = read("");
    EXPECT_EQ(shown(compilation), "a.mof: error: cannot be read: No such file or directory\n");
    EXPECT_EQ(textOf(compilation), "class A_B\n");
}

TEST_F(IncludeReaderTest, AFileThatIsTooLargeIsAnError) {
    write("main.mof", "class A_B {};\n#pragma include (\"b.mof\")");
    write("b.mof", "// " + std::string(100, '-'));
    Mof::CompilerOptions options;
    options.maxFileSize = 103;
    EXPECT_EQ(shown(read("main.mof", options)), "");
    options.maxFileSize = 102;
    EXPECT_EQ(shown(read("main.mof", options)),
              "main.mof:2:1: error: the included file \"b.mof\" cannot be read: File too large\n"
              "#pragma include (\"b.mof\")\n"
              "^\n");
    EXPECT_EQ(shown(read("b.mof", options)), "b.mof: error: cannot be read: File too large\n");
}

}  // namespace

#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Mof/Compiler.h"
#include "Tests/ObjectManager/Mof/DeclarationText.h"
#include "Tests/Support/MofDirectory.h"

namespace {

using Mof::Compilation;

class MofCompilerTest : public testing::Test {
  protected:
    MofDirectory directory_;
};

TEST_F(MofCompilerTest, NoFilesDeclareNothing) {
    const Compilation compilation = Mof::compile({});
    EXPECT_EQ(textOf(compilation), "");
    EXPECT_EQ(diagnosticsOf(compilation), "");
    EXPECT_FALSE(compilation.hasErrors());
}

TEST_F(MofCompilerTest, DeclarationsMayNeedEachOtherOverFilesDirectoriesAndPaths) {
    directory_.write("main.mof", "#pragma include (\"sub/c.mof\")\nclass A_B : A_C {};");
    directory_.write("sub/c.mof", "class A_C : A_D { [Key] uint8 p; A_E ref q; };");
    directory_.write("directory/d.mof", "class A_D : A_E {};");
    directory_.write("directory/below/e.mof", "class A_E {};");
    directory_.write("q.mof", "Qualifier Key : boolean = false, Scope (any);");
    const Compilation compilation = Mof::compile(
        {directory_.path("main.mof"), directory_.path("directory"), directory_.path("q.mof")});
    EXPECT_EQ(diagnosticsOf(compilation), "");
    EXPECT_EQ(textOf(compilation),
              "qualifier boolean Key = false scopes 127\n"
              "class A_B : A_C\n"
              "class A_C : A_D\n"
              "  [Key] uint8 p\n"
              "  A_E ref q\n"
              "class A_E\n"
              "class A_D : A_E\n");
}

TEST_F(MofCompilerTest, AFileGivenTwiceIsReadOnce) {
    const std::string file = directory_.write("a.mof", "class A_B {};");
    const Compilation compilation = Mof::compile({file, directory_.path("."), file});
    EXPECT_EQ(diagnosticsOf(compilation), "");
    EXPECT_EQ(compilation.files.size(), 1U);
    EXPECT_EQ(textOf(compilation), "class A_B\n");
}

TEST_F(MofCompilerTest, AClassDeclaredAlikeByTwoFilesIsThereOnce) {
    const Compilation compilation =
        Mof::compile({directory_.write("a.mof", "class A_B { uint8 p; };"),
                      directory_.write("b.mof", "// The same.\nclass A_B\n{ uint8 p; };")});
    EXPECT_EQ(diagnosticsOf(compilation), "");
    EXPECT_EQ(textOf(compilation), "class A_B\n  uint8 p\n");
}

TEST_F(MofCompilerTest, AClassDeclaredOtherwiseByAnotherFileIsAnError) {
    const Compilation compilation =
        Mof::compile({directory_.write("a.mof", "class A_B { uint8 p; };"),
                      directory_.write("b.mof", "class A_B { uint8 p = 1; };")});
    EXPECT_EQ(directory_.shown(compilation.diagnostics),
              "b.mof:1:7: error: the class \"A_B\" is declared otherwise at a.mof:1:7\n"
              "class A_B { uint8 p = 1; };\n"
              "      ^\n");
}

TEST_F(MofCompilerTest, DeclarationsAreNotHeldAgainstEachOtherAfterErrorsInTheText) {
    const Compilation compilation = Mof::compile(
        {directory_.write("a.mof", "class A_B : A_X { [Odd] uint8 p = -1; };\nclass ;\n")});
    EXPECT_EQ(directory_.shown(compilation.diagnostics),
              "a.mof:2:7: error: found \";\", expected a name\n"
              "class ;\n"
              "      ^\n");
}

TEST_F(MofCompilerTest, DeclarationsAreNotHeldAgainstEachOtherWhenAFileIsMissing) {
    const Compilation compilation = Mof::compile(
        {directory_.path("none.mof"), directory_.write("a.mof", "class A_B : A_X {};")});
    EXPECT_EQ(directory_.shown(compilation.diagnostics),
              "none.mof: error: cannot be read: No such file or directory\n");
}

TEST_F(MofCompilerTest, WarningsInTheTextKeepNothingFromBeingHeldAgainstEachOther) {
    const Compilation compilation =
        Mof::compile({directory_.write("a.mof", "#pragma odd (\"x\")\nclass A_B : A_X {};")});
    EXPECT_EQ(directory_.shown(compilation.diagnostics),
              "a.mof:1:1: warning: the pragma \"odd\" is not known and is ignored\n"
              "#pragma odd (\"x\")\n"
              "^\n"
              "a.mof:2:13: error: the superclass \"A_X\" of \"A_B\" is not declared\n"
              "class A_B : A_X {};\n"
              "            ^\n");
}

// One error a line in the text.
std::string withTextErrors(int count) {
    std::string mof;
    for (int line = 0; line < count; ++line)
        mof += "?\n";
    return mof;
}

// One error a line in what is declared.
std::string withDeclarationErrors(int count) {
    std::string mof;
    for (int line = 0; line < count; ++line)
        mof += "class A_" + std::to_string(line) + " { uint8 p = -1; };\n";
    return mof;
}

constexpr const char* kTextError = "this character has no meaning here";
constexpr const char* kDeclarationError =
    "the default value of \"p\" must be in the range of a uint8, 0 to 255: -1 is not";
constexpr const char* kTheRest = " (too many errors, the rest is not read)";

TEST_F(MofCompilerTest, NineteenErrorsAreAllReported) {
    for (const std::string& mof : {withTextErrors(19), withDeclarationErrors(19)}) {
        const Compilation compilation = Mof::compile({directory_.write("a.mof", mof)});
        EXPECT_EQ(compilation.diagnostics.size(), 19U);
        EXPECT_EQ(compilation.diagnostics.back().message.find(kTheRest), std::string::npos);
    }
}

TEST_F(MofCompilerTest, TwentyErrorsAreReportedAndNoMore) {
    for (const int count : {20, 21, 1000}) {
        const Compilation compilation =
            Mof::compile({directory_.write("a.mof", withTextErrors(count))});
        ASSERT_EQ(compilation.diagnostics.size(), 20U);
        EXPECT_EQ(compilation.diagnostics[18].message, kTextError);
        EXPECT_EQ(compilation.diagnostics[19].message, std::string(kTextError) + kTheRest);
        EXPECT_EQ(compilation.diagnostics[19].place.line, 20U);
    }
}

TEST_F(MofCompilerTest, ErrorsInWhatIsDeclaredCountToo) {
    for (const int count : {20, 21, 1000}) {
        const Compilation compilation =
            Mof::compile({directory_.write("a.mof", withDeclarationErrors(count))});
        ASSERT_EQ(compilation.diagnostics.size(), 20U);
        EXPECT_EQ(compilation.diagnostics[18].message, kDeclarationError);
        EXPECT_EQ(compilation.diagnostics[19].message, std::string(kDeclarationError) + kTheRest);
        EXPECT_EQ(compilation.diagnostics[19].place.line, 20U);
    }
}

TEST_F(MofCompilerTest, ErrorsOfAllFilesAddUp) {
    const Compilation compilation =
        Mof::compile({directory_.write("a.mof", withTextErrors(15)), directory_.path("none.mof"),
                      directory_.write("b.mof", withTextErrors(15))});
    ASSERT_EQ(compilation.diagnostics.size(), 20U);
    EXPECT_EQ(compilation.diagnostics[15].message, "cannot be read: No such file or directory");
    EXPECT_EQ(directory_.shown({compilation.diagnostics[19]}),
              std::string("b.mof:4:1: error: ") + kTextError + kTheRest + "\n?\n^\n");
}

Mof::CompilerOptions withMaxErrors(std::size_t maxErrors) {
    Mof::CompilerOptions options;
    options.diagnostics.maxErrors = maxErrors;
    return options;
}

TEST_F(MofCompilerTest, TheNumberOfErrorsCanBeChosen) {
    const std::string file = directory_.write("a.mof", withTextErrors(50));
    EXPECT_EQ(Mof::compile({file}, withMaxErrors(1)).diagnostics.size(), 1U);
    EXPECT_EQ(Mof::compile({file}, withMaxErrors(40)).diagnostics.size(), 40U);
}

TEST_F(MofCompilerTest, AHundredWarningsAreReportedAndNoMore) {
    for (const int count : {99, 100, 101, 1000}) {
        std::string mof = "class A_B {\n";
        for (int line = 0; line < count; ++line) {
            const std::string number = std::to_string(line);
            mof += "[Q" + number + "] uint8 p" + number + ";\n";
        }
        const Compilation compilation = Mof::compile({directory_.write("a.mof", mof + "};")});
        EXPECT_FALSE(compilation.hasErrors());
        ASSERT_EQ(compilation.diagnostics.size(), count == 99 ? 99U : 100U);
        EXPECT_EQ(compilation.diagnostics[98].message, "the qualifier \"Q98\" is not declared");
        if (count > 99) {
            EXPECT_EQ(compilation.diagnostics[99].message,
                      "the qualifier \"Q99\" is not declared (many warnings, the rest is not "
                      "shown)");
        }
    }
}

// File "0.mof" to that of number `last`, each but the last including the next.
std::string writeRowOfFiles(const MofDirectory& directory, int last) {
    for (int number = 0; number < last; ++number) {
        directory.write(std::to_string(number) + ".mof",
                        "#pragma include (\"" + std::to_string(number + 1) + ".mof\")");
    }
    directory.write(std::to_string(last) + ".mof", "class A_B {};");
    return directory.path("0.mof");
}

TEST_F(MofCompilerTest, TwoHundredFilesMayIncludeEachOtherInARow) {
    const Compilation compilation = Mof::compile({writeRowOfFiles(directory_, 200)});
    EXPECT_EQ(directory_.shown(compilation.diagnostics), "");
    EXPECT_EQ(compilation.files.size(), 201U);
    EXPECT_EQ(textOf(compilation), "class A_B\n");
}

TEST_F(MofCompilerTest, OneMoreThanTwoHundredFilesInARowIsAnError) {
    const Compilation compilation = Mof::compile({writeRowOfFiles(directory_, 201)});
    EXPECT_EQ(directory_.shown(compilation.diagnostics),
              "200.mof:1:1: error: more than 200 files include each other in a row\n"
              "#pragma include (\"201.mof\")\n"
              "^\n");
}

}  // namespace

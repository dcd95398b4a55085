#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Mof/Reporter.h"
#include "Tests/ObjectManager/Mof/DeclarationText.h"

namespace {

using Mof::Compilation;
using Mof::Position;
using Mof::Reporter;

// Two files; the second one has three lines.
class ReporterTest : public testing::Test {
  protected:
    ReporterTest() {
        compilation_.files.emplace_back("a.mof", "first");
        compilation_.files.emplace_back("b.mof", "one\n  two\nthree");
    }

    static constexpr std::size_t kMostErrors = 20;
    static constexpr Position kFirst = {.file = 0, .offset = 0};
    static constexpr Position kTwo = {.file = 1, .offset = 6};

    Compilation compilation_;
    Reporter reporter_{compilation_, kMostErrors};
};

TEST_F(ReporterTest, ErrorsAndWarningsShowTheirPlaceAndItsLineInTheOrderReported) {
    reporter_.error(kTwo, "what is wrong");
    reporter_.warning(kFirst, "what is odd");
    EXPECT_EQ(diagnosticsOf(compilation_),
              "b.mof:2:3: error: what is wrong\n"
              "  two\n"
              "  ^\n"
              "a.mof:1:1: warning: what is odd\n"
              "first\n"
              "^\n");
    EXPECT_TRUE(compilation_.hasErrors());
}

TEST_F(ReporterTest, WarningsAreNoErrors) {
    reporter_.warning(kFirst, "what is odd");
    EXPECT_FALSE(compilation_.hasErrors());
}

TEST_F(ReporterTest, AnErrorOfAFileHasNoPlaceInIt) {
    reporter_.errorOfFile("c.mof", "cannot be read");
    EXPECT_EQ(diagnosticsOf(compilation_), "c.mof: error: cannot be read\n");
    EXPECT_TRUE(compilation_.hasErrors());
}

TEST_F(ReporterTest, NamesPlacesByFileLineAndColumn) {
    EXPECT_EQ(reporter_.nameOf(kFirst), "a.mof:1:1");
    EXPECT_EQ(reporter_.nameOf(kTwo), "b.mof:2:3");
    EXPECT_EQ(reporter_.nameOf({.file = 1, .offset = 15}), "b.mof:3:6");  // the end of the file
}

TEST_F(ReporterTest, OneErrorLessThanTheMostGoesOn) {
    for (std::size_t count = 1; count < kMostErrors; ++count)
        reporter_.error(kFirst, "wrong");
    EXPECT_EQ(compilation_.diagnostics.size(), kMostErrors - 1);
    EXPECT_EQ(compilation_.diagnostics.back().message, "wrong");
}

TEST_F(ReporterTest, TheLastErrorSaysSoAndEndsTheCompilation) {
    for (std::size_t count = 1; count < kMostErrors; ++count)
        reporter_.error(kFirst, "wrong");
    EXPECT_THROW(reporter_.error(kTwo, "wrong again"), Mof::TooManyErrors);
    EXPECT_EQ(compilation_.diagnostics.size(), kMostErrors);
    EXPECT_EQ(compilation_.diagnostics.back().toString(),
              "b.mof:2:3: error: wrong again (too many errors, the rest is not read)\n"
              "  two\n"
              "  ^\n");
}

TEST_F(ReporterTest, ErrorsOfFilesCountAsErrors) {
    for (std::size_t count = 1; count < kMostErrors; ++count)
        reporter_.error(kFirst, "wrong");
    EXPECT_THROW(reporter_.errorOfFile("c.mof", "cannot be read"), Mof::TooManyErrors);
    EXPECT_EQ(compilation_.diagnostics.back().toString(),
              "c.mof: error: cannot be read (too many errors, the rest is not read)\n");
}

TEST_F(ReporterTest, WarningsDoNotCountAsErrors) {
    for (std::size_t count = 0; count < kMostErrors; ++count)
        reporter_.warning(kFirst, "odd");
    reporter_.error(kFirst, "wrong");
    EXPECT_EQ(compilation_.diagnostics.back().message, "wrong");
}

TEST_F(ReporterTest, TheHundredthWarningIsTheLastAndSaysSo) {
    for (int count = 1; count <= 99; ++count)
        reporter_.warning(kFirst, "odd");
    EXPECT_EQ(compilation_.diagnostics.back().message, "odd");
    reporter_.warning(kFirst, "odd");
    EXPECT_EQ(compilation_.diagnostics.size(), 100U);
    EXPECT_EQ(compilation_.diagnostics.back().message,
              "odd (many warnings, the rest is not shown)");
    reporter_.warning(kFirst, "odd");
    EXPECT_EQ(compilation_.diagnostics.size(), 100U);
}

TEST_F(ReporterTest, ErrorsAreReportedAfterTheLastWarning) {
    for (int count = 0; count < 101; ++count)
        reporter_.warning(kFirst, "odd");
    reporter_.error(kFirst, "wrong");
    EXPECT_EQ(compilation_.diagnostics.size(), 101U);
    EXPECT_EQ(compilation_.diagnostics.back().message, "wrong");
}

TEST_F(ReporterTest, TheEndOfALongMessageIsLeftOut) {
    const std::string longest(Reporter::kLongestMessage, 'a');
    reporter_.error(kFirst, longest);
    reporter_.warning(kFirst, longest + "b");
    reporter_.errorOfFile("c.mof", longest.substr(1) + "\xC3\xBC");
    ASSERT_EQ(compilation_.diagnostics.size(), 3U);
    EXPECT_EQ(compilation_.diagnostics[0].message, longest);
    EXPECT_EQ(compilation_.diagnostics[1].message, longest + "...");
    EXPECT_EQ(compilation_.diagnostics[2].message, longest.substr(1) + "...");
}

TEST_F(ReporterTest, APlaceInALongLineIsShownWithWhatSurroundsIt) {
    compilation_.files.emplace_back("c.mof", std::string(150, 'a') + "b" + std::string(1000, 'c'));
    reporter_.error({.file = 2, .offset = 150}, "wrong");
    EXPECT_EQ(diagnosticsOf(compilation_),
              "c.mof:1:151: error: wrong\n"
              "..." +
                  std::string(100, 'a') + "b" + std::string(99, 'c') + "...\n" +
                  std::string(103, ' ') + "^\n");
}

}  // namespace

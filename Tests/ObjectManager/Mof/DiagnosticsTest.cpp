#include <gtest/gtest.h>
#include <string>
#include <vector>

#include "ObjectManager/Mof/Diagnostics.h"

namespace {

using Mof::Diagnostic;
using Mof::Position;
using Mof::Reporter;
using Mof::Severity;
using Mof::SourceText;

TEST(Diagnostic, ShowsTheLineWithACaretBelowThePlace) {
    const Diagnostic diagnostic = {Severity::kError, "a.mof", {12, 7}, "what is wrong", "uint8 ;"};
    EXPECT_EQ(diagnostic.toString(),
              "a.mof:12:7: error: what is wrong\n"
              "uint8 ;\n"
              "      ^\n");
}

TEST(Diagnostic, TabsStayTabsAboveTheCaret) {
    const Diagnostic diagnostic = {Severity::kWarning, "a.mof", {1, 3}, "odd", "\t\tx"};
    EXPECT_EQ(diagnostic.toString(), "a.mof:1:3: warning: odd\n\t\tx\n\t\t^\n");
}

TEST(Diagnostic, TheCaretCountsCharacters) {
    const Diagnostic diagnostic = {Severity::kError, "a", {1, 3}, "odd", "\xC3\xBC\xC3\xBCx"};
    EXPECT_EQ(diagnostic.toString(), "a:1:3: error: odd\n\xC3\xBC\xC3\xBCx\n  ^\n");
}

TEST(Diagnostic, AFileThatCannotBeReadHasNoPlace) {
    const Diagnostic diagnostic = {Severity::kError, "a.mof", {0, 0}, "cannot be read", ""};
    EXPECT_EQ(diagnostic.toString(), "a.mof: error: cannot be read\n");
}

TEST(Diagnostic, DotsStandForWhatIsLeftOutOfALine) {
    Diagnostic diagnostic = {Severity::kError,
                             "a",
                             {1, 103},
                             "odd",
                             "ab\xC3\xBC"
                             "c"};
    diagnostic.skipped = 100;
    EXPECT_EQ(diagnostic.toString(),
              "a:1:103: error: odd\n...ab\xC3\xBC"
              "c\n     ^\n");
    diagnostic.continues = true;
    EXPECT_EQ(diagnostic.toString(),
              "a:1:103: error: odd\n...ab\xC3\xBC"
              "c...\n     ^\n");
    diagnostic.skipped = 0;
    diagnostic.place.column = 3;
    EXPECT_EQ(diagnostic.toString(),
              "a:1:3: error: odd\nab\xC3\xBC"
              "c...\n  ^\n");
}

TEST(Diagnostic, WhatControlsATerminalIsShownAsAQuestionMark) {
    const Diagnostic diagnostic = {
        Severity::kError, "a\n.mof", {1, 6}, "\x1B[2J\x7F", "\x01\t\xC2\x9Bm\r\xC2\xA0\xC2"};
    EXPECT_EQ(diagnostic.toString(),
              "a?.mof:1:6: error: ?[2J?\n"
              "?\t?m?\xC2\xA0\xC2\n"
              " \t   ^\n");
}

// Two files; the second one has three lines.
class ReporterTest : public testing::Test {
  protected:
    // All diagnostics, as they are shown.
    [[nodiscard]] std::string shown() const {
        std::string text;
        for (const Diagnostic& diagnostic : diagnostics_)
            text += diagnostic.toString();
        return text;
    }

    static constexpr std::size_t kMaxErrors = 20;
    static constexpr Position kFirst = {.file = 0, .offset = 0};
    static constexpr Position kTwo = {.file = 1, .offset = 6};

    std::vector<SourceText> files_ = {{"a.mof", "first"}, {"b.mof", "one\n  two\nthree"}};
    std::vector<Diagnostic> diagnostics_;
    Reporter reporter_{files_, diagnostics_};
};

TEST_F(ReporterTest, ErrorsAndWarningsShowTheirPlaceAndItsLineInTheOrderReported) {
    reporter_.error(kTwo, "what is wrong");
    reporter_.warning(kFirst, "what is odd");
    EXPECT_EQ(shown(),
              "b.mof:2:3: error: what is wrong\n"
              "  two\n"
              "  ^\n"
              "a.mof:1:1: warning: what is odd\n"
              "first\n"
              "^\n");
}

TEST_F(ReporterTest, AnErrorOfAFileHasNoPlaceInIt) {
    reporter_.errorOfFile("c.mof", "cannot be read");
    EXPECT_EQ(shown(), "c.mof: error: cannot be read\n");
}

TEST_F(ReporterTest, NamesPlacesByFileLineAndColumn) {
    EXPECT_EQ(reporter_.nameOf(kFirst), "a.mof:1:1");
    EXPECT_EQ(reporter_.nameOf(kTwo), "b.mof:2:3");
    EXPECT_EQ(reporter_.nameOf({.file = 1, .offset = 15}), "b.mof:3:6");  // the end of the file
}

TEST_F(ReporterTest, OneErrorLessThanTheMostGoesOn) {
    for (std::size_t count = 1; count < kMaxErrors; ++count)
        reporter_.error(kFirst, "wrong");
    EXPECT_EQ(diagnostics_.size(), kMaxErrors - 1);
    EXPECT_EQ(diagnostics_.back().message, "wrong");
}

TEST_F(ReporterTest, TheLastErrorSaysSoAndEndsTheCompilation) {
    for (std::size_t count = 1; count < kMaxErrors; ++count)
        reporter_.error(kFirst, "wrong");
    EXPECT_THROW(reporter_.error(kTwo, "wrong again"), Mof::TooManyErrors);
    EXPECT_EQ(diagnostics_.size(), kMaxErrors);
    EXPECT_EQ(diagnostics_.back().toString(),
              "b.mof:2:3: error: wrong again (too many errors, the rest is not read)\n"
              "  two\n"
              "  ^\n");
}

TEST_F(ReporterTest, ErrorsOfFilesCountAsErrors) {
    for (std::size_t count = 1; count < kMaxErrors; ++count)
        reporter_.error(kFirst, "wrong");
    EXPECT_THROW(reporter_.errorOfFile("c.mof", "cannot be read"), Mof::TooManyErrors);
    EXPECT_EQ(diagnostics_.back().toString(),
              "c.mof: error: cannot be read (too many errors, the rest is not read)\n");
}

TEST_F(ReporterTest, WarningsDoNotCountAsErrors) {
    for (std::size_t count = 0; count < kMaxErrors; ++count)
        reporter_.warning(kFirst, "odd");
    reporter_.error(kFirst, "wrong");
    EXPECT_EQ(diagnostics_.back().message, "wrong");
}

TEST_F(ReporterTest, TheHundredthWarningIsTheLastAndSaysSo) {
    for (int count = 1; count <= 99; ++count)
        reporter_.warning(kFirst, "odd");
    EXPECT_EQ(diagnostics_.back().message, "odd");
    reporter_.warning(kFirst, "odd");
    EXPECT_EQ(diagnostics_.size(), 100U);
    EXPECT_EQ(diagnostics_.back().message, "odd (many warnings, the rest is not shown)");
    reporter_.warning(kFirst, "odd");
    EXPECT_EQ(diagnostics_.size(), 100U);
}

TEST_F(ReporterTest, ErrorsAreReportedAfterTheLastWarning) {
    for (int count = 0; count < 101; ++count)
        reporter_.warning(kFirst, "odd");
    reporter_.error(kFirst, "wrong");
    EXPECT_EQ(diagnostics_.size(), 101U);
    EXPECT_EQ(diagnostics_.back().message, "wrong");
}

TEST_F(ReporterTest, TheEndOfALongMessageIsLeftOut) {
    const std::string longest(Mof::DiagnosticLimits().maxMessageSize, 'a');
    reporter_.error(kFirst, longest);
    reporter_.warning(kFirst, longest + "b");
    reporter_.errorOfFile("c.mof", longest.substr(1) + "\xC3\xBC");
    ASSERT_EQ(diagnostics_.size(), 3U);
    EXPECT_EQ(diagnostics_[0].message, longest);
    EXPECT_EQ(diagnostics_[1].message, longest + "...");
    EXPECT_EQ(diagnostics_[2].message, longest.substr(1) + "...");
}

TEST_F(ReporterTest, APlaceInALongLineIsShownWithWhatSurroundsIt) {
    files_.emplace_back("c.mof", std::string(150, 'a') + "b" + std::string(1000, 'c'));
    reporter_.error({.file = 2, .offset = 150}, "wrong");
    EXPECT_EQ(shown(),
              "c.mof:1:151: error: wrong\n"
              "..." +
                  std::string(100, 'a') + "b" + std::string(99, 'c') + "...\n" +
                  std::string(103, ' ') + "^\n");
}

}  // namespace

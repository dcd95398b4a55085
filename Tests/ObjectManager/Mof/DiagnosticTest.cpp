#include <gtest/gtest.h>

#include "ObjectManager/Mof/Diagnostic.h"

namespace {

using Mof::Diagnostic;
using Mof::Severity;

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

}  // namespace

#include <gtest/gtest.h>
#include <string>
#include <unistd.h>

#include "ObjectManager/Commands/Passwd/HiddenInput.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/Support/PseudoTerminal.h"

namespace {

// Prompts for a password and shows what was read.
int promptAndShow() {
    const Security::SecretText text =
        Commands::readHidden(STDIN_FILENO, STDERR_FILENO, "Password: ");
    const std::string shown = "[" + std::string(text.view()) + "]";
    return write(STDOUT_FILENO, shown.data(), shown.size()) < 0 ? 1 : 0;
}

TEST(HiddenInput, DoesNotShowWhatIsTyped) {
    PseudoTerminal terminal(&promptAndShow);
    ASSERT_TRUE(terminal.waitFor("Password: "));
    EXPECT_FALSE(terminal.echoes());
    terminal.type("a b\xC3\xBC\n");
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_EQ(terminal.shown(), "Password: \r\n[a b\xC3\xBC]");
    EXPECT_TRUE(terminal.echoes());
}

TEST(HiddenInput, WhatIsTypedCanBeCorrected) {
    PseudoTerminal terminal(&promptAndShow);
    ASSERT_TRUE(terminal.waitFor("Password: "));
    terminal.type(
        "ab\x7F"
        "c\n");
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_EQ(terminal.shown(), "Password: \r\n[ac]");
}

TEST(HiddenInput, TheEndOfInputEndsTheLine) {
    PseudoTerminal terminal(&promptAndShow);
    ASSERT_TRUE(terminal.waitFor("Password: "));
    terminal.type("\x04");
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_EQ(terminal.shown(), "Password: \r\n[]");
}

TEST(HiddenInput, WhatIsTooLongForAPasswordIsCutAndNotShownLater) {
    PseudoTerminal terminal([] {
        const int first = promptAndShow();
        return first + promptAndShow();
    });
    ASSERT_TRUE(terminal.waitFor("Password: "));
    terminal.type(std::string(1500, 'x') + "\n");
    ASSERT_TRUE(terminal.waitFor("]"));
    ASSERT_TRUE(terminal.waitFor("Password: "));
    terminal.type("y\n");
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_EQ(terminal.shown(), "Password: \r\n[" + std::string(1024, 'x') + "]Password: \r\n[y]");
}

TEST(HiddenInput, TheTerminalShowsAgainWhatIsTypedWhenItIsInterrupted) {
    PseudoTerminal terminal(&promptAndShow);
    ASSERT_TRUE(terminal.waitFor("Password: "));
    EXPECT_FALSE(terminal.echoes());
    terminal.type("half\x03");
    EXPECT_EQ(terminal.waitForEnd(), "signal 2");
    EXPECT_EQ(terminal.shown(), "Password: \r\n");
    EXPECT_TRUE(terminal.echoes());
}

TEST(HiddenInput, TheTerminalShowsAgainWhatIsTypedWhenTheProcessIsEnded) {
    for (const int signal : {SIGTERM, SIGHUP, SIGQUIT}) {
        PseudoTerminal terminal(&promptAndShow);
        ASSERT_TRUE(terminal.waitFor("Password: "));
        terminal.sendSignal(signal);
        EXPECT_EQ(terminal.waitForEnd(), "signal " + std::to_string(signal));
        EXPECT_TRUE(terminal.echoes());
    }
}

TEST(HiddenInput, WhoGoesOnAfterAStopIsPromptedAnew) {
    // No shell could wake the process, so that the system does not let it stop.
    PseudoTerminal terminal(&promptAndShow);
    ASSERT_TRUE(terminal.waitFor("Password: "));
    terminal.type("half\x1A");
    ASSERT_TRUE(terminal.waitFor("Password: "));
    EXPECT_FALSE(terminal.echoes());
    terminal.type("whole\n");
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_EQ(terminal.shown(), "Password: \r\nPassword: \r\n[whole]");
    EXPECT_TRUE(terminal.echoes());
}

TEST(HiddenInput, SignalsWorkAsBeforeAfterwards) {
    PseudoTerminal terminal([] {
        promptAndShow();
        pause();
        return 0;
    });
    ASSERT_TRUE(terminal.waitFor("Password: "));
    terminal.type("a\n");
    ASSERT_TRUE(terminal.waitFor("[a]"));
    terminal.type("\x03");
    EXPECT_EQ(terminal.waitForEnd(), "signal 2");
}

TEST(HiddenInput, WhatIsNoTerminalIsRefused) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(pipe(ends), 0);
    std::string message;
    try {
        static_cast<void>(Commands::readHidden(ends[0], ends[1], "Password: "));
    } catch (const TeskBaseException& exception) {
        message = exception.getMessage().data();
    }
    EXPECT_EQ(message, "The password cannot be read: Inappropriate ioctl for device");
    close(ends[0]);
    close(ends[1]);
}

}  // namespace

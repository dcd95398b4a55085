#include <csignal>
#include <gtest/gtest.h>
#include <string>
#include <string_view>
#include <unistd.h>

#include "ObjectManager/Commands/PasswordInput.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/Support/PseudoTerminal.h"

namespace {

// The password, or why there is none.
std::string readPassword(int input) {
    try {
        const Security::SecretText password = Commands::readNewPassword(input);
        return "[" + std::string(password.view()) + "]";
    } catch (const TeskBaseException& exception) {
        return exception.getMessage().data();
    }
}

// A file that holds `text`, open for reading.
class Input {
  public:
    explicit Input(std::string_view text) {
        EXPECT_EQ(pipe(ends_), 0);
        EXPECT_EQ(write(ends_[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
        close(ends_[1]);
    }
    Input(const Input&) = delete;
    Input& operator=(const Input&) = delete;
    ~Input() { close(ends_[0]); }

    [[nodiscard]] int descriptor() const { return ends_[0]; }

  private:
    int ends_[2] = {-1, -1};
};

std::string readPasswordFrom(std::string_view text) {
    const Input input(text);
    return readPassword(input.descriptor());
}

// Reads a password at a terminal and shows it.
int readAndShow() {
    const std::string text = readPassword(STDIN_FILENO) + "\n";
    return write(STDOUT_FILENO, text.data(), text.size()) < 0 ? 1 : 0;
}

// At a terminal: types the given lines, one for each prompt.
std::string typePassword(std::initializer_list<std::string_view> lines) {
    PseudoTerminal terminal(&readAndShow);
    for (const std::string_view line : lines) {
        EXPECT_TRUE(terminal.waitFor(": ")) << terminal.shown();
        EXPECT_FALSE(terminal.echoes());
        terminal.type(std::string(line) + "\n");
    }
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_TRUE(terminal.echoes());
    return terminal.shown();
}

TEST(PasswordInput, IsTheFirstLine) {
    EXPECT_EQ(readPasswordFrom("secret\n"), "[secret]");
    EXPECT_EQ(readPasswordFrom("secret\r\n"), "[secret]");
    EXPECT_EQ(readPasswordFrom("secret"), "[secret]");
    EXPECT_EQ(readPasswordFrom(" a:b# \nrest"), "[ a:b# ]");
}

TEST(PasswordInput, LeavesTheNextLineToTheNextReader) {
    const Input input("first\nsecond\n");
    EXPECT_EQ(readPassword(input.descriptor()), "[first]");
    EXPECT_EQ(readPassword(input.descriptor()), "[second]");
    EXPECT_EQ(readPassword(input.descriptor()), "The password cannot be used: it is empty");
}

TEST(PasswordInput, AnEmptyPasswordIsRefused) {
    EXPECT_EQ(readPasswordFrom(""), "The password cannot be used: it is empty");
    EXPECT_EQ(readPasswordFrom("\n"), "The password cannot be used: it is empty");
    EXPECT_EQ(readPasswordFrom("\r\nsecret\n"), "The password cannot be used: it is empty");
}

TEST(PasswordInput, HasUpTo511Bytes) {
    const std::string longest(511, 'x');
    EXPECT_EQ(readPasswordFrom(longest + "\r\n"), "[" + longest + "]");
    EXPECT_EQ(readPasswordFrom(longest + "x\n"),
              "The password cannot be used: it is longer than 511 bytes");
    EXPECT_EQ(readPasswordFrom(std::string(60'000, 'x')),
              "The password cannot be used: it is longer than 511 bytes");
}

TEST(PasswordInput, ControlCharactersAreRefused) {
    const std::string refused =
        "The password cannot be used: it contains control characters or is not UTF-8";
    EXPECT_EQ(readPasswordFrom(std::string_view("a\0b\n", 4)), refused);
    EXPECT_EQ(readPasswordFrom("a\tb\n"), refused);
    EXPECT_EQ(readPasswordFrom("a\r\r\n"), refused);
    EXPECT_EQ(readPasswordFrom("p\xE4ss\n"), refused);
}

TEST(PasswordInput, AFileThatCannotBeReadIsReported) {
    EXPECT_EQ(readPassword(-1), "The password cannot be read: Bad file descriptor");
}

TEST(PasswordInput, IsTypedTwiceAtATerminal) {
    EXPECT_EQ(typePassword({"secret", "secret"}), "Password: \r\nAgain: \r\n[secret]\r\n");
}

TEST(PasswordInput, WhatIsTypedTheSecondTimeMustBeTheSame) {
    EXPECT_EQ(typePassword({"secret", "secreT"}),
              "Password: \r\nAgain: \r\nThe two passwords differ\r\n");
    EXPECT_EQ(typePassword({"secret", ""}),
              "Password: \r\nAgain: \r\nThe two passwords differ\r\n");
}

TEST(PasswordInput, WhatCanBeNoPasswordNeedNotBeTypedTwice) {
    EXPECT_EQ(typePassword({""}), "Password: \r\nThe password cannot be used: it is empty\r\n");
    EXPECT_EQ(typePassword({std::string(512, 'x')}),
              "Password: \r\nThe password cannot be used: it is longer than 511 bytes\r\n");
}

TEST(PasswordInput, WhatIsTypedCanBeCorrected) {
    EXPECT_EQ(typePassword({"ab\x7F"
                            "c",
                            "ac"}),
              "Password: \r\nAgain: \r\n[ac]\r\n");
}

TEST(PasswordInput, TheRestOfALineThatIsTooLongIsNotReadLater) {
    PseudoTerminal terminal([] {
        const int first = readAndShow();
        return first + readAndShow();
    });
    ASSERT_TRUE(terminal.waitForPrompt("Password: "));
    terminal.type(std::string(1500, 'x') + "\n");
    ASSERT_TRUE(terminal.waitFor("511 bytes"));
    ASSERT_TRUE(terminal.waitForPrompt("Password: "));
    terminal.type("y\n");
    ASSERT_TRUE(terminal.waitFor("Again: "));
    terminal.type("y\n");
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_EQ(terminal.shown(),
              "Password: \r\nThe password cannot be used: it is longer than 511 bytes\r\n"
              "Password: \r\nAgain: \r\n[y]\r\n");
}

TEST(PasswordInput, TheTerminalEchoesAgainAfterAnInterruption) {
    PseudoTerminal terminal(&readAndShow);
    ASSERT_TRUE(terminal.waitForPrompt("Password: "));
    EXPECT_FALSE(terminal.echoes());
    terminal.type("half\x03");
    EXPECT_EQ(terminal.waitForEnd(), "signal 2");
    EXPECT_EQ(terminal.shown(), "Password: \r\n");
    EXPECT_TRUE(terminal.echoes());
}

TEST(PasswordInput, TheTerminalEchoesAgainAfterASignal) {
    for (const int signal : {SIGTERM, SIGHUP, SIGQUIT}) {
        PseudoTerminal terminal(&readAndShow);
        ASSERT_TRUE(terminal.waitForPrompt("Password: "));
        terminal.sendSignal(signal);
        EXPECT_EQ(terminal.waitForEnd(), "signal " + std::to_string(signal));
        EXPECT_TRUE(terminal.echoes());
    }
}

TEST(PasswordInput, IsAskedForAgainAfterAStop) {
    // No shell could continue the process, so the system does not let it stop.
    PseudoTerminal terminal(&readAndShow);
    ASSERT_TRUE(terminal.waitForPrompt("Password: "));
    terminal.type("half\x1A");
    ASSERT_TRUE(terminal.waitForPrompt("Password: "));
    EXPECT_FALSE(terminal.echoes());
    terminal.type("whole\n");
    ASSERT_TRUE(terminal.waitFor("Again: "));
    terminal.type("whole\n");
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_EQ(terminal.shown(), "Password: \r\nPassword: \r\nAgain: \r\n[whole]\r\n");
}

TEST(PasswordInput, SignalsWorkAsBeforeAfterwards) {
    PseudoTerminal terminal([] {
        readAndShow();
        pause();
        return 0;
    });
    ASSERT_TRUE(terminal.waitForPrompt("Password: "));
    terminal.type("\n");
    ASSERT_TRUE(terminal.waitFor("empty"));
    terminal.type("\x03");
    EXPECT_EQ(terminal.waitForEnd(), "signal 2");
}

}  // namespace

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <sstream>
#include <string>
#include <sys/stat.h>
#include <vector>

#include "ObjectManager/Commands/Commands.h"
#include "ObjectManager/Commands/Passwd/Passwd.h"
#include "ObjectManager/Security/PasswordFile.h"
#include "ObjectManager/Security/PasswordHash.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/ObjectManager/Commands/ParsedCommand.h"
#include "Tests/Support/PseudoTerminal.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using Commands::PasswdRequest;
using Security::PasswordFile;
using Security::SecretText;

class PasswdTest : public testing::Test {
  protected:
    // Hashing takes less than a millisecond so.
    [[nodiscard]] PasswdRequest request(const std::string& user, bool isRemoval = false) const {
        return {.file = path_,
                .user = user,
                .isRemoval = isRemoval,
                .hashing = {.method = "$6$", .cost = 1000}};
    }

    // Runs the command. Returns "STATUS: MESSAGES"; the directory is called DIRECTORY there.
    std::string run(const PasswdRequest& request, const std::string& password) {
        const auto readPassword = [this, &password] {
            ++asked_;
            return SecretText(password);
        };
        return run(request, readPassword);
    }
    std::string run(const PasswdRequest& request, const Commands::PasswordSource& readPassword) {
        std::ostringstream messages;
        const int status = Commands::runPasswd(request, readPassword, messages);
        std::string text = messages.str();
        const std::string directory = directory_.path();
        for (auto at = text.find(directory); at != std::string::npos; at = text.find(directory))
            text.replace(at, directory.size(), "DIRECTORY");
        return std::to_string(status) + ": " + text;
    }

    [[nodiscard]] bool isPassword(const std::string& user, std::string_view password) const {
        const Security::UserTable users = PasswordFile::read(path_).users();
        const Security::User* const found = users.find(user);
        return found != nullptr &&
               Security::verifyPassword(SecretText(password), found->passwordHash);
    }

    [[nodiscard]] std::string content() const {
        std::ifstream stream(path_, std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    const TemporaryDirectory directory_;
    const std::string path_ = directory_ / "users";
    int asked_ = 0;
};

TEST_F(PasswdTest, MakesTheFileForTheFirstUser) {
    EXPECT_EQ(run(request("alice"), "secret"), "0: Added the user \"alice\" to DIRECTORY/users\n");
    EXPECT_TRUE(isPassword("alice", "secret"));
    EXPECT_EQ(asked_, 1);
}

TEST_F(PasswdTest, AddsFurtherUsers) {
    run(request("alice"), "secret");
    EXPECT_EQ(run(request("bob"), "other"), "0: Added the user \"bob\" to DIRECTORY/users\n");
    EXPECT_TRUE(isPassword("alice", "secret"));
    EXPECT_TRUE(isPassword("bob", "other"));
}

TEST_F(PasswdTest, ChangesAPassword) {
    run(request("alice"), "secret");
    EXPECT_EQ(run(request("alice"), "new"),
              "0: Changed the password of the user \"alice\" in DIRECTORY/users\n");
    EXPECT_TRUE(isPassword("alice", "new"));
    EXPECT_FALSE(isPassword("alice", "secret"));
}

TEST_F(PasswdTest, RemovesAUserWithoutAskingForAPassword) {
    run(request("alice"), "secret");
    run(request("bob"), "other");
    asked_ = 0;
    EXPECT_EQ(run(request("alice", true), ""),
              "0: Removed the user \"alice\" from DIRECTORY/users\n");
    EXPECT_EQ(asked_, 0);
    EXPECT_FALSE(isPassword("alice", "secret"));
    EXPECT_TRUE(isPassword("bob", "other"));
}

TEST_F(PasswdTest, AUserWhoIsNotThereCannotBeRemoved) {
    run(request("alice"), "secret");
    const std::string before = content();
    EXPECT_EQ(run(request("bob", true), ""),
              "1: tesk passwd: DIRECTORY/users: there is no user \"bob\"\n");
    EXPECT_EQ(content(), before);
}

TEST_F(PasswdTest, RemovingFromAMissingFileMakesNone) {
    EXPECT_EQ(run(request("bob", true), ""),
              "1: tesk passwd: DIRECTORY/users: cannot be read: No such file or directory\n");
    EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(PasswdTest, NobodyIsAskedForAPasswordThatCouldNotBeWrittenDown) {
    directory_.write("users", "alice\n");
    ASSERT_EQ(chmod(path_.c_str(), 0644), 0);
    EXPECT_EQ(run(request("alice"), "secret"),
              "1: tesk passwd: DIRECTORY/users: others than its owner can read or write it; "
              "correct that with: chmod 600 DIRECTORY/users\n");
    ASSERT_EQ(chmod(path_.c_str(), 0600), 0);
    EXPECT_EQ(run(request("alice"), "secret"),
              "1: tesk passwd: DIRECTORY/users:1: there is no colon between user name and hash\n");
    EXPECT_EQ(asked_, 0);
    EXPECT_EQ(content(), "alice\n");
}

TEST_F(PasswdTest, AMissingDirectoryIsReported) {
    PasswdRequest there = request("alice");
    there.file = directory_ / "missing/users";
    EXPECT_EQ(run(there, "secret"),
              "1: tesk passwd: DIRECTORY/missing: cannot be examined: "
              "No such file or directory\n");
}

TEST_F(PasswdTest, WithoutAPasswordNothingIsWritten) {
    const auto fail = []() -> SecretText {
        throw TeskBaseException("test", "The two passwords differ", 1);
    };
    EXPECT_EQ(run(request("alice"), fail), "1: tesk passwd: The two passwords differ\n");
    EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(PasswdTest, NeitherMessagesNorTheFileHoldThePassword) {
    EXPECT_EQ(run(request("alice"), "topsecret").find("topsecret"), std::string::npos);
    EXPECT_EQ(content().find("topsecret"), std::string::npos);
}

// The command line of a program that has this command alone.
class PasswdCommandTest : public PasswdTest {
  protected:
    // What is wrong with the arguments behind the name of the command; empty when nothing is.
    std::string parse(const std::vector<std::string>& arguments) {
        const Commands::Command command = Commands::passwdCommand();
        action_ = command.run;
        return parseOptions(command, arguments);
    }

    Commands::Action action_;
};

TEST_F(PasswdCommandTest, AsksTwiceAtATerminalAndHashesAtFullCost) {
    ASSERT_EQ(parse({path_, "alice"}), "");
    PseudoTerminal terminal([this] { return action_(); });
    ASSERT_TRUE(terminal.waitFor("Password: "));
    EXPECT_FALSE(terminal.echoes());
    terminal.type("topsecret\n");
    ASSERT_TRUE(terminal.waitFor("Again: "));
    EXPECT_FALSE(terminal.echoes());
    terminal.type("topsecret\n");
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_EQ(terminal.shown(),
              "Password: \r\nAgain: \r\nAdded the user \"alice\" to " + path_ + "\r\n");
    EXPECT_TRUE(terminal.echoes());
    EXPECT_TRUE(isPassword("alice", "topsecret"));
    EXPECT_EQ(content().substr(0, 13), "alice:$y$j9T$");
}

TEST_F(PasswdCommandTest, AnInterruptedOneChangesNothing) {
    ASSERT_EQ(parse({path_, "alice"}), "");
    PseudoTerminal terminal([this] { return action_(); });
    ASSERT_TRUE(terminal.waitFor("Password: "));
    terminal.type("topsecret\n");
    ASSERT_TRUE(terminal.waitForPrompt("Again: "));
    terminal.type("\x03");
    EXPECT_EQ(terminal.waitForEnd(), "signal 2");
    EXPECT_TRUE(terminal.echoes());
    EXPECT_FALSE(std::filesystem::exists(path_));
}

TEST_F(PasswdCommandTest, RemovesAUser) {
    run(request("alice"), "secret");
    ASSERT_EQ(parse({"--delete", path_, "alice"}), "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(action_(), 0);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "Removed the user \"alice\" from " + path_ + "\n");
    EXPECT_EQ(content(), "");
}

TEST_F(PasswdCommandTest, EndsWithStatus1WhenTheWorkFails) {
    ASSERT_EQ(parse({path_, "alice", "--delete"}), "");
    testing::internal::CaptureStderr();
    EXPECT_EQ(action_(), 1);
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "tesk passwd: " + path_ + ": cannot be read: No such file or directory\n");
}

TEST_F(PasswdCommandTest, WrongUsageIsReported) {
    EXPECT_EQ(parse({}), "FILE is required");
    EXPECT_EQ(parse({path_}), "USER is required");
    EXPECT_EQ(parse({path_, ""}), "USER: The user name cannot be used: it is empty");
    EXPECT_EQ(parse({path_, "a:b"}), "USER: The user name cannot be used: it contains a colon");
    EXPECT_EQ(parse({path_, std::string(256, 'a')}),
              "USER: The user name cannot be used: it is longer than 255 bytes");
    EXPECT_EQ(parse({path_, "a", "b"}), "The following argument was not expected: b");
    EXPECT_EQ(parse({"--remove", path_, "a"}), "there is no option \"--remove\"");
}

TEST_F(PasswdCommandTest, ItsHelpShowsHowItIsUsed) {
    std::ostringstream output;
    std::ostringstream errors;
    const Commands::Program program = {.name = "tesk",
                                       .version = "1",
                                       .summary = "",
                                       .details = "",
                                       .commands = {Commands::passwdCommand()}};
    const Commands::ParsedCommandLine parsed =
        Commands::parseCommandLine(program, {"passwd", "--help"}, output, errors);
    EXPECT_EQ(parsed.status, 0);
    EXPECT_EQ(errors.str(), "");
    EXPECT_EQ(output.str(), R"(Sets a user's password, or removes a user
Usage: tesk passwd [OPTIONS] FILE USER

Positionals:
  FILE TEXT REQUIRED          The password file; created if it is missing
  USER TEXT REQUIRED          The user name

Options:
  -h,--help                   Print this help message and exit
  --delete                    Remove the user

The file has a line for each user, with a hash of the password. Only its owner may read
it, and the group of the service. On a terminal, the command asks for the password twice;
otherwise the password is the first line of standard input.

Examples:
  tesk passwd /etc/tesk/users alice            add alice, or change her password
  tesk passwd /etc/tesk/users alice < secret   the same, with the password from a file
  tesk passwd --delete /etc/tesk/users alice   remove alice
)");
}

}  // namespace

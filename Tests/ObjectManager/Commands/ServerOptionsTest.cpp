#include <cstdlib>
#include <gtest/gtest.h>
#include <string>
#include <unistd.h>
#include <vector>

#include "ObjectManager/Commands/ServerOptions.h"
#include "Platform/Util/TeskBaseException.h"
#include "Tests/ObjectManager/Commands/ParsedCommand.h"
#include "Tests/Support/PseudoTerminal.h"

namespace {

using Commands::ServerArguments;
using Texts = std::vector<std::string>;

// What is wrong with a command line.
std::string faultOf(const Texts& words) {
    ServerArguments arguments;
    Commands::Command command;
    Commands::addServerOptions(command, arguments);
    return parseOptions(command, words);
}

Loading::ServerSource sourceOf(const Texts& words) {
    ServerArguments arguments;
    Commands::Command command;
    Commands::addServerOptions(command, arguments);
    EXPECT_EQ(parseOptions(command, words), "");
    return Commands::serverSource(arguments);
}

TEST(ServerOptions, SayHowToTalkToTheServer) {
    CimXml::ServerOptions expected = {.url = "https://cim.example.com"};
    expected.user = "alice";
    expected.authoritiesFile = "ca.pem";
    expected.certificateFile = "me.pem";
    expected.keyFile = "key.pem";
    expected.verifiesCertificate = false;
    expected.limits.totalTimeout = std::chrono::seconds(30);
    expected.limits.stallTimeout = std::chrono::seconds(30);
    EXPECT_EQ(sourceOf({"--server=https://cim.example.com", "--server-user=alice",
                        "--server-password-file=password", "--server-cacert=ca.pem",
                        "--server-certificate=me.pem", "--server-key=key.pem", "--server-insecure",
                        "--server-timeout=30"}),
              (Loading::ServerSource{
                  .name = "--server", .options = expected, .passwordFile = "password"}));
}

TEST(ServerOptions, AreThoseOfTheClientWithoutOthers) {
    EXPECT_EQ(sourceOf({"--server", "http://h"}).options, CimXml::ServerOptions{.url = "http://h"});
}

TEST(ServerOptions, ATimeoutShortensTheOtherTimes) {
    const CimXml::Limits limits =
        sourceOf({"--server=http://h", "--server-timeout=3"}).options.limits;
    EXPECT_EQ(limits.totalTimeout, std::chrono::seconds(3));
    EXPECT_EQ(limits.stallTimeout, std::chrono::seconds(3));
    EXPECT_EQ(limits.connectTimeout, std::chrono::seconds(3));
}

TEST(ServerOptions, MakeNoSenseWithoutAServer) {
    for (const std::string option :
         {"--server-user", "--server-cacert", "--server-certificate", "--server-timeout"})
        EXPECT_EQ(faultOf({option, "1"}), option + " requires --server");
    EXPECT_EQ(faultOf({"--server-insecure"}), "--server-insecure requires --server");
    EXPECT_EQ(faultOf({"--server=http://h", "--server-password-file=p"}),
              "--server-password-file requires --server-user");
    EXPECT_EQ(faultOf({"--server=http://h", "--server-key=p"}),
              "--server-key requires --server-certificate");
}

TEST(ServerOptions, RefuseWhatIsNoAddress) {
    EXPECT_EQ(faultOf({"--server=ftp://h"}),
              "--server: the address \"ftp://h\" must be like https://HOST:5989 or "
              "http://HOST:5988");
}

// Every user of the machine can see the command line; the message need not show it, too.
TEST(ServerOptions, RefuseAnAddressWithAPassword) {
    EXPECT_EQ(faultOf({"--server=https://alice:secret@h"}),
              "--server: the address must not hold a user or a password");
}

TEST(ServerOptions, RefuseAUserThatHttpCannotSend) {
    for (const std::string user : {"", "alice:x"}) {
        EXPECT_EQ(faultOf({"--server=http://h", "--server-user", user}),
                  "--server-user: a user has at least one character, and no colon");
    }
}

TEST(ServerOptions, HaveTheNetrcFileOfTheUserWhereTheyNameNoUser) {
    setenv("HOME", "/home/alice", 1);
    CimXml::ServerOptions options = {.url = "https://h"};
    EXPECT_EQ(Commands::complete(options), "");
    EXPECT_EQ(options.netrcFile, "/home/alice/.netrc");
    CimXml::ServerOptions withUser = {.url = "https://h", .user = "bob"};
    EXPECT_EQ(Commands::complete(withUser), "");
    EXPECT_EQ(withUser.netrcFile, "");
    unsetenv("HOME");
    CimXml::ServerOptions homeless = {.url = "https://h"};
    EXPECT_EQ(Commands::complete(homeless), "");
    EXPECT_EQ(homeless.netrcFile, "");
}

TEST(ServerOptions, WarnOfAServerThatNeedNotProveWhoItIs) {
    CimXml::ServerOptions options = {.url = "https://h", .verifiesCertificate = false};
    EXPECT_EQ(Commands::complete(options),
              "tesk: warning: the certificate of https://h is not verified: anybody on the way "
              "there can pretend to be the server, and gets the password\n");
}

// What is asked for, and the password then.
int askAndShow() {
    ServerArguments arguments = {.url = "http://h", .user = "alice"};
    std::string text;
    try {
        Commands::askForPassword(arguments);
        text = "[" + arguments.password + "]\n";
    } catch (const TeskBaseException& error) {
        text = std::string(error.getMessage().data()) + "\n";
    }
    return write(STDOUT_FILENO, text.data(), text.size()) < 0 ? 1 : 0;
}

TEST(ServerPassword, IsAskedForOnceAtATerminal) {
    PseudoTerminal terminal(&askAndShow);
    ASSERT_TRUE(terminal.waitFor("Password of alice at http://h: ")) << terminal.shown();
    EXPECT_FALSE(terminal.echoes());
    terminal.type("secret\n");
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_NE(terminal.shown().find("[secret]"), std::string::npos) << terminal.shown();
}

TEST(ServerPassword, MustBeTyped) {
    PseudoTerminal terminal(&askAndShow);
    ASSERT_TRUE(terminal.waitFor("Password of alice at http://h: ")) << terminal.shown();
    terminal.type("\n");
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_NE(terminal.shown().find("No password is typed"), std::string::npos) << terminal.shown();
}

TEST(ServerPassword, IsNotAskedForWithAFileOrWithoutAUserOrAServer) {
    PseudoTerminal terminal([] {
        for (ServerArguments arguments :
             {ServerArguments{.url = "http://h"},
              ServerArguments{.url = "http://h", .user = "alice", .passwordFile = "p"},
              ServerArguments{.url = "", .user = "alice"}})
            Commands::askForPassword(arguments);
        return 0;
    });
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
    EXPECT_EQ(terminal.shown(), "");
}

TEST(ServerPassword, NeedsATerminalOrAFile) {
    const int terminal = dup(STDIN_FILENO);
    int ends[2] = {-1, -1};
    ASSERT_EQ(pipe(ends), 0);
    dup2(ends[0], STDIN_FILENO);
    ServerArguments arguments = {.url = "http://h", .user = "alice"};
    std::string fault;
    try {
        Commands::askForPassword(arguments);
    } catch (const TeskBaseException& error) {
        fault = error.getMessage().data();
    }
    dup2(terminal, STDIN_FILENO);
    for (const int descriptor : {terminal, ends[0], ends[1]})
        close(descriptor);
    EXPECT_EQ(fault,
              "a password is needed: --server-password-file FILE, or a terminal to type it at");
}

}  // namespace

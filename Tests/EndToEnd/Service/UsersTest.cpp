// Who is let in, and the way there that the program itself shows.

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <unistd.h>

#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/ObjectManager/Security/BasicField.h"
#include "Tests/ObjectManager/Security/Files.h"
#include "Tests/ObjectManager/Security/Hashes.h"
#include "Tests/Support/Command.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/PseudoTerminal.h"

namespace {

class ServiceUsers : public RunningService {
  protected:
    static std::string with(const std::string& authorization,
                            const std::string& path = "/root/test/TST_Nothing.wsdl") {
        return request(
            "GET " + path + " HTTP/1.1",
            "Host: " + std::string(kHost) + "\r\n" +
                (authorization.empty() ? "" : "Authorization: " + authorization + "\r\n"));
    }

    // Sets the password with the program; returns what it says.
    std::string setPassword(const std::string& user, const std::string& password) {
        TeskProcess passwd({"passwd", directory_ / "users", user}, password + "\n");
        EXPECT_EQ(passwd.wait(), 0);
        return passwd.log();
    }

    std::string removeUser(const std::string& user) {
        TeskProcess passwd({"passwd", "--delete", directory_ / "users", user});
        EXPECT_EQ(passwd.wait(), 0);
        return passwd.log();
    }
};

TEST_F(ServiceUsers, AStrangerIsAskedForAPasswordWhateverHeAsksFor) {
    start();
    for (const char* const path : {"/root/test/TST_Nothing.wsdl", "/root/test/TST_None.wsdl",
                                   "/root/test/STSService.wsdl", "/root/test/"})
        EXPECT_EQ(response(with("", path)), kChallenge) << path;
}

TEST_F(ServiceUsers, CredentialsMustBeRight) {
    start();
    for (const std::string& wrong :
         {basicField("alice", "Secret"), basicField("alice", ""), basicField("", "secret"),
          basicField("bob", "secret"), basicField("Alice", "secret"), std::string("Basic"),
          std::string("Basic ****"), std::string("Bearer YWxpY2U6c2VjcmV0"),
          std::string("YWxpY2U6c2VjcmV0")})
        EXPECT_EQ(response(with(wrong)), kChallenge) << wrong;
    EXPECT_EQ(response(with(basicField("alice", "secret"))), found(expected("TST_Nothing.wsdl")));
}

TEST_F(ServiceUsers, AHeadRequestOfAStrangerIsRefusedAlike) {
    start();
    EXPECT_EQ(response(request("HEAD /root/test/TST_Nothing.wsdl HTTP/1.1",
                               "Host: " + std::string(kHost) + "\r\n")),
              kChallenge);
}

TEST_F(ServiceUsers, PasswordsAreSetByTeskPasswd) {
    std::filesystem::remove(directory_ / "users");
    const std::string users = directory_ / "users";
    EXPECT_EQ(setPassword("bob", "open sesame"), "Added the user \"bob\" to " + users + "\n");
    start();
    EXPECT_EQ(response(with(basicField("bob", "open sesame"))),
              found(expected("TST_Nothing.wsdl")));
    EXPECT_EQ(response(with(basicField("alice", "secret"))), kChallenge);
}

TEST_F(ServiceUsers, AChangedPasswordCountsAfterAReload) {
    start();
    const std::string users = directory_ / "users";
    EXPECT_EQ(response(with(basicField("alice", "secret"))), found(expected("TST_Nothing.wsdl")));
    EXPECT_EQ(setPassword("alice", "changed"),
              "Changed the password of the user \"alice\" in " + users + "\n");
    EXPECT_EQ(setPassword("bob", "b"), "Added the user \"bob\" to " + users + "\n");
    reload();
    EXPECT_EQ(response(with(basicField("alice", "secret"))), kChallenge);
    EXPECT_EQ(response(with(basicField("alice", "changed"))), found(expected("TST_Nothing.wsdl")));
    EXPECT_EQ(removeUser("alice"), "Removed the user \"alice\" from " + users + "\n");
    reload();
    EXPECT_EQ(response(with(basicField("alice", "changed"))), kChallenge);
    EXPECT_EQ(response(with(basicField("bob", "b"))), found(expected("TST_Nothing.wsdl")));
}

TEST_F(ServiceUsers, AChangeOfThePasswordFileCountsWithoutAReload) {
    start();
    EXPECT_EQ(response(with(basicField("alice", "secret"))), found(expected("TST_Nothing.wsdl")));
    (void)setPassword("bob", "b");
    waitForResponse(with(basicField("bob", "b")), "HTTP/1.1 200 ");
    (void)removeUser("alice");
    waitForResponse(with(basicField("alice", "secret")), "HTTP/1.1 401 ");
}

TEST_F(ServiceUsers, APasswordFileThatIsSpoiltKeepsTheUsersUntilItIsMended) {
    start();
    writeUsers("alice\n");
    process().waitForLog("The users stay as they were: ");
    EXPECT_EQ(response(with(basicField("alice", "secret"))), found(expected("TST_Nothing.wsdl")));
    std::filesystem::remove(directory_ / "users");
    process().waitForLog("The users stay as they were: ", 2);
    EXPECT_EQ(response(with(basicField("alice", "secret"))), found(expected("TST_Nothing.wsdl")));
    writeUsers("bob:" + std::string(kSha512OfSecret) + "\n");
    waitForResponse(with(basicField("bob", "secret")), "HTTP/1.1 200 ");
    EXPECT_EQ(response(with(basicField("alice", "secret"))), kChallenge);
    const std::string kept =
        "error tesk: The users stay as they were: " + std::string(directory_ / "users");
    expectedLog_ = {kept + ":1: there is no colon between user name and hash",
                    kept + ": cannot be read: No such file or directory"};
}

TEST_F(ServiceUsers, APasswordFileThatOthersReadIsRefusedWithTheCommandThatMendsIt) {
    std::filesystem::permissions(directory_ / "users", std::filesystem::perms(0644));
    writeConfiguration();
    TeskProcess refused({"serve", "--config", directory_ / "tesk.toml"});
    EXPECT_EQ(refused.wait(), 1);
    EXPECT_EQ(refused.readRest(), "");
    const std::string users = directory_ / "users";
    const std::string command = "chmod 600 " + users;
    EXPECT_EQ(refused.log(),
              "tesk: " + users +
                  ": others than its owner can read or write it; correct that with: " + command +
                  "\n");
    EXPECT_EQ(outputOf(command + " 2>&1"), "");
    start();
    EXPECT_EQ(response(with(basicField("alice", "secret"))), found(expected("TST_Nothing.wsdl")));
}

// The command in the printed lines is run by a shell, as a person would paste it.
TEST_F(ServiceUsers, WithoutAPasswordFileThePrintedCommandFetchesADocument) {
    if (outputOf("command -v curl").empty())
        GTEST_SKIP() << "there is no curl";
    startWith({"serve", "--listen", "127.0.0.1:0"});
    const std::string address = "http://127.0.0.1:" + std::to_string(port());
    EXPECT_EQ(readyLine(), "Serving 59 classes in 2 namespaces on " + address);
    EXPECT_EQ(process().readLine(),
              "There is no password file. A password that is valid until the service ends is in a "
              "file:");
    const std::string command = process().readLine();
    const std::regex form("  curl --user \"\\$\\(cat (.*/tesk-password-[A-Za-z0-9]{6})\\)\" " +
                          address + "/root/cimv2/CIM_ComputerSystem.wsdl");
    std::smatch match;
    ASSERT_TRUE(std::regex_match(command, match, form)) << command;
    const std::string file = match[1];
    EXPECT_EQ(modeOf(file), 0600U);
    EXPECT_TRUE(std::regex_match(contentOfFile(file), std::regex("tesk:[a-z0-9]{20}\n")));
    const std::string document = outputOf(command + " 2>/dev/null");
    EXPECT_EQ(document.substr(0, 57),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<wsdl:definitions\n");
    EXPECT_NE(document.find("<soap:address location=\"" + address + "/wsman\"/>"),
              std::string::npos);
    EXPECT_TRUE(document.ends_with("</wsdl:definitions>\n")) << document;

    const std::string withWrongOne =
        std::regex_replace(command, std::regex("\"[^\"]*\""), "tesk:wrong");
    EXPECT_EQ(outputOf(withWrongOne + " --output /dev/null --write-out '%{http_code}' 2>/dev/null"),
              "401");
    process().signal(SIGTERM);
    EXPECT_EQ(process().wait(), 0);
    EXPECT_FALSE(std::filesystem::exists(file));
}

// Whose connections these are does not matter: proxies may have as many as they like.
TEST_F(ServiceUsers, AUserWhoIsRemovedIsRefusedWhileConnectionsTakeAllDescriptors) {
    serverKeys_["trusted_proxies"] = "\"127.0.0.1\"";
    writeConfiguration();
    startWith({"-c", "ulimit -n 100 && exec \"$0\" serve --config \"$1\"", TESK_PROGRAM,
               directory_ / "tesk.toml"},
              "/bin/sh");
    const Lines warnings = unusualLines(process().log());
    std::vector<Client> idle;
    for (int count = 0; count < 150; ++count)
        idle.push_back(connect());
    writeUsers("");
    process().waitForLog("tesk: The users have changed");
    idle.clear();
    waitForResponse(with(basicField("alice", "secret")), "HTTP/1.1 401");
    expectedLog_ = warnings;
    expectedLog_.push_back(
        "warning tesk: Every request is refused: " + (directory_ / "users").string() +
        " has no users; \"tesk passwd\" adds them");
}

TEST_F(ServiceUsers, ThePasswordThatWasMadeIsShownAtATerminal) {
    PseudoTerminal terminal([] {
        return execl(TESK_PROGRAM, TESK_PROGRAM, "serve", "--listen", "127.0.0.1:0", nullptr);
    });
    ASSERT_TRUE(terminal.waitFor("CIM_ComputerSystem.wsdl"));
    const std::regex shown(
        "There is no password file\\. This password is valid until the service ends:\r\n"
        "  curl --user tesk:[a-z0-9]{20} http://127\\.0\\.0\\.1:[0-9]+/root/cimv2/"
        "CIM_ComputerSystem\\.wsdl");
    EXPECT_TRUE(std::regex_search(terminal.shown(), shown)) << terminal.shown();
    terminal.sendSignal(SIGTERM);
    EXPECT_EQ(terminal.waitForEnd(), "status 0");
}

TEST_F(ServiceUsers, ThePasswordThatWasMadeOutlivesAReload) {
    if (outputOf("command -v curl").empty())
        GTEST_SKIP() << "there is no curl";
    startWith({"serve", "--listen", "127.0.0.1:0"});
    static_cast<void>(process().readLine());
    const std::string command = process().readLine() + " 2>/dev/null";
    const std::string before = outputOf(command);
    reload();
    EXPECT_EQ(outputOf(command), before);
    EXPECT_NE(before, "");
}

TEST_F(ServiceUsers, APasswordFileWithoutUsersIsWarnedOfAtStartAndReload) {
    const std::string warning =
        "warning tesk: Every request is refused: " + (directory_ / "users").string() +
        " has no users; \"tesk passwd\" adds them";
    writeUsers("# Nobody yet\n");
    start();
    EXPECT_EQ(response(with(basicField("alice", "secret"))), kChallenge);
    EXPECT_EQ(unusualLines(process().log()), Lines{warning});
    EXPECT_EQ(setPassword("alice", "secret"),
              "Added the user \"alice\" to " + (directory_ / "users").string() + "\n");
    reload();
    EXPECT_EQ(response(with(basicField("alice", "secret"))), found(expected("TST_Nothing.wsdl")));
    EXPECT_EQ(unusualLines(process().log()), Lines{warning});
    writeUsers("");
    process().waitForLog(warning, 2);  // as the file has changed
    reload();
    EXPECT_EQ(response(with(basicField("alice", "secret"))), kChallenge);
    expectedLog_ = {warning, warning, warning};
}

TEST_F(ServiceUsers, NoPasswordComesIntoTheLog) {
    logKeys_ = "level = 4\n";
    start();
    EXPECT_EQ(response(with(basicField("alice", "secret"))), found(expected("TST_Nothing.wsdl")));
    EXPECT_EQ(response(with(basicField("alice", "wrong-one"))), kChallenge);
    expectedLog_ = {"trace WsdlAdapter::processInput: Request received",
                    "trace WsdlAdapter::processInput: Request processing completed normally"};
    const std::string log = process().log();
    for (const char* const secret : {"secret", "wrong-one", "YWxpY2U6"})
        EXPECT_EQ(log.find(secret), std::string::npos) << log;
}

TEST_F(ServiceUsers, EverybodyIsLetInWithoutAuthentication) {
    serverKeys_["authentication"] = "\"none\"";
    std::filesystem::remove(directory_ / "users");
    listen_ = {"127.0.0.1:0", "0.0.0.0:0"};
    start();
    EXPECT_EQ(response(with("")), found(expected("TST_Nothing.wsdl")));
    EXPECT_EQ(response(with(basicField("bob", "wrong"))), found(expected("TST_Nothing.wsdl")));
    EXPECT_EQ(response(with("", "/root/test/TST_None.wsdl")), kNotFound);
    EXPECT_EQ(response(with("", "/other")).substr(0, 22), "HTTP/1.1 404 Not Found");
    reload();
    EXPECT_EQ(response(with("")), found(expected("TST_Nothing.wsdl")));
    expectedLog_ = {
        "warning tesk: Other machines reach http://0.0.0.0:" + std::to_string(port(1)) +
        ", and everybody can read the documents there: set authentication in [server] to "
        "\"basic\", or listen on 127.0.0.1 only"};
}

TEST_F(ServiceUsers, AReloadDoesNotEndAuthentication) {
    start();
    serverKeys_["authentication"] = "\"none\"";
    writeConfiguration();
    reload();
    EXPECT_EQ(response(with("")), kChallenge);
    EXPECT_EQ(response(with(basicField("alice", "secret"))), found(expected("TST_Nothing.wsdl")));
    expectedLog_ = {
        "warning tesk: No password file is configured any more; the users stay until the next "
        "start",
        "warning tesk: Changes of [server], [log] and credential_lifetime take effect at the next "
        "start"};
}

}  // namespace

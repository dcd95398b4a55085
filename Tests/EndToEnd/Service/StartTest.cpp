// What keeps `tesk serve` from starting, and what it says then.

#include <gtest/gtest.h>
#include <unistd.h>

#include "Tests/EndToEnd/Service/RunningService.h"

namespace {

class ServiceStart : public RunningService {
  protected:
    using Arguments = std::vector<std::string>;

    // Nothing on standard output, this status, and these lines in the log that are no information.
    static void expectFailure(const Arguments& arguments, int status, const Lines& lines) {
        TeskProcess process(arguments);
        EXPECT_EQ(process.wait(), status);
        EXPECT_EQ(process.readRest(), "");
        EXPECT_EQ(unusualLines(process.log()), lines);
    }

    [[nodiscard]] Arguments withConfiguration() const {
        writeConfiguration();
        return {"serve", "--config", configuration()};
    }

    [[nodiscard]] std::string configuration() const { return directory_ / "tesk.toml"; }
};

TEST_F(ServiceStart, SaysWhatItServesAndWhere) {
    namespaces_["interop"] = "test.mof";
    listen_ = {"127.0.0.1:0", "127.0.0.1:0"};
    start();
    EXPECT_EQ(readyLine(),
              "Serving 4 classes in 2 namespaces on http://127.0.0.1:" + std::to_string(port(0)) +
                  " http://127.0.0.1:" + std::to_string(port(1)));
    process().signal(SIGTERM);
    EXPECT_EQ(process().readRest(), "");
}

TEST_F(ServiceStart, WarnsOfPasswordsInClearTextWhereOtherMachinesListen) {
    listen_ = {"127.0.0.2:0", "0.0.0.0:0"};
    start();
    expectedLog_ = {
        "warning tesk: Other machines reach http://0.0.0.0:" + std::to_string(port(1)) +
        ", and passwords travel there in clear text: use tls_listen in [server] instead, put a "
        "TLS proxy in front of it, or listen on 127.0.0.1 only"};
}

TEST_F(ServiceStart, WarnsOfRoot) {
    start();
    EXPECT_EQ(process().log().find("warning tesk: The process runs as root") != std::string::npos,
              geteuid() == 0);
}

TEST_F(ServiceStart, APortInUse) {
    start();
    const std::string address = "127.0.0.1:" + std::to_string(port());
    TeskProcess second({"serve", "--listen", address});
    EXPECT_EQ(second.wait(), 1);
    EXPECT_EQ(second.readRest(), "");
    EXPECT_EQ(unusualLines(second.log()),
              Lines{"tesk: Cannot listen on 127.0.0.1 port " + std::to_string(port()) +
                    ": Address already in use; choose another port with --listen, or with "
                    "listen in [server]"});
    // The providers have been started by then.
    EXPECT_NE(second.log().find("Z information WsdlWebProvider: Shutdown called\n"),
              std::string::npos)
        << second.log();
    EXPECT_EQ(response(get("/root/test/TST_Nothing.wsdl")), found(expected("TST_Nothing.wsdl")));
}

// It is the port where tesk listens by default, too.
TEST_F(ServiceStart, ThePortOfWsManagementInUse) {
    listen_ = {"127.0.0.3:5985"};
    start();
    expectFailure({"serve", "--listen", listen_.front()}, 1,
                  {"tesk: Cannot listen on 127.0.0.3 port 5985: Address already in use; 5985 is "
                   "the port of WS-Management, which a CIM server may use; choose another port "
                   "with --listen, or with listen in [server]"});
}

TEST_F(ServiceStart, AnAddressOfAnotherMachine) {
    expectFailure({"serve", "--listen", "192.0.2.1:0"}, 1,
                  {"tesk: Cannot listen on 192.0.2.1 port 0: Cannot assign requested address"});
}

TEST_F(ServiceStart, AnAddressThatIsNone) {
    expectFailure(
        {"serve", "--listen", "127.0.0.1:65536"}, 2,
        {"tesk serve: --listen: \"127.0.0.1:65536\" is not an address with a port, such as "
         "\"127.0.0.1:5985\", \"0.0.0.0:5985\" or \"[::1]:5985\"",
         "\"tesk serve --help\" tells more."});
}

TEST_F(ServiceStart, AModelThatIsMissing) {
    const std::string file = directory_ / "none.mof";
    expectFailure({"serve", "--namespace", "root/test=" + file}, 1,
                  {file + ": error: cannot be read: No such file or directory",
                   "tesk: the classes have errors and are not used"});
}

TEST_F(ServiceStart, AModelThatIsWrong) {
    const std::string file = directory_.write("wrong.mof", "class TST_One { x };");
    expectFailure({"serve", "--namespace", "root/test=" + file}, 1,
                  {file + ":1:19: error: found \"}\", expected \"ref\"", "class TST_One { x };",
                   "                  ^", "tesk: the classes have errors and are not used"});
}

TEST_F(ServiceStart, AConfigurationThatIsWrong) {
    serverKeys_["lisen"] = "\"127.0.0.1:0\"";
    expectFailure(withConfiguration(), 1,
                  {configuration() + ":6:1: error: unknown key \"lisen\" in [server]; did you mean "
                                     "\"listen\"?",
                   "tesk: the configuration has errors and is not used"});
}

TEST_F(ServiceStart, AConfigurationThatIsMissing) {
    expectFailure({"serve", "--config", configuration()}, 1,
                  {configuration() + ": error: cannot be read: No such file or directory",
                   "tesk: the configuration has errors and is not used"});
}

TEST_F(ServiceStart, APasswordFileThatIsMissing) {
    const std::string users = directory_ / "nobody";
    expectFailure({"serve", "--password-file", users}, 1,
                  {"tesk: " + users + ": cannot be read: No such file or directory"});
}

TEST_F(ServiceStart, APasswordFileThatIsWrong) {
    writeUsers("alice\n");
    const std::string users = directory_ / "users";
    expectFailure(withConfiguration(), 1,
                  {"tesk: " + users + ":1: there is no colon between user name and hash"});
}

TEST_F(ServiceStart, ALogFileThatCannotBeWritten) {
    logKeys_ = "file = \"missing/log\"\n";
    expectFailure(withConfiguration(), 1,
                  {"tesk: the log file " + (directory_ / "missing/log").string() +
                   " cannot be written: No such file or directory"});
}

// A password that was made would be lost.
TEST_F(ServiceStart, AnOutputThatCannotBeWritten) {
    TeskProcess process({"-c", "exec \"$0\" serve --listen 127.0.0.1:0 >/dev/full", TESK_PROGRAM},
                        "", "/bin/sh");
    EXPECT_EQ(process.wait(), 1);
    EXPECT_EQ(unusualLines(process.log()), Lines{"tesk: the output cannot be written"});
    EXPECT_NE(process.log().find("Z information WsdlWebProvider: Shutdown called\n"),
              std::string::npos)
        << process.log();
}

TEST_F(ServiceStart, AnUnknownOption) {
    TeskProcess process({"serve", "--lisen", "127.0.0.1:0"});
    EXPECT_EQ(process.wait(), 2);
    EXPECT_EQ(process.readRest(), "");
    EXPECT_NE(process.log().find("--lisen"), std::string::npos) << process.log();
}

}  // namespace

// Who asked for what: the access log, and the log of failed logins.

#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <regex>
#include <sstream>

#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/ObjectManager/Security/BasicField.h"
#include "Tests/Support/Command.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/WaitUntil.h"

namespace {

class ServiceAccessLog : public RunningService {
  protected:
    void startWithAccessLog() {
        logKeys_ = "access = \"access\"\n";
        start();
    }

    // The lines of a file, without the time, of which the form is checked.
    [[nodiscard]] Lines linesOf(const char* file) const {
        Lines lines;
        const std::regex time(R"( \[\d\d/[A-Z][a-z]{2}/\d{4}:\d\d:\d\d:\d\d \+0000\])");
        std::istringstream stream(contentOfFile(directory_ / file));
        for (std::string line; std::getline(stream, line);)
            lines.push_back(std::regex_replace(line, time, " TIME"));
        return lines;
    }

    static std::string as(const std::string& user, const std::string& password) {
        return request(
            "GET /root/test/TST_Nothing.wsdl HTTP/1.1",
            "Host: a\r\nAuthorization: " + basicField(user, password) + "\r\nUser-Agent: test\r\n");
    }

    [[nodiscard]] Lines failedLogins() const {
        Lines lines;
        std::istringstream stream(process().log());
        for (std::string line; std::getline(stream, line);) {
            if (line.find("ailed login") != std::string::npos)
                lines.push_back(line);
        }
        return lines;
    }
};

TEST_F(ServiceAccessLog, NamesClientUserRequestAndResponse) {
    startWithAccessLog();
    const std::string document = expected("TST_Nothing.wsdl", "a");
    EXPECT_EQ(response(as("alice", "secret")), found(document));
    (void)response(as("alice", "wrong"));
    (void)response(request("GET / HTTP/1.1", "Host: a\r\n"));
    (void)response("GET /\" HTTP/1.1\r\n\r\n");
    EXPECT_EQ(linesOf("access"),
              (Lines{"127.0.0.1 - alice TIME \"GET /root/test/TST_Nothing.wsdl HTTP/1.1\" 200 " +
                         std::to_string(document.size()) + " \"-\" \"test\"",
                     "127.0.0.1 - alice TIME \"GET /root/test/TST_Nothing.wsdl HTTP/1.1\" 401 - "
                     "\"-\" \"test\"",
                     "127.0.0.1 - - TIME \"GET / HTTP/1.1\" 401 - \"-\" \"-\"",
                     linesOf("access").back()}));
    EXPECT_TRUE(
        linesOf("access").back().starts_with("127.0.0.1 - - TIME \"GET /\\x22 HTTP/1.1\" 400 "))
        << linesOf("access").back();
}

TEST_F(ServiceAccessLog, IsReopenedBySigusr1WithoutAReload) {
    logKeys_ = "access = \"access\"\nfile = \"log\"\n";
    start();
    (void)response(as("alice", "secret"));
    writeModel("test.mof", "class TST_One {};\n");
    std::filesystem::rename(directory_ / "access", directory_ / "access.1");
    std::filesystem::rename(directory_ / "log", directory_ / "log.1");
    process().signal(SIGUSR1);
    EXPECT_TRUE(waitUntil([&] {
        return std::filesystem::exists(directory_ / "access") &&
               std::filesystem::exists(directory_ / "log");
    }));
    EXPECT_EQ(response(as("alice", "secret")), found(expected("TST_Nothing.wsdl", "a")));
    EXPECT_EQ(linesOf("access.1").size(), 1U);
    EXPECT_EQ(linesOf("access").size(), 1U);
    EXPECT_EQ(contentOfFile(directory_ / "log"), "");
    EXPECT_EQ(contentOfFile(directory_ / "log.1").find("Reloaded"), std::string::npos);
}

TEST_F(ServiceAccessLog, GoesToStandardOutputOnRequest) {
    writeConfiguration();
    startWith({"serve", "--config", directory_ / "tesk.toml", "--access-log", "-"});
    (void)response(as("alice", "secret"));
    const std::string line = process().readLine();
    EXPECT_TRUE(line.starts_with("127.0.0.1 - alice [")) << line;
}

TEST_F(ServiceAccessLog, AFileThatCannotBeOpenedKeepsTheServiceFromStarting) {
    writeConfiguration();
    TeskProcess refused({"serve", "--config", directory_ / "tesk.toml", "--access-log",
                         directory_.path().string()});
    EXPECT_EQ(refused.wait(), 1);
    EXPECT_EQ(unusualLines(refused.log()),
              Lines{"tesk: the log file " + directory_.path().string() +
                    " cannot be written: Is a directory"});
}

TEST_F(ServiceAccessLog, HasTheClientBehindATrustedProxy) {
    serverKeys_["trusted_proxies"] = "\"127.0.0.1\"";
    startWithAccessLog();
    (void)response(request("GET / HTTP/1.1", "Host: a\r\nX-Forwarded-For: 1.2.3.4, 192.0.2.7\r\n"));
    EXPECT_TRUE(linesOf("access").at(0).starts_with("192.0.2.7 - - TIME"));
}

TEST_F(ServiceAccessLog, AFailedLoginIsLoggedWithClientAndUser) {
    start();
    (void)response(as("alice", "secret"));
    (void)response(request("GET / HTTP/1.1", "Host: a\r\n"));
    EXPECT_EQ(failedLogins(), Lines());
    (void)response(as("bob", "secret"));
    EXPECT_EQ(failedLogins().size(), 1U);
    EXPECT_TRUE(failedLogins().at(0).ends_with(
        "Z warning HttpFrontEnd: Failed login from 127.0.0.1 as \"bob\""));
    (void)response(as("alice", "wrong"));
    process().waitForLog("ailed login", 2);
}

// fail2ban cuts the time off and searches what is left.
constexpr const char* kSearch = R"(
import re, sys
document, log = (open(path).read() for path in sys.argv[1:3])
expression = re.search(r'^failregex = (.*)$', document, re.MULTILINE)[1]
expression = expression.replace('<ADDR>', r'(?P<address>[0-9A-Fa-f:.]+)')
for line in log.splitlines():
    match = re.search(expression, re.sub(r'^\S+Z', '', line))
    print(match['address'] if match else '-')
)";

TEST_F(ServiceAccessLog, TheDocumentedFilterFindsTheClientOfAFailedLogin) {
    if (outputOf("command -v python3").empty())
        GTEST_SKIP() << "there is no Python";
    serverKeys_["trusted_proxies"] = "\"127.0.0.1\"";
    start();
    const std::string forged = "x\" as Failed login from 9.9.9.9 as \"y";
    (void)response(request("GET / HTTP/1.1",
                           "Host: a\r\nX-Forwarded-For: 2001:db8::7\r\n"
                           "Authorization: " +
                               basicField(forged, "x") + "\r\n"));
    ASSERT_EQ(failedLogins().size(), 1U) << process().log();
    const std::string log =
        directory_.write("lines", failedLogins().front() +
                                      "\n2026-11-21T22:55:07.123Z information tesk: Failed "
                                      "login from 9.9.9.9 as \"x\"\n");
    const std::string script = directory_.write("search.py", kSearch);
    EXPECT_EQ(outputOf("python3 " + script + " " DOCS_DIRECTORY "/operating.md " + log),
              "2001:db8::7\n-\n");
}

}  // namespace

// Health and metrics, on an address of their own.

#include <csignal>
#include <gtest/gtest.h>
#include <regex>

#include "Tests/EndToEnd/Service/RunningService.h"
#include "Tests/ObjectManager/Metrics/MetricsText.h"
#include "Tests/Support/Command.h"
#include "Tests/Support/StandInServer.h"
#include "Tests/Support/WaitUntil.h"

namespace {

class ServiceAdmin : public RunningService {
  protected:
    ServiceAdmin() { serverKeys_["admin_listen"] = "\"127.0.0.1:0\""; }

    [[nodiscard]] std::uint16_t adminPort() const {
        process().waitForLog("Health and metrics are at ");
        const std::regex line("Health and metrics are at http://127\\.0\\.0\\.1:([0-9]+)");
        std::smatch match;
        const std::string log = process().log();
        EXPECT_TRUE(std::regex_search(log, match, line)) << log;
        return static_cast<std::uint16_t>(std::stoul(match[1]));
    }

    // The response to a request at the address for health and metrics.
    [[nodiscard]] std::string ask(const std::string& path) const {
        const Client client("127.0.0.1", adminPort());
        EXPECT_TRUE(client.send("GET " + path + " HTTP/1.1\r\nHost: a\r\n\r\n"));
        return client.readAll();
    }

    [[nodiscard]] std::string metrics() const {
        const std::string response = ask("/metrics");
        return response.substr(response.find("\r\n\r\n") + 4);
    }

    [[nodiscard]] std::string sample(const std::string& name) const {
        return sampleOf(metrics(), name);
    }
};

TEST_F(ServiceAdmin, EverybodyMayAskForHealthAndNothingElse) {
    start();
    EXPECT_TRUE(ask("/healthy").starts_with("HTTP/1.1 200 OK\r\n"));
    EXPECT_TRUE(ask("/ready").starts_with("HTTP/1.1 200 OK\r\n"));
    EXPECT_TRUE(ask("/root/test/TST_Nothing.wsdl").starts_with("HTTP/1.1 404 Not Found\r\n"));
    EXPECT_EQ(response(request("GET /healthy HTTP/1.1", "Host: a\r\n")), kChallenge);
}

TEST_F(ServiceAdmin, TheMetricsCountWhatHappens) {
    start();
    const std::string document = expected("TST_Nothing.wsdl");
    EXPECT_EQ(response(get("/root/test/TST_Nothing.wsdl")), found(document));
    (void)response(get("/root/test/TST_One.xsd"));
    (void)response(request("GET / HTTP/1.1", "Host: a\r\nAuthorization: Basic YWxpY2U6eA==\r\n"));
    (void)response("GET\r\n\r\n");
    EXPECT_TRUE(waitUntil([&] {
        return sample("tesk_http_responses_total{document=\"other\",status=\"400\"}") == "1";
    }));
    const std::string before = metrics();
    EXPECT_EQ(faultsOfMetrics(before), "");
    EXPECT_EQ(sampleOf(before, "tesk_http_responses_total{document=\"wsdl\",status=\"200\"}"), "1");
    EXPECT_EQ(sampleOf(before, "tesk_http_responses_total{document=\"xsd\",status=\"200\"}"), "1");
    EXPECT_EQ(sampleOf(before, "tesk_http_responses_total{document=\"page\",status=\"401\"}"), "1");
    EXPECT_EQ(sampleOf(before, "tesk_http_response_duration_seconds_count"), "4");
    EXPECT_EQ(sampleOf(before, "tesk_failed_logins_total"), "1");
    EXPECT_EQ(sampleOf(before, "tesk_http_connections_accepted_total"), "4");
    EXPECT_EQ(sampleOf(before, "tesk_classes{namespace=\"root/test\"}"), "2");
    EXPECT_EQ(sampleOf(before, "tesk_namespaces"), "1");
    EXPECT_EQ(sampleOf(before, "tesk_reloads_total{result=\"success\"}"), "0");

    writeModel("test.mof", "class TST_Nothing {};\n");
    reload();
    EXPECT_TRUE(waitUntil([&] { return sample("tesk_reloads_total{result=\"success\"}") == "1"; }));
    EXPECT_EQ(sample("tesk_classes{namespace=\"root/test\"}"), "1");
    writeModel("test.mof", "class {");
    reload();
    EXPECT_TRUE(waitUntil([&] { return sample("tesk_reloads_total{result=\"failure\"}") == "1"; }));
    expectedLog_ = unusualLines(process().log());
}

TEST_F(ServiceAdmin, PromtoolFindsNoFault) {
    if (outputOf("command -v promtool").empty())
        GTEST_SKIP() << "there is no promtool";
    start();
    EXPECT_EQ(response(get("/root/test/TST_Nothing.wsdl")), found(expected("TST_Nothing.wsdl")));
    const std::string file = directory_.write("metrics", metrics());
    EXPECT_EQ(outputOf("promtool check metrics < '" + file + "' 2>&1"), "");
}

TEST_F(ServiceAdmin, IsNotReadyWhileTheClassesAreLoaded) {
    const StandInServer silent(nullptr);
    const std::string configuration = directory_.write(
        "tesk.toml",
        "[namespaces]\n\"root/x\" = { server = \"one\" }\n[servers.one]\nurl = \"" + silent.url() +
            "\"\ntimeout = 300\n[server]\nlisten = \"127.0.0.1:0\"\nadmin_listen = \"0\"\n");
    process_.emplace(std::vector<std::string>{"serve", "--config", configuration});
    const std::string ready = ask("/ready");
    EXPECT_TRUE(ready.starts_with("HTTP/1.1 503 Service Unavailable\r\n")) << ready;
    EXPECT_TRUE(ready.ends_with("The classes are being loaded.\n")) << ready;
    EXPECT_TRUE(ask("/healthy").starts_with("HTTP/1.1 200 OK\r\n"));
    EXPECT_EQ(faultsOfMetrics(metrics()), "");
    process().signal(SIGTERM);
    EXPECT_EQ(process().wait(), 0);
}

TEST_F(ServiceAdmin, IsNotReadyWhileTheServiceIsBeingStopped) {
    writeModel("test.mof", "class TST_Nothing {};\n" + largeClass());
    start();
    const std::uint16_t admin = adminPort();
    const Client client = sending(get("/root/test/TST_Large.wsdl"));
    EXPECT_EQ(client.read(15), "HTTP/1.1 200 OK");
    process().signal(SIGTERM);
    process().waitForLog("tesk: Stopping");
    const Client probe("127.0.0.1", admin);
    EXPECT_TRUE(probe.send("GET /ready HTTP/1.1\r\nHost: a\r\n\r\n"));
    const std::string ready = probe.readAll();
    EXPECT_TRUE(ready.ends_with("The service is being stopped.\n")) << ready;
    EXPECT_TRUE(client.readAll().ends_with("</wsdl:definitions>\n"));
    EXPECT_EQ(process().wait(), 0);
}

TEST_F(ServiceAdmin, AnAddressThatOthersReachIsWarnedOf) {
    serverKeys_["admin_listen"] = "\"0.0.0.0:0\"";
    start();
    const std::regex line(
        "warning tesk: Other machines reach http://0\\.0\\.0\\.0:[0-9]+, and everybody can read "
        "health and metrics there");
    expectedLog_ = unusualLines(process().log());
    ASSERT_EQ(expectedLog_.size(), 1U);
    EXPECT_TRUE(std::regex_match(expectedLog_.front(), line)) << expectedLog_.front();
}

}  // namespace

#include <chrono>
#include <gtest/gtest.h>
#include <optional>
#include <string>

#include "ObjectManager/Metrics/ServiceMetrics.h"
#include "Tests/ObjectManager/Metrics/MetricsText.h"
#include "Tests/Support/Threads.h"

namespace {

using Metrics::documentKindOf;
using Metrics::ServiceMetrics;
using std::chrono::milliseconds;

class ServiceMetricsTest : public testing::Test {
  protected:
    [[nodiscard]] std::string sample(const std::string& name) {
        return sampleOf(metrics_.text(), name);
    }

    ServiceMetrics metrics_{"1.2.3"};
};

TEST(DocumentKind, IsThatOfThePath) {
    EXPECT_EQ(documentKindOf("/root/cimv2/CIM_Foo.wsdl"), "wsdl");
    EXPECT_EQ(documentKindOf("/root/cimv2/CIM_Foo.xsd"), "xsd");
    EXPECT_EQ(documentKindOf("/"), "page");
    EXPECT_EQ(documentKindOf("/-/root/cimv2/CIM_Foo"), "page");
    EXPECT_EQ(documentKindOf("/favicon.ico"), "other");
    EXPECT_EQ(documentKindOf(""), "other");
}

TEST_F(ServiceMetricsTest, TheTextFollowsTheGrammarBeforeAndAfterAnythingHappens) {
    EXPECT_EQ(faultsOfMetrics(metrics_.text()), "");
    metrics_.countResponse("/a/A.wsdl", 200, milliseconds(3), 1000);
    metrics_.countResponse("", 408, milliseconds(0), 0);
    metrics_.countFailedLogin();
    metrics_.countReload(false);
    metrics_.countServerRefresh(2);
    metrics_.setContent({{.name = "root/\"cimv2\\\n", .classes = 3}});
    metrics_.setSource([] {
        return ServiceMetrics::ServerState{.connections = 1, .certificateExpiry = 1'800'000'000};
    });
    EXPECT_EQ(faultsOfMetrics(metrics_.text()), "");
}

TEST_F(ServiceMetricsTest, ResponsesAreCountedByDocumentAndStatus) {
    metrics_.countResponse("/a/A.wsdl", 200, milliseconds(3), 1000);
    metrics_.countResponse("/a/A.wsdl", 200, milliseconds(30), 24);
    metrics_.countResponse("/a/A.xsd", 401, milliseconds(3), 0);
    metrics_.countResponse("", 40'000, milliseconds(0), 0);
    EXPECT_EQ(sample("tesk_http_responses_total{document=\"wsdl\",status=\"200\"}"), "2");
    EXPECT_EQ(sample("tesk_http_responses_total{document=\"xsd\",status=\"401\"}"), "1");
    EXPECT_EQ(sample("tesk_http_response_body_bytes_total"), "1024");
    EXPECT_EQ(sample("tesk_http_response_duration_seconds_count"), "4");
    EXPECT_EQ(sample("tesk_http_response_duration_seconds_bucket{le=\"0.005\"}"), "3");
    EXPECT_EQ(sample("tesk_http_response_duration_seconds_bucket{le=\"0.05\"}"), "4");
}

TEST_F(ServiceMetricsTest, ReloadsAndRefreshesAreCountedByResult) {
    EXPECT_EQ(sample("tesk_reloads_total{result=\"success\"}"), "0");
    metrics_.countReload(true);
    metrics_.countReload(false);
    metrics_.countServerRefresh(0);
    metrics_.countServerRefresh(3);
    EXPECT_EQ(sample("tesk_reloads_total{result=\"success\"}"), "1");
    EXPECT_EQ(sample("tesk_reloads_total{result=\"failure\"}"), "1");
    EXPECT_EQ(sample("tesk_server_refreshes_total{result=\"success\"}"), "1");
    EXPECT_EQ(sample("tesk_server_refreshes_total{result=\"failure\"}"), "1");
    EXPECT_EQ(sample("tesk_failing_servers"), "3");
}

TEST_F(ServiceMetricsTest, TheContentIsThatOfTheLastLoad) {
    metrics_.setContent({{.name = "interop", .classes = 3}, {.name = "root/a", .classes = 1}});
    metrics_.setContent({{.name = "root/a", .classes = 5}});
    EXPECT_EQ(sample("tesk_classes{namespace=\"root/a\"}"), "5");
    EXPECT_EQ(sample("tesk_classes{namespace=\"interop\"}"), "none");
    EXPECT_EQ(sample("tesk_namespaces"), "1");
    EXPECT_NE(sample("tesk_classes_loaded_timestamp_seconds"), "0");
}

TEST_F(ServiceMetricsTest, TheServerIsAskedWhenTheTextIsMade) {
    std::uint64_t accepted = 5;
    metrics_.setSource([&] {
        return ServiceMetrics::ServerState{.connections = 2,
                                           .acceptedConnections = accepted,
                                           .refusedConnections = 1,
                                           .failedHandshakes = 4,
                                           .responseMemory = 4096,
                                           .certificateExpiry = std::nullopt};
    });
    EXPECT_EQ(sample("tesk_http_connections_accepted_total"), "5");
    accepted = 7;
    EXPECT_EQ(sample("tesk_http_connections_accepted_total"), "7");
    EXPECT_EQ(sample("tesk_http_connections"), "2");
    EXPECT_EQ(sample("tesk_http_connections_refused_total"), "1");
    EXPECT_EQ(sample("tesk_tls_handshakes_failed_total"), "4");
    EXPECT_EQ(sample("tesk_response_memory_bytes"), "4096");
    EXPECT_EQ(sample("tesk_tls_certificate_expiry_timestamp_seconds"), "none");
    metrics_.setSource(nullptr);
    accepted = 9;
    EXPECT_EQ(sample("tesk_http_connections_accepted_total"), "7");
}

TEST_F(ServiceMetricsTest, ManyThreadsCountAtOnce) {
    runOnThreads(4, [&](int thread) {
        for (int times = 0; times < 500; ++times) {
            metrics_.countResponse("/a/A.xsd", 200U + static_cast<unsigned>(times % 3),
                                   milliseconds(1), 1);
            if (thread == 0 && times % 100 == 0) {
                EXPECT_EQ(faultsOfMetrics(metrics_.text()), "");
            }
        }
    });
    EXPECT_EQ(sample("tesk_http_response_body_bytes_total"), "2000");
}

}  // namespace

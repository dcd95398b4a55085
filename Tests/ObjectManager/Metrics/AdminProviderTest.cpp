#include <gtest/gtest.h>
#include <string>

#include "ObjectManager/Metrics/AdminProvider.h"
#include "Tests/Support/RecordingStreams.h"

namespace {

using Metrics::AdminProvider;

class AdminProviderTest : public testing::Test {
  protected:
    [[nodiscard]] std::string responseTo(const char* path) {
        TSKHTTPRequest request("GET", path, "HTTP/1.1");
        EmptyInput input;
        RecordedOutput output;
        bool handled = true;
        provider_.processHTTPRequest(input, output, request, handled, nullptr);
        EXPECT_TRUE(handled);
        return output.text;
    }

    static std::string response(const std::string& status, const std::string& body) {
        return "HTTP/1.1 " + status +
               "\r\nConnection: close\r\nCache-Control: no-store\r\nContent-Length: " +
               std::to_string(body.size()) + "\r\nContent-Type: text/plain; charset=utf-8\r\n\r\n" +
               body;
    }

    Metrics::ServiceMetrics metrics_{"1.2.3"};
    AdminProvider provider_{metrics_};
};

TEST_F(AdminProviderTest, IsHealthyInEveryState) {
    const std::string healthy = response("200 OK", "The service is healthy.\n");
    EXPECT_EQ(responseTo("/healthy"), healthy);
    provider_.setState(AdminProvider::State::kStopping);
    EXPECT_EQ(responseTo("/healthy"), healthy);
}

TEST_F(AdminProviderTest, IsReadyBetweenLoadingAndStopping) {
    EXPECT_EQ(responseTo("/ready"),
              response("503 Service Unavailable", "The classes are being loaded.\n"));
    provider_.setState(AdminProvider::State::kReady);
    EXPECT_EQ(responseTo("/ready"), response("200 OK", "The service is ready.\n"));
    provider_.setState(AdminProvider::State::kStopping);
    EXPECT_EQ(responseTo("/ready"),
              response("503 Service Unavailable", "The service is being stopped.\n"));
}

TEST_F(AdminProviderTest, ServesTheMetrics) {
    const std::string text = responseTo("/metrics");
    EXPECT_NE(text.find("Content-Type: text/plain; version=0.0.4; charset=utf-8\r\n"),
              std::string::npos);
    EXPECT_NE(text.find("\ntesk_build_info{version=\"1.2.3\"} 1\n"), std::string::npos) << text;
}

TEST_F(AdminProviderTest, HasNothingElse) {
    for (const char* const path : {"/", "/metric", "/metrics/", "/root/cimv2/CIM_Foo.wsdl"}) {
        EXPECT_EQ(responseTo(path),
                  response("404 Not Found", "There are /healthy, /ready and /metrics.\n"));
    }
}

}  // namespace

#include <boost/asio/ip/address.hpp>
#include <gtest/gtest.h>
#include <new>
#include <stdexcept>
#include <string>
#include <vector>

#include "ObjectManager/Http/Dispatcher.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Tests/ObjectManager/Http/FunctionProvider.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/RecordingLogSink.h"

namespace {

using Lines = std::vector<std::string>;
using std::string_literals::operator""s;

constexpr const char* kHello =
    "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: 5\r\n\r\nhello";

constexpr const char* kNotFound =
    "HTTP/1.1 404 Not Found\r\nConnection: close\r\nContent-Type: text/plain; charset=utf-8\r\n"
    "Content-Length: 31\r\n\r\nThere is nothing at this path.\n";

constexpr const char* kFailed =
    "HTTP/1.1 500 Internal Server Error\r\nConnection: close\r\n"
    "Content-Type: text/plain; charset=utf-8\r\n"
    "Content-Length: 37\r\n\r\nThe server failed; its log says why.\n";

constexpr const char* kChallenge =
    "HTTP/1.1 401 Unauthorized\r\nConnection: close\r\n"
    "WWW-Authenticate: Basic realm=\"tesk\", charset=\"UTF-8\"\r\nContent-Length: 0\r\n\r\n";

class DispatcherTest : public testing::Test {
  protected:
    DispatcherTest() {
        provider_.respond = [](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
            writeTo(ostr, kHello);
        };
        provider_.addTo(manager_);
    }

    // The response without its date.
    [[nodiscard]] std::string responseTo(const char* path, const char* method = "GET") {
        TSKHTTPRequest request(method, path, "HTTP/1.1");
        const Http::Dispatcher dispatcher(manager_);
        const Http::Response response =
            dispatcher.respond(request, {boost::asio::ip::make_address("192.0.2.7"), 50000});
        std::string text;
        for (const boost::asio::const_buffer& part : response.unsent())
            text.append(static_cast<const char*>(part.data()), part.size());
        return withoutDate(text);
    }

    // Has the provider throw this after it has written a part of its response.
    template <typename Exception>
    void makeProviderThrow(Exception exception) {
        provider_.respond = [exception](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
            writeTo(ostr, "HTTP/1.1 200 OK\r\n\r\nsecret");
            throw exception;
        };
    }

    static Lines errors(const std::string& text) { return {"HttpFrontEnd|1|2|" + text}; }

    TeskProviderPluginManager manager_;
    FunctionProvider provider_;
    LogRecording log_;
};

TEST_F(DispatcherTest, TheProviderOfThePathResponds) {
    EXPECT_EQ(responseTo("/test/a"), kHello);
    EXPECT_EQ(responseTo("/TEST"), kHello);
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(DispatcherTest, TheProviderGetsTheRequestAndTheClient) {
    std::string seen;
    provider_.respond = [&](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        TSKString host;
        TSKString port;
        ostr.getPeerAddressString(host, port);
        seen = (request.getMethod() + " " + request.getUri() + " " + host + " " + port).data();
        writeTo(ostr, kHello);
    };
    EXPECT_EQ(responseTo("/test/a", "POST"), kHello);
    EXPECT_EQ(seen, "POST /test/a 192.0.2.7 50000");
    EXPECT_EQ(provider_.bodyBytes, 0U);
}

TEST_F(DispatcherTest, WithoutAProviderNothingIsFound) {
    EXPECT_EQ(responseTo("/other/path"), kNotFound);
    EXPECT_EQ(responseTo("/"), kNotFound);
    (void)manager_.shutdown();
    EXPECT_EQ(responseTo("/test/a"), kNotFound);
}

TEST_F(DispatcherTest, AResponseThatTheProviderLeavesOutIsNotFound) {
    provider_.leavesAnswer = true;
    EXPECT_EQ(responseTo("/test/a"), kNotFound);
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(DispatcherTest, HeadGetsNoBody) {
    EXPECT_EQ(responseTo("/test/a", "HEAD"),
              std::string(kHello).substr(0, std::string(kHello).size() - 5));
    EXPECT_EQ(responseTo("/other/path", "HEAD"),
              std::string(kNotFound).substr(0, std::string(kNotFound).size() - 31));
    makeProviderThrow(std::runtime_error("reason"));
    EXPECT_EQ(responseTo("/test/a", "HEAD"),
              std::string(kFailed).substr(0, std::string(kFailed).size() - 37));
}

TEST_F(DispatcherTest, AClientThatIsNotAuthenticatedGetsTheChallengeOnly) {
    makeProviderThrow(
        TSKHTTPException("here", "Authentication failed", TSKHTTPException::kAuthenticationFailed));
    EXPECT_EQ(responseTo("/test/a"), kChallenge);
    EXPECT_EQ(responseTo("/test/a", "HEAD"), kChallenge);
    EXPECT_EQ(log_.lines(), Lines());
}

TEST_F(DispatcherTest, EveryOtherCodeOfAnHttpExceptionIsAFailure) {
    for (const int code : {3, 5, 0, -4, 404}) {
        makeProviderThrow(TSKHTTPException("here", "reason", code));
        EXPECT_EQ(responseTo("/test/a"), kFailed) << code;
        EXPECT_EQ(log_.lines().back(),
                  "HttpFrontEnd|1|2|GET /test/a: here: reason (" + std::to_string(code) + ")");
    }
}

TEST_F(DispatcherTest, APlatformExceptionIsAFailure) {
    makeProviderThrow(TeskBaseException("here", "reason", TSKHTTPException::kAuthenticationFailed));
    EXPECT_EQ(responseTo("/test/a"), kFailed);
    EXPECT_EQ(log_.lines(), errors("GET /test/a: here: reason (4)"));
}

TEST_F(DispatcherTest, AStandardExceptionIsAFailure) {
    makeProviderThrow(std::runtime_error("the reason"));
    EXPECT_EQ(responseTo("/test/a"), kFailed);
    EXPECT_EQ(log_.lines(), errors("GET /test/a: the reason"));
}

TEST_F(DispatcherTest, OutOfMemoryIsAFailure) {
    makeProviderThrow(std::bad_alloc());
    EXPECT_EQ(responseTo("/test/a"), kFailed);
    EXPECT_EQ(log_.lines(), errors("GET /test/a: there is not enough memory"));
}

TEST_F(DispatcherTest, AnythingElseThatIsThrownIsAFailure) {
    makeProviderThrow(42);
    EXPECT_EQ(responseTo("/test/a"), kFailed);
    EXPECT_EQ(log_.lines(), errors("GET /test/a: an exception of unknown type"));
}

TEST_F(DispatcherTest, TextThatIsNotAResponseIsAFailure) {
    for (const char* const written : {"", "hello", "HTTP/1.1 200 OK\r\n"}) {
        provider_.respond = [written](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
            writeTo(ostr, written);
        };
        EXPECT_EQ(responseTo("/test/a"), kFailed) << written;
    }
    const std::string line = "HttpFrontEnd|1|2|GET /test/a: no HTTP response was written";
    EXPECT_EQ(log_.lines(), Lines({line, line, line}));
}

TEST_F(DispatcherTest, ALogLineCannotBeForged) {
    makeProviderThrow(std::runtime_error("bad\r\nline: \x1b[2J"));
    EXPECT_EQ(responseTo("/test/\n2026-01-01 error", "G\rET"), kFailed);
    EXPECT_EQ(log_.lines(),
              errors("G\\x0dET /test/\\x0a2026-01-01 error: bad\\x0d\\x0aline: \\x1b[2J"));
}

TEST_F(DispatcherTest, LongPathsAreCutInTheLog) {
    makeProviderThrow(std::runtime_error("reason"));
    EXPECT_EQ(responseTo(("/test/" + std::string(8000, 'a')).c_str()), kFailed);
    EXPECT_EQ(log_.lines(), errors("GET /test/" + std::string(194, 'a') + "...: reason"));
}

TEST_F(DispatcherTest, AFailedAllocationIsReportedIfThereIsMemoryForThat) {
    const LogRecording quiet(TeskTraceLog::SeverityOff);
    provider_.respond = [](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, "HTTP/1.1 200 OK\r\n");
        writeTo(ostr, "Content-Length: 100\r\n\r\n" + std::string(100, 'x'));
    };
    const std::string whole = responseTo("/test/a/longer/path");
    std::string text;
    text.reserve(1000);
    const std::size_t failures = AllocationProbe::failEachAllocation(
        [&] {
            text.clear();
            TSKHTTPRequest request("GET", "/test/a/longer/path", "HTTP/1.1");
            const Http::Dispatcher dispatcher(manager_);
            const Http::Response response = dispatcher.respond(request, {});
            for (const boost::asio::const_buffer& part : response.unsent())
                text.append(static_cast<const char*>(part.data()), part.size());
        },
        [&] { EXPECT_TRUE(text.empty() || withoutDate(text) == kFailed) << text; });
    EXPECT_GT(failures, 5U);
    EXPECT_EQ(withoutDate(text), whole);
}

}  // namespace

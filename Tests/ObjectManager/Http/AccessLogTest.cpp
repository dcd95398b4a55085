#include <filesystem>
#include <gtest/gtest.h>
#include <mutex>
#include <string>
#include <vector>

#include "ObjectManager/Http/AccessLog.h"
#include "Tests/ObjectManager/Http/RunningServer.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/TemporaryDirectory.h"

namespace {

using Http::AccessLog;
using Http::ClientAddress;
using Http::Exchange;

constexpr std::time_t kTime = 1'000'000'000;  // 2001-09-09 01:46:40

Exchange exchangeOf(std::string_view requestLine) {
    return {.client = ClientAddress::parse("192.0.2.7").value(),
            .requestLine = requestLine,
            .status = 200,
            .bodyBytes = 1234};
}

TEST(AccessLogLine, HasTheCombinedLogFormat) {
    TSKHTTPRequest request("GET", "/a", "HTTP/1.1");
    request.setHeaderField("referer", "http://a/b c", true);
    request.setHeaderField("User-Agent", "agent/1.0 (x)", true);
    Exchange exchange = exchangeOf("GET /a?b HTTP/1.1");
    exchange.request = &request;
    EXPECT_EQ(Http::accessLogLine(exchange, "alice", kTime),
              "192.0.2.7 - alice [09/Sep/2001:01:46:40 +0000] \"GET /a?b HTTP/1.1\" 200 1234 "
              "\"http://a/b c\" \"agent/1.0 (x)\"\n");
}

TEST(AccessLogLine, HasADashForWhatIsMissing) {
    EXPECT_EQ(Http::accessLogLine({.client = ClientAddress::parse("2001:db8::1").value(),
                                   .requestLine = "",
                                   .request = nullptr,
                                   .status = 408,
                                   .bodyBytes = 0},
                                  "", kTime),
              "2001:db8::1 - - [09/Sep/2001:01:46:40 +0000] \"-\" 408 - \"-\" \"-\"\n");
}

TEST(AccessLogLine, HasTheTimeOfEachCall) {
    for (const auto& [time, text] :
         {std::pair<std::time_t, const char*>{0, "[01/Jan/1970:00:00:00 +0000]"},
          {1'709'251'199, "[29/Feb/2024:23:59:59 +0000]"},
          {1'709'251'200, "[01/Mar/2024:00:00:00 +0000]"}})
        EXPECT_NE(Http::accessLogLine(exchangeOf("GET / HTTP/1.1"), "", time).find(text),
                  std::string::npos);
}

// What stands between `before` and `after`, which must be there once.
std::string between(const std::string& line, const std::string& before, const std::string& after) {
    const std::size_t start = line.find(before);
    const std::size_t end = line.find(after, start + before.size());
    EXPECT_NE(end, std::string::npos) << line;
    return line.substr(start + before.size(), end - start - before.size());
}

TEST(AccessLogLine, NothingThatAClientSendsForgesALineOrAColumn) {
    const struct {
        std::string_view sent;
        std::string quoted;
        std::string user;
    } cases[] = {
        {"a\nb", "a\\x0Ab", "a\\x0Ab"},
        {"a\" 200 5 \"", "a\\x22 200 5 \\x22", "a\\x22\\x20200\\x205\\x20\\x22"},
        {"\\x22", "\\x5Cx22", "\\x5Cx22"},
        {std::string_view("\0\x1F\x7F\x80\xFF", 5), "\\x00\\x1F\\x7F\\x80\\xFF",
         "\\x00\\x1F\\x7F\\x80\\xFF"},
        {"caf\xC3\xA9", "caf\\xC3\\xA9", "caf\\xC3\\xA9"},
        {"!#$%&'()*+,-./09:;<=>?@AZ[]^_`az{|}~", "!#$%&'()*+,-./09:;<=>?@AZ[]^_`az{|}~",
         "!#$%&'()*+,-./09:;<=>?@AZ[]^_`az{|}~"},
    };
    for (const auto& [sent, quoted, user] : cases) {
        TSKHTTPRequest request("GET", "/", "HTTP/1.1");
        request.setHeaderField("Referer", TSKString(sent), true);
        request.setHeaderField("User-Agent", TSKString(sent), true);
        Exchange exchange = exchangeOf(sent);
        exchange.request = &request;
        const std::string line = Http::accessLogLine(exchange, sent, kTime);
        EXPECT_EQ(line, "192.0.2.7 - " + user + " [09/Sep/2001:01:46:40 +0000] \"" + quoted +
                            "\" 200 1234 \"" + quoted + "\" \"" + quoted + "\"\n");
    }
}

TEST(AccessLogLine, LongTextsAreCut) {
    const std::string text(4096, 'x');
    const auto shown = [](const std::string& requestLine) {
        return between(Http::accessLogLine(exchangeOf(requestLine), "", kTime), "] \"", "\" 200");
    };
    EXPECT_EQ(shown(text), text);
    EXPECT_EQ(shown(text + "y"), text + "...");
}

TEST(AccessLog, GoesOnInANewFileAfterTheOldOneWasRenamed) {
    const TemporaryDirectory directory;
    const std::string path = directory / "access";
    AccessLog log(path);
    log.write(exchangeOf("GET /1 HTTP/1.1"), "");
    std::filesystem::rename(path, directory / "access.1");
    log.reopen();
    log.write(exchangeOf("GET /2 HTTP/1.1"), "bob");
    EXPECT_TRUE(contentOfFile(directory / "access.1")
                    .ends_with("\"GET /1 HTTP/1.1\" 200 1234 \"-\" \"-\"\n"));
    EXPECT_TRUE(contentOfFile(path).starts_with("192.0.2.7 - bob ["));
}

// A server that tells a test of its exchanges.
class ServerReport : public RunningServer {
  protected:
    ServerReport() {
        report_ = [this](const Exchange& exchange) {
            std::string text =
                exchange.client.toString() + " " + std::string(exchange.requestLine) + " " +
                std::to_string(exchange.status) + " " + std::to_string(exchange.bodyBytes);
            if (exchange.request != nullptr)
                text += " " + std::string(exchange.request->getUri().data());
            const std::lock_guard lock(mutex_);
            reports_.push_back(text);
        };
    }

    [[nodiscard]] Lines reports() {
        const std::lock_guard lock(mutex_);
        return reports_;
    }

    // The report of the one request, whose response the client has seen to its end.
    [[nodiscard]] std::string reportOf(const std::string& request) {
        const std::size_t before = reports().size();
        (void)responseTo(request);
        const Lines now = reports();
        EXPECT_EQ(now.size(), before + 1);
        return now.empty() ? "" : now.back();
    }

    std::mutex mutex_;
    Lines reports_;  // guarded by mutex_
};

TEST_F(ServerReport, TellsOfEachResponseBeforeTheClientSeesItsEnd) {
    start();
    EXPECT_EQ(reportOf(kGet), "127.0.0.1 GET /test HTTP/1.1 200 5 /test");
    EXPECT_EQ(reportOf("HEAD /test HTTP/1.1\r\nHost: a\r\n\r\n"),
              "127.0.0.1 HEAD /test HTTP/1.1 200 0 /test");
    EXPECT_EQ(reportOf("\r\nGET /%74est?x HTTP/1.1\r\nHost: a\r\n\r\n"),
              "127.0.0.1 GET /%74est?x HTTP/1.1 200 5 /test");
    EXPECT_EQ(reportOf("GET /none HTTP/1.1\r\nHost: a\r\n\r\n"),
              "127.0.0.1 GET /none HTTP/1.1 404 31 /none");
}

TEST_F(ServerReport, TellsOfRequestsThatTheServerItselfRefuses) {
    options_.maxRequestLine = 100;
    start();
    const struct {
        std::string request;
        std::string begin;
    } cases[] = {
        {"GET  / HTTP/1.1\r\nHost: a\r\n\r\n", "127.0.0.1 GET  / HTTP/1.1 400 "},
        {"\x16\x03\x01", "127.0.0.1 \x16\x03\x01 400 "},
        {"GET /" + std::string(200, 'x'), "127.0.0.1 GET /" + std::string(200, 'x') + " 414 "},
    };
    for (const auto& [request, begin] : cases)
        EXPECT_EQ(reportOf(request).substr(0, begin.size()), begin);
}

TEST_F(ServerReport, TellsOfAClientThatSentNothingInTime) {
    options_.headerTimeout = std::chrono::milliseconds(1);
    start();
    (void)connect().readAll();
    const Lines told = reports();
    ASSERT_EQ(told.size(), 1U);
    EXPECT_EQ(told.front().substr(0, 15), "127.0.0.1  408 ");
}

TEST_F(ServerReport, TellsTheClientBehindATrustedProxy) {
    options_.trustedProxies = {Http::Network::parse("127.0.0.1")};
    start();
    EXPECT_EQ(reportOf("GET /test HTTP/1.1\r\nHost: a\r\nX-Forwarded-For: 192.0.2.7\r\n\r\n"),
              "192.0.2.7 GET /test HTTP/1.1 200 5 /test");
}

TEST_F(ServerReport, AReportThatFailsDoesNotTouchTheResponse) {
    report_ = [](const Exchange&) { throw std::bad_alloc(); };
    start();
    EXPECT_EQ(responseTo(kGet), kHello);
}

}  // namespace

#include <boost/asio/ip/address.hpp>
#include <gtest/gtest.h>
#include <new>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Http/Dispatcher.h"
#include "ObjectManager/Http/EntityTag.h"
#include "Platform/Http/TSKHTTPException.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Tests/ObjectManager/Http/FunctionProvider.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"
#include "Tests/Support/AllocationProbe.h"
#include "Tests/Support/RecordingLogSink.h"

namespace {

using Fields = std::vector<std::pair<const char*, const char*>>;
using Lines = std::vector<std::string>;
using std::string_literals::operator""s;

constexpr const char* kHello =
    "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\nContent-Length: 5\r\n\r\nhello";

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
        AuthenticationHelper::setAuthenticator(TSKSmrPtr<Host::LocalAuthenticator>::make());
    }

    ~DispatcherTest() override { AuthenticationHelper::setAuthenticator(nullptr); }

    // The response without its date.
    [[nodiscard]] std::string responseTo(const char* path, const char* method = "GET",
                                         const Fields& fields = {}) {
        TSKHTTPRequest request(method, path, "HTTP/1.1");
        for (const auto& [name, value] : fields)
            request.setHeaderField(name, value, true);
        const Http::Dispatcher dispatcher(manager_, published_);
        Http::ResponseMemory::Share share(memory_);
        const Http::Response response = dispatcher.respond(request, peer_, share).value();
        std::string text;
        for (const boost::asio::const_buffer& part : response.unsent())
            text.append(static_cast<const char*>(part.data()), part.size());
        return withoutDate(text);
    }

    // As a client that is not authenticated.
    [[nodiscard]] std::string responseToStranger(const char* path, const char* method = "GET") {
        AuthenticationHelper::setAuthenticator(nullptr);
        return responseTo(path, method);
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
    Http::ResponseMemory memory_{100'000};
    Http::Peer peer_ = {.endpoint = {boost::asio::ip::make_address("192.0.2.7"), 50000}};
    std::optional<Host::PublishedAddress> published_;
    LogRecording log_;
    bool throws_ = false;
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

TEST_F(DispatcherTest, AStrangerDoesNotLearnWhichPathsExist) {
    EXPECT_EQ(responseToStranger("/other/path"), kChallenge);
    EXPECT_EQ(responseToStranger("/", "HEAD"), kChallenge);
    provider_.leavesAnswer = true;
    EXPECT_EQ(responseToStranger("/test/a"), kChallenge);
    makeProviderThrow(
        TSKHTTPException("here", "Authentication failed", TSKHTTPException::kAuthenticationFailed));
    EXPECT_EQ(responseToStranger("/test/a"), kChallenge);
}

TEST_F(DispatcherTest, AProviderMayServeStrangers) {
    EXPECT_EQ(responseToStranger("/test/a"), kHello);
}

TEST_F(DispatcherTest, OptionsGetsTheMethodsOfThePath) {
    const auto options = [](const std::string& allowed) {
        return "HTTP/1.1 204 No Content\r\nConnection: close\r\nAllow: " + allowed + "\r\n\r\n";
    };
    EXPECT_EQ(responseTo("/test/a", "OPTIONS"), options("GET, HEAD, POST, OPTIONS"));
    EXPECT_EQ(responseToStranger("/other/path", "OPTIONS"), options("GET, HEAD, OPTIONS"));
    EXPECT_EQ(responseTo("*", "OPTIONS"), options("GET, HEAD, OPTIONS"));
    EXPECT_TRUE(manager_.registerMethods(provider_.getProviderName(), {"OPTIONS"}));
    EXPECT_EQ(responseTo("/test/a", "OPTIONS"), kHello);
}

TEST_F(DispatcherTest, AMethodThatTheProviderDoesNotServeIsNotAllowed) {
    const auto notAllowed = [](const std::string& allowed) {
        return "HTTP/1.1 405 Method Not Allowed\r\nConnection: close\r\nAllow: " + allowed +
               "\r\nContent-Type: text/plain; charset=utf-8\r\nContent-Length: 33\r\n\r\n"
               "This method is not allowed here.\n";
    };
    for (const char* const method : {"PUT", "DELETE", "PATCH", "TRACE", "CONNECT"})
        EXPECT_EQ(responseTo("/test/a", method), notAllowed("GET, HEAD, POST, OPTIONS")) << method;
    for (const char* const method : {"POST", "PUT"})
        EXPECT_EQ(responseToStranger("/other/path", method), notAllowed("GET, HEAD, OPTIONS"));
    EXPECT_TRUE(manager_.registerMethods(provider_.getProviderName(), {"PUT"}));
    EXPECT_EQ(responseTo("/test/a", "PUT"), kHello);
    EXPECT_EQ(responseTo("/test/a"), notAllowed("PUT, OPTIONS"));
}

TEST_F(DispatcherTest, AnUnknownMethodIsNotImplemented) {
    for (const char* const method : {"FOO", "get", "M-POST", "OPTION", "GETS"})
        EXPECT_EQ(responseTo("/test/a", method),
                  "HTTP/1.1 501 Not Implemented\r\nConnection: close\r\n"
                  "Content-Type: text/plain; charset=utf-8\r\nContent-Length: 32\r\n\r\n"
                  "This method is not implemented.\n")
            << method;
    EXPECT_TRUE(manager_.registerMethods(provider_.getProviderName(), {"M-POST"}));
    EXPECT_EQ(responseTo("/test/a", "M-POST"), kHello);
}

TEST_F(DispatcherTest, ADocumentGetsAnEntityTag) {
    constexpr const char* kTag = "ETag: \"2cf24dba5fb0a30e26e83b2ac5b9e29e\"\r\n";
    std::string written;
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, written);
    };
    const std::string rest = "Connection: close\r\n\r\n";
    written = "HTTP/1.1 200 OK\r\n" + rest + "hello";
    EXPECT_EQ(responseTo("/test/a"), "HTTP/1.1 200 OK\r\n" + (kTag + rest) + "hello");
    EXPECT_EQ(responseTo("/test/a", "HEAD"), "HTTP/1.1 200 OK\r\n" + (kTag + rest));
    EXPECT_EQ(responseTo("/test/a", "POST"), written);
    written = "HTTP/1.1 404 No\r\n" + rest + "hello";
    EXPECT_EQ(responseTo("/test/a"), written);
}

TEST_F(DispatcherTest, ConditionsAreForDocuments) {
    const Fields known = {{"If-None-Match", "\"a\""}};
    const Fields other = {{"If-Match", "\"b\""}};
    constexpr const char* kNotModified =
        "HTTP/1.1 304 Not Modified\r\nConnection: close\r\nETag: \"a\"\r\n\r\n";
    const std::string failed =
        "HTTP/1.1 412 Precondition Failed\r\nConnection: close\r\n"
        "Content-Type: text/plain; charset=utf-8\r\nContent-Length: 49\r\n\r\n";
    EXPECT_EQ(responseTo("/test/a", "GET", known), kNotModified);
    EXPECT_EQ(responseTo("/test/a", "HEAD", known), kNotModified);
    EXPECT_EQ(responseTo("/test/a", "GET", other),
              failed + "The document is not the one that If-Match names.\n");
    EXPECT_EQ(responseTo("/test/a", "HEAD", other), failed);
    EXPECT_EQ(responseTo("/test/a", "POST", known), kHello);
    EXPECT_EQ(responseTo("/test/a", "POST", other), kHello);
    EXPECT_EQ(responseTo("/other/path", "GET", other), kNotFound);
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, "HTTP/1.1 404 No\r\nConnection: close\r\n\r\n");
    };
    EXPECT_EQ(responseTo("/test/a", "GET", other), "HTTP/1.1 404 No\r\nConnection: close\r\n\r\n");
}

TEST_F(DispatcherTest, AnErrorWithoutABodyIsAPageForABrowser) {
    const Fields browser = {{"Accept", "text/html"}};
    std::string written = "HTTP/1.1 404 No\r\nConnection: close\r\nContent-Length: 0\r\n\r\n";
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, written);
    };
    EXPECT_EQ(responseTo("/test/a"), written);
    EXPECT_EQ(responseTo("/test/a", "GET", {{"Accept", "*/*"}}), written);
    const std::string page = responseTo("/test/a", "GET", browser);
    EXPECT_NE(page.find("<h1>404 Not Found</h1>"), std::string::npos) << page;
    EXPECT_NE(page.find("<a href=\"./../\">"), std::string::npos) << page;
    EXPECT_EQ(responseTo("/test/a", "HEAD", browser), page.substr(0, page.find("<!DOCTYPE")));
    for (const char* const other :
         {"HTTP/1.1 404 No\r\nConnection: close\r\nContent-Length: 4\r\n\r\nbody",
          "HTTP/1.1 200 OK\r\nETag: \"a\"\r\nConnection: close\r\nContent-Length: 0\r\n\r\n"}) {
        written = other;
        EXPECT_EQ(responseTo("/test/a", "GET", browser), written);
    }
    // A provider that leaves out the body itself.
    written = "HTTP/1.1 404 No\r\nConnection: close\r\nContent-Length: 4\r\n\r\n";
    EXPECT_EQ(responseTo("/test/a", "HEAD", browser), written);
    EXPECT_EQ(responseTo("/other/path", "GET", browser), kNotFound);
}

TEST_F(DispatcherTest, ABrowserWithoutAPasswordGetsAPage) {
    AuthenticationHelper::setAuthenticator(nullptr);
    const std::string page = responseTo("/other/path", "GET", {{"Accept", "text/html"}});
    EXPECT_TRUE(page.starts_with("HTTP/1.1 401 Unauthorized\r\n")) << page;
    EXPECT_NE(page.find("\r\nWWW-Authenticate: Basic "), std::string::npos) << page;
    EXPECT_NE(page.find("<h1>401 Unauthorized</h1>"), std::string::npos) << page;
    makeProviderThrow(
        TSKHTTPException("here", "Authentication failed", TSKHTTPException::kAuthenticationFailed));
    EXPECT_EQ(responseTo("/test/path", "GET", {{"Accept", "text/html"}}), page);
}

TEST_F(DispatcherTest, AResponseTakesTheMemoryThatItHolds) {
    const std::string body(10'000, 'x');
    provider_.respond = [&](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
        writeTo(ostr, "HTTP/1.1 200 OK\r\nETag: \"a\"\r\n\r\n");
        writeTo(ostr, body);
        if (throws_)
            throw std::runtime_error("reason");
    };
    const auto takes = [&](const char* method, const Fields& fields = {}) {
        TSKHTTPRequest request(method, "/test/a", "HTTP/1.1");
        for (const auto& [name, value] : fields)
            request.setHeaderField(name, value, true);
        Http::ResponseMemory::Share share(memory_);
        EXPECT_TRUE(Http::Dispatcher(manager_).respond(request, {}, share).has_value());
        return memory_.used();
    };
    EXPECT_GE(takes("GET"), body.size());
    EXPECT_LT(takes("GET"), body.size() + 1000);
    EXPECT_LT(takes("HEAD"), 1000U);
    EXPECT_LT(takes("GET", {{"If-None-Match", "*"}}), 1000U);
    throws_ = true;
    EXPECT_LT(takes("GET"), 1000U);
    EXPECT_EQ(memory_.used(), 0U);
    EXPECT_EQ(log_.lines(), errors("GET /test/a: reason"));
}

TEST_F(DispatcherTest, ADocumentWithoutRoomIsNotMade) {
    Http::ResponseMemory::Share others(memory_);
    EXPECT_TRUE(others.growTo(99'999));
    for (const char* const method : {"GET", "HEAD"}) {
        TSKHTTPRequest request(method, "/test/a", "HTTP/1.1");
        Http::ResponseMemory::Share share(memory_);
        EXPECT_FALSE(Http::Dispatcher(manager_).respond(request, {}, share).has_value());
    }
    EXPECT_EQ(responseTo("/test/a", "POST"),
              "HTTP/1.1 503 Service Unavailable\r\nConnection: close\r\nRetry-After: 5\r\n"
              "Content-Type: text/plain; charset=utf-8\r\nContent-Length: 60\r\n\r\n"
              "The server has no memory for the response. Try again later.\n");
    EXPECT_EQ(log_.lines(), Lines());
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
    EXPECT_EQ(responseTo("/test/\n2026-01-01 error"), kFailed);
    EXPECT_EQ(log_.lines(), errors("GET /test/\\x0a2026-01-01 error: bad\\x0d\\x0aline: \\x1b[2J"));
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
            Http::ResponseMemory::Share share(memory_);
            const Http::Response response = dispatcher.respond(request, {}, share).value();
            for (const boost::asio::const_buffer& part : response.unsent())
                text.append(static_cast<const char*>(part.data()), part.size());
        },
        [&] { EXPECT_TRUE(text.empty() || withoutDate(text) == kFailed) << text; });
    EXPECT_GT(failures, 5U);
    EXPECT_EQ(withoutDate(text), whole);
}

class PublishedAddressTest : public DispatcherTest {
  protected:
    PublishedAddressTest() {
        provider_.respond = [](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
            const TSKString* const host = request.getHost();
            const std::string document = "<soap:address location=\"http://" +
                                         std::string(host == nullptr ? "?" : host->data()) +
                                         "/wsman\"/></wsdl:definitions>";
            writeTo(ostr, "HTTP/1.1 200 OK\r\nConnection: close\r\nContent-Length: " +
                              std::to_string(document.size()) + "\r\n\r\n" + document);
        };
    }

    // The header section that a document of this length has when it was changed, or when not.
    static std::string changed(const std::string& document) {
        return "HTTP/1.1 200 OK\r\nContent-Length: " + std::to_string(document.size()) +
               "\r\nETag: " + Http::entityTag(document) + "\r\nConnection: close\r\n\r\n";
    }
    static std::string unchanged(const std::string& document) {
        return "HTTP/1.1 200 OK\r\nETag: " + Http::entityTag(document) +
               "\r\nConnection: close\r\nContent-Length: " + std::to_string(document.size()) +
               "\r\n\r\n";
    }
    static std::string documentAt(const std::string& address) {
        return "<soap:address location=\"" + address + "/wsman\"/></wsdl:definitions>";
    }
};

TEST_F(PublishedAddressTest, WithoutOneDocumentsNameTheHostOfTheRequest) {
    const std::string document = documentAt("http://a:1");
    EXPECT_EQ(responseTo("/test", "GET", {{"Host", "a:1"}}), unchanged(document) + document);
}

TEST_F(PublishedAddressTest, DocumentsNameItWhateverTheHostField) {
    published_ = {.host = "b:2"};
    const std::string document = documentAt("http://b:2");
    EXPECT_EQ(responseTo("/test", "GET", {{"Host", "a:1"}}), unchanged(document) + document);
    EXPECT_EQ(responseTo("/test"), unchanged(document) + document);
    peer_.usesTls = true;
    EXPECT_EQ(responseTo("/test"), unchanged(document) + document);
}

TEST_F(PublishedAddressTest, OneOfHttpsHasTheRightLengthAndEntityTagForGetAndHead) {
    published_ = {.host = "b:2", .isHttps = true};
    const std::string document = documentAt("https://b:2");
    EXPECT_EQ(responseTo("/test", "GET", {{"Host", "a:1"}}), changed(document) + document);
    EXPECT_EQ(responseTo("/test", "HEAD", {{"Host", "a:1"}}), changed(document));
    EXPECT_EQ(responseTo("/test", "GET", {{"If-None-Match", Http::entityTag(document).c_str()}})
                  .substr(0, 12),
              "HTTP/1.1 304");
}

TEST_F(PublishedAddressTest, OverTlsTheAddressIsOneOfHttps) {
    peer_.usesTls = true;
    const std::string document = documentAt("https://a:1");
    EXPECT_EQ(responseTo("/test", "GET", {{"Host", "a:1"}}), changed(document) + document);
}

TEST_F(PublishedAddressTest, ProvidersAreToldOfHttps) {
    std::string seen;
    provider_.respond = [&](TSKHTTPRequest& request, TSKGenericHTTPOStream& ostr) {
        const TSKString* const scheme = request.getHeaderField("X-Forwarded-Proto");
        seen += scheme == nullptr ? "none " : std::string(scheme->data()) + " ";
        writeTo(ostr, kHello);
    };
    (void)responseTo("/test");
    peer_.usesTls = true;
    (void)responseTo("/test", "GET", {{"X-Forwarded-Proto", "http"}});
    EXPECT_EQ(seen, "none https ");
}

}  // namespace

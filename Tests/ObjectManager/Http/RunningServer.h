#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <vector>

#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Http/Server.h"
#include "Platform/ProviderFramework/AuthenticationHelper.h"
#include "Tests/ObjectManager/Http/Client.h"
#include "Tests/ObjectManager/Http/FunctionProvider.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"
#include "Tests/Support/RecordingLogSink.h"
#include "Tests/Support/WaitUntil.h"

/// A server with one provider, which responds with "hello" unless the test changes that. Unless the
/// test changes that too, no timeout ends even on a slow machine, a client has no limit of its own,
/// since all clients have the same address, and the log stays empty.
class RunningServer : public testing::Test {
  protected:
    using Lines = std::vector<std::string>;

    static constexpr const char* kHello =
        "HTTP/1.1 200 OK\r\nConnection: close\r\nETag: \"a\"\r\nContent-Length: 5\r\n\r\nhello";
    static constexpr const char* kGet = "GET /test HTTP/1.1\r\nHost: a\r\n\r\n";

    RunningServer() {
        options_.listen.front().port = 0;
        options_.headerTimeout = kPatience;
        options_.responseTimeout = kPatience;
        options_.shutdownTimeout = kPatience;
        options_.maxConnectionsPerClient = 0;
        provider_.respond = [](TSKHTTPRequest& /*request*/, TSKGenericHTTPOStream& ostr) {
            writeTo(ostr, kHello);
        };
        provider_.addTo(manager_);
        AuthenticationHelper::setAuthenticator(TSKSmrPtr<Host::LocalAuthenticator>::make());
    }

    ~RunningServer() override { AuthenticationHelper::setAuthenticator(nullptr); }

    void TearDown() override {
        server_.reset();
        EXPECT_EQ(log_.lines(), expectedLog_);
    }

    void start() {
        server_.emplace(options_, manager_, authentication_, report_);
        server_->start();
    }

    [[nodiscard]] std::uint16_t port() const { return server_->addresses().front().port; }

    [[nodiscard]] Client connect() const {
        const bool isIPv6 = server_->addresses().front().address.starts_with('[');
        return {isIPv6 ? "::1" : "127.0.0.1", port()};
    }

    /// A client that has sent `bytes`.
    [[nodiscard]] Client sending(const std::string& bytes) const {
        Client client = connect();
        EXPECT_TRUE(client.send(bytes));
        return client;
    }

    /// The same from another address of this machine, such as "127.0.0.2".
    [[nodiscard]] Client sendingFrom(const std::string& source, const std::string& bytes) const {
        Client client("127.0.0.1", port(), source);
        EXPECT_TRUE(client.send(bytes));
        return client;
    }

    /// The response to `request` without its date.
    [[nodiscard]] std::string responseTo(const std::string& request) const {
        return withoutDate(sending(request).readAll());
    }

    /// Repeats a request until the server has room for the connection.
    void waitUntilServed() const {
        EXPECT_TRUE(
            waitUntil([&] { return sending(kGet).readAll().substr(0, 12) == "HTTP/1.1 200"; }));
    }

    /// An error response.
    [[nodiscard]] static std::string error(const std::string& status, const std::string& text) {
        return "HTTP/1.1 " + status + "\r\nConnection: close\r\n" +
               (status.starts_with("503") ? "Retry-After: 5\r\n" : "") +
               "Content-Type: text/plain; charset=utf-8\r\nContent-Length: " +
               std::to_string(text.size() + 1) + "\r\n\r\n" + text + "\n";
    }

    Http::Options options_;
    Http::Authentication authentication_;
    Http::Server::Report report_;
    TeskProviderPluginManager manager_;
    FunctionProvider provider_;
    LogRecording log_;
    Lines expectedLog_;
    std::optional<Http::Server> server_;
};

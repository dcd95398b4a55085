#pragma once

#include <cstdint>
#include <gtest/gtest.h>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "Tests/EndToEnd/Service/TeskProcess.h"
#include "Tests/ObjectManager/Http/Client.h"
#include "Tests/Support/TemporaryDirectory.h"

/// `tesk serve` with a configuration, a model and a password file of the test's own.
///
/// At the end of a test the service, if it still runs, is told to end, which it must do without a
/// failure; its log must hold nothing but information and what the test expects.
class RunningService : public testing::Test {
  protected:
    using Lines = std::vector<std::string>;

    /// The value of the field "Host" in the documents of Tests/Providers.
    static constexpr const char* kHost = "192.0.2.1:5985";
    /// The field by which a request is that of the user alice, with its end.
    static constexpr const char* kAlice = "Authorization: Basic YWxpY2U6c2VjcmV0\r\n";

    static constexpr const char* kNotFound =
        "HTTP/1.1 404 File Not Found\r\nConnection: close\r\nContent-Length: 0\r\n\r\n";
    static constexpr const char* kChallenge =
        "HTTP/1.1 401 Unauthorized\r\nConnection: close\r\n"
        "WWW-Authenticate: Basic realm=\"tesk\", charset=\"UTF-8\"\r\nContent-Length: 0\r\n\r\n";

    static constexpr const char* kNotAllowed =
        "HTTP/1.1 405 Method Not Allowed\r\nConnection: close\r\nAllow: GET, HEAD, OPTIONS\r\n"
        "Content-Type: text/plain; charset=utf-8\r\nContent-Length: 33\r\n\r\n"
        "This method is not allowed here.\n";

    /// The classes TST_Nothing and TST_One of Tests/Providers in the namespace root/test.
    RunningService();
    void TearDown() override;

    /// Writes the qualifiers and these classes as the file `name`.
    void writeModel(std::string_view name, std::string_view classes) const;
    /// A class whose documents are larger than what sockets hold.
    [[nodiscard]] static std::string largeClass();

    void writeUsers(std::string_view text) const;
    /// The configuration file, with what the members below say.
    void writeConfiguration() const;

    /// Starts the service with the configuration, and waits until it serves.
    void start();
    /// The same with other arguments.
    void startWith(const std::vector<std::string>& arguments,
                   const std::filesystem::path& program = TESK_PROGRAM);

    [[nodiscard]] TeskProcess& process() { return *process_; }
    [[nodiscard]] const TeskProcess& process() const { return *process_; }
    /// The ports that it listens on, in the order of the configuration.
    [[nodiscard]] std::uint16_t port(std::size_t index = 0) const { return ports_.at(index); }
    /// The lines that it has written when it was ready.
    [[nodiscard]] const std::string& readyLine() const { return readyLine_; }

    /// A request of alice.
    [[nodiscard]] static std::string get(std::string_view path);
    /// Her request with these fields between request line and empty line.
    [[nodiscard]] static std::string request(std::string_view line, std::string_view fields);

    [[nodiscard]] Client connect() const { return {"127.0.0.1", port()}; }
    /// A client who has sent that.
    [[nodiscard]] Client sending(std::string_view bytes) const;
    /// The response to that, without its date.
    [[nodiscard]] std::string response(std::string_view request) const;
    /// The same with the date.
    [[nodiscard]] std::string responseWithDate(std::string_view request) const;
    /// Asks until the response begins with that.
    void waitForResponse(std::string_view request, std::string_view begin) const;

    /// The response with a document.
    [[nodiscard]] static std::string found(std::string_view document);
    /// The document of that name in Tests/Providers, as the service sends it to that host.
    [[nodiscard]] static std::string expected(const std::string& name,
                                              const std::string& host = kHost);
    /// The responses of the front end itself.
    [[nodiscard]] static std::string refusal(const std::string& status, const std::string& text);

    /// Tells the service to read everything again, and waits until it has tried.
    void reload();

    TemporaryDirectory directory_;
    std::map<std::string, std::string> namespaces_;  ///< name and path of each
    std::vector<std::string> listen_ = {"127.0.0.1:0"};
    /// The keys of [server]. Nothing ends because a machine is slow, unless the test says so.
    std::map<std::string, std::string> serverKeys_ = {
        {"header_timeout", "300"},
        {"response_timeout", "300"},
        {"shutdown_timeout", "300"},
        {"max_connections_per_client", "0"}};  // all clients have the same address
    std::string logKeys_;                      ///< lines for [log]
    std::optional<TeskProcess> process_;
    Lines expectedLog_;       ///< what is not information, without the time
    int expectedStatus_ = 0;  ///< with which it ends
    int reloads_ = 0;         ///< that were asked for

  private:
    std::vector<std::uint16_t> ports_;
    std::string readyLine_;
};

/// The lines of a log that are neither information nor about failed logins nor about the test's
/// being run by root, without the time in front of those that have one.
[[nodiscard]] std::vector<std::string> unusualLines(const std::string& log);

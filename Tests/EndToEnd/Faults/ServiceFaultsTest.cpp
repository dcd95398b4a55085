// tesk serve, from its start over a request, a reload and another request to its end, with each of
// its calls into the C library failing once. It does not begin, and says why; or it serves: what
// the fault hits is refused or cut off, never wrong, and nothing after that is.

#include <algorithm>
#include <csignal>
#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <regex>
#include <string_view>
#include <system_error>
#include <thread>
#include <unistd.h>

#include "Tests/EndToEnd/Faults/Faults.h"
#include "Tests/ObjectManager/Http/Client.h"
#include "Tests/Support/DirectoryContent.h"
#include "Tests/Support/RunningProgram.h"
#include "Tests/Support/WaitUntil.h"

namespace {

namespace fs = std::filesystem;

// A service in a process of its own, whose output can be read while it runs.
class Service {
  public:
    Service(const std::vector<std::string>& command, const TemporaryDirectory& directory,
            const std::function<void()>& prepare)
        : output_(directory.write("output", "")),
          log_(directory.write("log", "")),
          program_(command, [&] {
              prepare();
              dup2(open(output_.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC), STDOUT_FILENO);
              dup2(open(log_.c_str(), O_WRONLY | O_APPEND | O_CLOEXEC), STDERR_FILENO);
          }) {}

    // Whether it has come to serve; else it has ended.
    [[nodiscard]] bool waitUntilReady() {
        EXPECT_TRUE(waitUntil([&] { return port() != 0 || !program_.isRunning(); }));
        return port() != 0;
    }

    // Sends the request on a connection of its own. Returns the response, without its date and as
    // far as it comes; when nobody listens any more, why.
    [[nodiscard]] std::string respond(const std::string& request) const {
        try {
            const Client client("127.0.0.1", port());
            static_cast<void>(client.send(request));
            return std::regex_replace(client.readAll(), std::regex("Date: [^\r]*\r\n"), "");
        } catch (const std::system_error& error) {
            return error.what();
        }
    }

    void sendSignal(int signal) const { program_.sendSignal(signal); }
    [[nodiscard]] bool isRunning() const { return program_.isRunning(); }
    [[nodiscard]] std::string log() const { return contentOfFile(log_); }
    [[nodiscard]] std::string waitForEnd() { return program_.waitForEnd().end; }

  private:
    // Where it serves; 0 as long as it has not said so.
    [[nodiscard]] std::uint16_t port() const {
        const std::string text = contentOfFile(output_);
        std::smatch match;
        if (!std::regex_search(text, match, std::regex("on http://127\\.0\\.0\\.1:([0-9]+)\n")))
            return 0;
        return static_cast<std::uint16_t>(std::stoul(match[1]));
    }

    fs::path output_;
    fs::path log_;
    RunningProgram program_;
};

class ServiceFaults : public FaultTest {
  protected:
    static constexpr const char* kOldClasses =
        "Qualifier Key : boolean = false, Scope(property);\n"
        "class TST_A { [Key] uint32 Id; };\n";
    static constexpr const char* kNewClasses =
        "Qualifier Key : boolean = false, Scope(property);\n"
        "class TST_A { [Key] uint32 Id; string Added; };\n";

    // Of alice, whose password is "secret".
    static constexpr const char* kRequest =
        "GET /root/test/TST_A.wsdl HTTP/1.1\r\nHost: a\r\n"
        "Authorization: Basic YWxpY2U6c2VjcmV0\r\n\r\n";
    static constexpr const char* kUsers =
        "alice:$6$rounds=1000$saltsalt$LAV5VE5Y7w1d73x1mFNspYWUpazfmwv2SoepNXNKJ/otop/"
        "Zok96Hr8Q13LEv0DRY/x8v0/crpIjl8NJSAqXV/\n";

    void SetUp() override {
        FaultTest::SetUp();
        if (IsSkipped())
            return;
        directory_.write("users", kUsers);
        fs::permissions(directory_ / "users", fs::perms(0600));
        old_ = rightResponse(kOldClasses);
        new_ = rightResponse(kNewClasses);
        ASSERT_TRUE(old_.starts_with("HTTP/1.1 200 OK\r\n")) << old_;
        ASSERT_TRUE(new_.find("Added") != std::string::npos) << new_;
    }

    [[nodiscard]] Service start(const Fault& fault) const {
        return {{PROGRAM, "serve", "--listen", "127.0.0.1:0", "--namespace",
                 "root/test=" + (directory_ / "test.mof").string(), "--password-file",
                 directory_ / "users"},
                directory_,
                [&] { inject(fault); }};
    }

    void writeClasses(const char* classes) const {
        directory_.write("new.mof", classes);
        fs::rename(directory_ / "new.mof", directory_ / "test.mof");
    }

    // What a service without a fault sends.
    [[nodiscard]] std::string rightResponse(const char* classes) const {
        writeClasses(classes);
        Service service = start({.call = "", .number = 0});
        EXPECT_TRUE(service.waitUntilReady()) << service.log();
        std::string response = service.respond(kRequest);
        service.sendSignal(SIGTERM);
        EXPECT_EQ(service.waitForEnd(), "status 0");
        return response;
    }

    // The response comes, if not at first then at the second time, since there is but one fault.
    void expectResponse(const Service& service, const std::string& right) {
        const std::string first = service.respond(kRequest);
        if (first == right)
            return;
        ++failures_;
        expectHarmless(first, right);
        const std::string second = service.respond(kRequest);
        EXPECT_TRUE(second == right) << "a wrong response:\n" << second;
    }

    // A refusal, or the beginning of what is right.
    static void expectHarmless(const std::string& response, const std::string& right) {
        const std::size_t date = std::min(response.find("Date"), response.size());
        const bool isCut =
            response.size() < right.size() && right.starts_with(response.substr(0, date));
        const bool isRefusal = response.starts_with("HTTP/1.1 50") && response.ends_with("\n");
        EXPECT_TRUE(isCut || isRefusal) << "a wrong response:\n" << response;
    }

    // Has the new classes read, at the second time at the latest.
    void expectReload(const Service& service) {
        if (reload(service))
            return;
        ++failures_;
        expectResponse(service, old_);
        EXPECT_TRUE(reload(service)) << service.log();
    }

    // Returns whether the new classes were read; else the service has said that they were not.
    [[nodiscard]] bool reload(const Service& service) {
        const std::size_t failed = countFailedReloads(service);
        service.sendSignal(SIGHUP);
        bool isReloaded = false;
        const auto patience = std::chrono::steady_clock::now() + std::chrono::seconds(1);
        EXPECT_TRUE(waitUntil([&] {
            isReloaded = service.log().find("Reloaded: ") != std::string::npos;
            // What could not be written to the log shows otherwise.
            if (!isReloaded && std::chrono::steady_clock::now() > patience)
                isReloaded = service.respond(kRequest) == new_;
            return isReloaded || countFailedReloads(service) > failed || !service.isRunning();
        }));
        return isReloaded;
    }

    [[nodiscard]] static std::size_t countFailedReloads(const Service& service) {
        const std::string log = service.log();
        const std::regex failed("Not reloaded");
        return static_cast<std::size_t>(
            std::distance(std::sregex_iterator(log.begin(), log.end(), failed), {}));
    }

    // What the fault has hit is told, unless it hit the telling.
    void expectTold(const Service& service, const Fault& fault) const {
        const bool couldTell = report().find("/log\n") == std::string::npos;
        EXPECT_TRUE(!couldTell || namesReason(service.log(), fault)) << "not said why:\n"
                                                                     << service.log();
    }

    // A client that is lost is nothing unusual.
    [[nodiscard]] static bool isOfClient(const Fault& fault) {
        return fault.call == "recv" || fault.call == "send";
    }

    void runWith(const Fault& fault) {
        failures_ = 0;
        writeClasses(kOldClasses);
        Service service = start(fault);
        if (!service.waitUntilReady()) {
            EXPECT_EQ(service.waitForEnd(), "status 1") << service.log();
            expectTold(service, fault);
            return;
        }
        expectResponse(service, old_);
        writeClasses(kNewClasses);
        expectReload(service);
        expectResponse(service, new_);
        service.sendSignal(SIGTERM);
        const std::string end = service.waitForEnd();
        if (end != "status 0") {
            ++failures_;
            EXPECT_EQ(end, "status 1") << service.log();
        }
        EXPECT_LE(failures_, 1) << "one fault has hit more than one thing:\n" << service.log();
        if (failures_ != 0 && !isOfClient(fault))
            expectTold(service, fault);
    }

    std::string old_;
    std::string new_;
    int failures_ = 0;
};

class EachServiceFaults : public ServiceFaults, public testing::WithParamInterface<std::string> {};

TEST_P(EachServiceFaults, TheServiceDoesNotBeginOrGoesOn) {
    failEachCall(GetParam(), [&](const Fault& fault) { runWith(fault); });
}

std::string nameOf(const testing::TestParamInfo<std::string>& info) {
    return info.param;
}

INSTANTIATE_TEST_SUITE_P(Each, EachServiceFaults, testing::ValuesIn(serviceCalls()), nameOf);

}  // namespace

// Runs tesk serve under all that a day brings, at once and for long: many clients, reloads, a user
// who is removed, slow clients and wrong passwords, on the loopback interface alone. It holds every
// byte of every response against the documents that tesk export writes, and ends with figures; its
// exit status is 1 when the service has broken a promise.

// clang-format off
#include <utility>  // for Asio, which does not include it itself
// clang-format on

#include <algorithm>
#include <boost/asio/awaitable.hpp>
#include <boost/asio/buffer.hpp>
#include <boost/asio/co_spawn.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/post.hpp>
#include <boost/asio/redirect_error.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/use_awaitable.hpp>
#include <boost/asio/write.hpp>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

namespace asio = boost::asio;
namespace fs = std::filesystem;

using asio::awaitable;
using asio::use_awaitable;
using asio::ip::tcp;
using boost::system::error_code;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

constexpr const char* kUsage =
    "Usage: Soak PROGRAM [--requests N] [--clients N] [--seconds N]\n"
    "  PROGRAM       tesk\n"
    "  --requests N  how many, 1000000 by default\n"
    "  --clients N   how many send them, each one at a time, 64 by default\n"
    "  --seconds N   after which it fails if it has not ended, 3600 by default\n";

struct Options {
    std::string program;
    std::size_t requests = 1'000'000;
    std::size_t clients = 64;
    std::size_t seconds = 3600;
};

// A response that takes longer is lost.
constexpr std::chrono::seconds kPatience{60};

// Until a user who is removed must be refused. The service looks at the file each second.
constexpr std::chrono::seconds kRevocationTime{10};

// By how much memory may grow between a tenth of the requests and all of them: 16 bytes a request
// that were kept would be more. The allocator's own needs vary by some megabytes.
constexpr long kMaxGrowthKibibytes = 16 * 1024;

constexpr int kSlowClients = 8;  // of each kind
constexpr int kStrangers = 4;
constexpr int kClasses = 40;

// By SHA-512 with few rounds, as password files may have it: what is measured is not crypt(3).
constexpr const char* kHashOfSecret =
    "$6$rounds=1000$saltsalt$LAV5VE5Y7w1d73x1mFNspYWUpazfmwv2SoepNXNKJ/otop/Zok96Hr8Q13LEv0DRY/"
    "x8v0/crpIjl8NJSAqXV/";
constexpr const char* kAlice = "YWxpY2U6c2VjcmV0";               // alice:secret
constexpr const char* kGuest = "Z3Vlc3Q6c2VjcmV0";               // guest:secret
constexpr const char* kAliceWrong = "YWxpY2U6bm90IHNlY3JldA==";  // alice:not secret

void require(bool done, const std::string& what) {
    if (!done)
        throw std::runtime_error(what);
}

std::string contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    require(stream.is_open(), "cannot read " + file.string());
    return {std::istreambuf_iterator<char>(stream), {}};
}

// Nobody sees half of it.
void replaceFile(const fs::path& file, const std::string& content, fs::perms mode) {
    const fs::path fresh = file.string() + ".new";
    {
        std::ofstream stream(fresh, std::ios::binary);
        stream << content;
        require(stream.flush().good(), "cannot write " + fresh.string());
    }
    fs::permissions(fresh, mode);
    fs::rename(fresh, file);
}

std::size_t count(std::string_view text, std::string_view part) {
    std::size_t found = 0;
    for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + part.size()))
        ++found;
    return found;
}

// A directory of our own for as long as this lives.
class WorkDirectory {
  public:
    WorkDirectory() {
        std::string name = fs::temp_directory_path() / "tesk-soak-XXXXXX";
        require(mkdtemp(name.data()) != nullptr, "cannot make " + name);
        path_ = name;
    }
    WorkDirectory(const WorkDirectory&) = delete;
    WorkDirectory& operator=(const WorkDirectory&) = delete;
    ~WorkDirectory() {
        std::error_code ignored;
        fs::remove_all(path_, ignored);
    }

    [[nodiscard]] fs::path operator/(std::string_view name) const { return path_ / name; }

  private:
    fs::path path_;
};

// A program in a process of its own, killed with this.
class Process {
  public:
    Process(const std::vector<std::string>& command, const fs::path& output,
            const fs::path& errors) {
        std::vector<char*> arguments;
        for (const std::string& argument : command)
            arguments.push_back(const_cast<char*>(argument.c_str()));
        arguments.push_back(nullptr);
        const int outputFile = openToAppend(output);
        const int errorFile = openToAppend(errors);
        id_ = fork();
        require(id_ >= 0, "cannot start a process");
        if (id_ != 0) {
            close(outputFile);
            close(errorFile);
            return;
        }
        dup2(outputFile, STDOUT_FILENO);
        dup2(errorFile, STDERR_FILENO);
        execv(arguments.front(), arguments.data());
        _exit(127);
    }
    Process(const Process&) = delete;
    Process& operator=(const Process&) = delete;
    ~Process() {
        if (!status_) {
            kill(id_, SIGKILL);
            waitpid(id_, nullptr, 0);
        }
    }

    [[nodiscard]] pid_t id() const noexcept { return id_; }
    void sendSignal(int signal) const { kill(id_, signal); }

    [[nodiscard]] bool isRunning() {
        int status = 0;
        if (!status_ && waitpid(id_, &status, WNOHANG) == id_)
            status_ = status;
        return !status_;
    }

    // Its exit status; -1 when a signal has ended it, or it does not end.
    [[nodiscard]] int waitForEnd() {
        const auto deadline = steady_clock::now() + kPatience;
        while (isRunning() && steady_clock::now() < deadline)
            usleep(1000);
        return status_ && WIFEXITED(*status_) ? WEXITSTATUS(*status_) : -1;
    }

  private:
    static int openToAppend(const fs::path& file) {
        return open(file.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    }

    pid_t id_ = -1;
    std::optional<int> status_;
};

// Two models with the same classes, of which each document tells which model it is of.
enum Variant : std::uint8_t { kFirst = 1, kSecond = 2, kEither = kFirst | kSecond };

std::string modelText(Variant variant) {
    const std::string description =
        variant == kFirst ? "As it was in the beginning." : "As it is after a change.";
    std::string text =
        "Qualifier Key : boolean = false, Scope(property);\n"
        "Qualifier Description : string = null, Scope(any);\n";
    const auto addClass = [&](const std::string& name, int properties, const std::string& filler) {
        text += "[Description(\"" + description + "\")] class " + name + " {\n  [Key] uint32 Id;\n";
        for (int index = 0; index < properties; ++index) {
            text += "  [Description(\"" + description + "\")] string P" + filler +
                    std::to_string(index) + (variant == kFirst ? "" : "New") + ";\n";
        }
        text += "  uint32 Stop(string Reason);\n};\n";
    };
    for (int index = 0; index < kClasses; ++index)
        addClass("TST_C" + std::to_string(index), index, "");
    addClass("TST_Large", 2000, std::string(200, 'x'));
    return text;
}

// The service, with a model, users, and the documents that it must send.
class Service {
  public:
    explicit Service(const std::string& program) {
        writeUsers(true);
        for (const Variant variant : {kFirst, kSecond}) {
            writeModel(variant);
            exportDocuments(program, variant);
        }
        writeModel(kFirst);
        process_.emplace(
            std::vector<std::string>{program, "serve", "--namespace",
                                     "root/soak=" + (directory_ / "model.mof").string(), "--listen",
                                     "127.0.0.1:0", "--password-file", directory_ / "users"},
            directory_ / "output", directory_ / "log");
        waitUntilReady();
    }

    [[nodiscard]] std::uint16_t port() const noexcept { return port_; }
    [[nodiscard]] bool isRunning() { return process_->isRunning(); }
    [[nodiscard]] std::string log() const { return contentOf(directory_ / "log"); }

    void writeModel(Variant variant) const {
        replaceFile(directory_ / "model.mof", modelText(variant), fs::perms(0644));
    }
    void reload() const { process_->sendSignal(SIGHUP); }

    void writeUsers(bool withGuest) const {
        const std::string hash = std::string(":") + kHashOfSecret + "\n";
        replaceFile(directory_ / "users", "alice" + hash + (withGuest ? "guest" + hash : ""),
                    fs::perms(0600));
    }

    [[nodiscard]] static std::string className(std::size_t number) {
        return "TST_C" + std::to_string(number % kClasses);
    }

    // What the service must send, of that variant.
    [[nodiscard]] const std::string& document(const std::string& file, Variant variant) const {
        return documents_.at({file, variant});
    }

    [[nodiscard]] long memoryKibibytes() const {
        std::ifstream status("/proc/" + std::to_string(process_->id()) + "/status");
        for (std::string word; status >> word;) {
            long size = 0;
            if (word == "VmRSS:" && status >> size)
                return size;
        }
        return 0;
    }

    [[nodiscard]] long descriptors() const {
        std::error_code error;
        const fs::directory_iterator entries("/proc/" + std::to_string(process_->id()) + "/fd",
                                             error);
        return error ? -1 : std::distance(entries, fs::directory_iterator());
    }

    [[nodiscard]] int stop() {
        process_->sendSignal(SIGTERM);
        return process_->waitForEnd();
    }

  private:
    void exportDocuments(const std::string& program, Variant variant) {
        const fs::path output = directory_ / ("documents" + std::to_string(variant));
        Process exporting(
            {program, "export", "--namespace", "root/soak=" + (directory_ / "model.mof").string(),
             "--host", "soak", "--output", output},
            directory_ / "export", directory_ / "export");
        require(exporting.waitForEnd() == 0, contentOf(directory_ / "export"));
        for (const auto& entry : fs::directory_iterator(output / "root" / "soak"))
            documents_[{entry.path().filename(), variant}] = contentOf(entry.path());
    }

    void waitUntilReady() {
        const std::string before = "on http://127.0.0.1:";
        for (;;) {
            require(process_->isRunning(), "the service does not start:\n" + log());
            const std::string text = contentOf(directory_ / "output");
            const std::size_t at = text.find(before);
            if (at != text.npos && text.ends_with('\n')) {
                port_ = static_cast<std::uint16_t>(std::stoul(text.substr(at + before.size())));
                return;
            }
            usleep(1000);
        }
    }

    WorkDirectory directory_;
    std::map<std::pair<std::string, Variant>, std::string> documents_;
    std::optional<Process> process_;
    std::uint16_t port_ = 0;
};

// How a client sends and reads; 0 for as fast as it can.
struct Pace {
    std::size_t sent = 0;      // bytes at a time
    std::size_t received = 0;  // bytes at a time
    milliseconds pause{0};     // between two times
};

// One response, as far as it came.
struct Response {
    std::string bytes;
    bool isWhole = false;  // the service has ended the connection in order

    [[nodiscard]] std::string_view status() const {
        const std::string_view begin = "HTTP/1.1 ";
        return bytes.starts_with(begin) ? std::string_view(bytes).substr(begin.size(), 3) : "";
    }

    // What follows the header section.
    [[nodiscard]] std::string_view body() const {
        const std::size_t end = bytes.find("\r\n\r\n");
        return end == bytes.npos ? "" : std::string_view(bytes).substr(end + 4);
    }

    [[nodiscard]] bool hasRightLength() const {
        return bytes.find("\r\nContent-Length: " + std::to_string(body().size()) + "\r\n") !=
               bytes.npos;
    }
};

// What has been seen.
struct Figures {
    std::size_t wrong = 0;  // responses with wrong bytes
    std::size_t lost = 0;   // requests without a whole response, or refused
    std::size_t reloads = 0;
    std::size_t slow = 0;     // responses to slow clients
    std::size_t refused = 0;  // wrong passwords
    std::size_t letIn = 0;    // and those that were not refused, or users who were removed
    std::optional<milliseconds> revocation;
    long earlyMemory = 0;
    long lateMemory = 0;
    long firstDescriptors = 0;
    long lastDescriptors = 0;
    std::vector<std::uint32_t> microseconds;  // of each request
    std::string firstWrong;
};

// All clients, on one thread: each is a coroutine.
class Soak {
  public:
    Soak(const Options& options, Service& service) : options_(options), service_(service) {
        figures_.microseconds.reserve(options.requests);
    }

    Figures run() {
        figures_.firstDescriptors = service_.descriptors();
        for (std::size_t index = 0; index < options_.clients; ++index)
            start(client(addressOf(1, index)));
        for (int index = 0; index < kSlowClients; ++index) {
            start(slowClient({.sent = 1, .pause = milliseconds(20)}));
            start(slowClient({.received = 64 * 1024, .pause = milliseconds(50)}));
        }
        for (int index = 0; index < kStrangers; ++index)
            start(stranger(addressOf(3, static_cast<std::size_t>(index))));
        start(reloader());
        start(guest());
        start(watch());
        context_.run();
        if (failure_)
            std::rethrow_exception(failure_);
        waitForDescriptors();
        figures_.lateMemory = service_.memoryKibibytes();
        return std::move(figures_);
    }

  private:
    // Addresses of the loopback interface, so that limits for one address do not meet others.
    static asio::ip::address_v4 addressOf(unsigned kind, std::size_t index) {
        return asio::ip::address_v4(0x7f00'0001U + (kind << 16U) +
                                    (static_cast<unsigned>(index) << 8U));
    }

    void start(awaitable<void> task) {
        asio::co_spawn(context_, std::move(task), [this](const std::exception_ptr& failure) {
            if (!failure)
                return;
            failure_ = failure;
            context_.stop();
        });
    }

    [[nodiscard]] bool isDone() const { return figures_.microseconds.size() >= options_.requests; }

    awaitable<void> sleep(milliseconds time) {
        asio::steady_timer timer(context_, time);
        co_await timer.async_wait(use_awaitable);
    }

    static std::string requestFor(const std::string& file, const char* credentials) {
        return "GET /root/soak/" + file + " HTTP/1.1\r\nHost: soak\r\nAuthorization: Basic " +
               credentials + "\r\n\r\n";
    }

    // Sends the request on a connection of its own and reads to the end.
    awaitable<Response> exchange(asio::ip::address_v4 source, std::string request, Pace pace = {}) {
        Response response;
        error_code error;
        tcp::socket socket(context_);
        asio::steady_timer timer(context_, kPatience);
        timer.async_wait([&socket](const error_code& cancelled) {
            error_code ignored;
            if (!cancelled)
                socket.close(ignored);
        });
        socket.open(tcp::v4());
        if (pace.received != 0)
            socket.set_option(tcp::socket::receive_buffer_size(4096));
        // The system chooses the port when it knows the other end, which leaves many more.
        const int late = 1;
        setsockopt(socket.native_handle(), IPPROTO_IP, IP_BIND_ADDRESS_NO_PORT, &late, sizeof late);
        socket.bind({source, 0});
        co_await socket.async_connect({asio::ip::address_v4::loopback(), service_.port()},
                                      asio::redirect_error(use_awaitable, error));
        const std::size_t sent = pace.sent != 0 ? pace.sent : request.size();
        for (std::size_t at = 0; at < request.size() && !error; at += sent) {
            if (at != 0)
                co_await sleep(pace.pause);
            co_await asio::async_write(socket,
                                       asio::buffer(std::string_view(request).substr(at, sent)),
                                       asio::redirect_error(use_awaitable, error));
        }
        const std::size_t most = pace.received != 0 ? pace.received : 128 * 1024;
        while (!error) {
            const std::size_t length = response.bytes.size();
            response.bytes.resize(length + most);
            const std::size_t received =
                co_await socket.async_read_some(asio::buffer(response.bytes.data() + length, most),
                                                asio::redirect_error(use_awaitable, error));
            response.bytes.resize(length + received);
            if (!error && pace.received != 0)
                co_await sleep(pace.pause);
        }
        response.isWhole = error == asio::error::eof;
        timer.cancel();
        // The timer's handler, which knows the socket, is run before this goes.
        co_await asio::post(context_, use_awaitable);
        co_return response;
    }

    // Holds a response against the document that it must be. A variant is allowed if it was the
    // model's at any time between request and response.
    void judge(const Response& response, const std::string& file, unsigned allowed) {
        if (!response.isWhole || response.status() != "200" || !response.hasRightLength()) {
            const bool isRefusal = response.isWhole && response.status().starts_with("50");
            const bool isCut = !response.isWhole;
            ++(isRefusal || isCut ? figures_.lost : figures_.wrong);
            keepWrong(file, response);
            return;
        }
        for (const Variant variant : {kFirst, kSecond}) {
            if ((allowed & variant) != 0 && response.body() == service_.document(file, variant))
                return;
        }
        ++figures_.wrong;
        keepWrong(file, response);
    }

    void keepWrong(const std::string& file, const Response& response) {
        constexpr std::size_t kShown = 500;
        if (figures_.firstWrong.empty())
            figures_.firstWrong = file + ": " + response.bytes.substr(0, kShown) + "\n";
    }

    awaitable<void> client(asio::ip::address_v4 source) {
        while (begun_ < options_.requests) {
            const std::size_t number = begun_++;
            const std::string file =
                Service::className(number) + (number / kClasses % 2 == 0 ? ".wsdl" : ".xsd");
            const unsigned before = variants_;
            const auto begin = steady_clock::now();
            const Response response = co_await exchange(source, requestFor(file, kAlice));
            figures_.microseconds.push_back(static_cast<std::uint32_t>(
                std::chrono::duration_cast<std::chrono::microseconds>(steady_clock::now() - begin)
                    .count()));
            judge(response, file, before | variants_);
            if (figures_.microseconds.size() == options_.requests / 10)
                figures_.earlyMemory = service_.memoryKibibytes();
        }
    }

    awaitable<void> slowClient(Pace pace) {
        const std::string file = pace.received != 0 ? "TST_Large.wsdl" : "TST_C7.xsd";
        while (!isDone()) {
            const unsigned before = variants_;
            const Response response =
                co_await exchange(addressOf(2, 0), requestFor(file, kAlice), pace);
            // A slow response may see more than one reload.
            judge(response, file, pace.sent != 0 ? unsigned{kEither} : before | variants_);
            ++figures_.slow;
        }
    }

    awaitable<void> stranger(asio::ip::address_v4 source) {
        while (!isDone()) {
            const Response response =
                co_await exchange(source, requestFor("TST_C1.xsd", kAliceWrong));
            if (response.status() == "401" || response.status() == "503" ||
                response.status() == "429")
                ++figures_.refused;
            else
                ++figures_.letIn;
            co_await sleep(milliseconds(50));
        }
    }

    awaitable<void> reloader() {
        while (!isDone()) {
            co_await sleep(milliseconds(1000));
            const Variant next = variants_ == kFirst ? kSecond : kFirst;
            service_.writeModel(next);
            variants_ = kEither;
            service_.reload();
            const auto deadline = steady_clock::now() + kPatience;
            while (count(service_.log(), "Reloaded: ") <= figures_.reloads) {
                require(steady_clock::now() < deadline, "the service does not reload");
                co_await sleep(milliseconds(5));
            }
            variants_ = next;
            ++figures_.reloads;
        }
    }

    // A user who is removed when a third of the requests are done.
    awaitable<void> guest() {
        std::optional<steady_clock::time_point> removed;
        while (!isDone() || (removed && !figures_.revocation)) {
            if (!removed && figures_.microseconds.size() > options_.requests / 3) {
                service_.writeUsers(false);
                removed = steady_clock::now();
            }
            const Response response =
                co_await exchange(addressOf(4, 0), requestFor("TST_C2.xsd", kGuest));
            const bool isLetIn = response.status() == "200";
            if (removed && !isLetIn && !figures_.revocation) {
                figures_.revocation =
                    std::chrono::duration_cast<milliseconds>(steady_clock::now() - *removed);
            }
            if (isLetIn && figures_.revocation)
                ++figures_.letIn;
            if (!isLetIn && !removed)
                ++figures_.lost;
            if (removed && !figures_.revocation && steady_clock::now() > *removed + kPatience)
                break;
            co_await sleep(milliseconds(50));
        }
    }

    awaitable<void> watch() {
        const auto deadline = steady_clock::now() + std::chrono::seconds(options_.seconds);
        while (!isDone()) {
            require(service_.isRunning(), "the service has ended:\n" + service_.log());
            require(steady_clock::now() < deadline,
                    "only " + std::to_string(figures_.microseconds.size()) +
                        " requests were done in time");
            co_await sleep(milliseconds(100));
        }
    }

    // Connections that have just ended are given up in a moment.
    void waitForDescriptors() {
        const auto deadline = steady_clock::now() + kPatience;
        do {
            figures_.lastDescriptors = service_.descriptors();
            usleep(1000);
        } while (figures_.lastDescriptors > figures_.firstDescriptors &&
                 steady_clock::now() < deadline);
    }

    const Options& options_;
    Service& service_;
    asio::io_context context_{1};
    std::exception_ptr failure_;
    Figures figures_;
    std::size_t begun_ = 0;
    unsigned variants_ = kFirst;
};

double millisecondsAt(std::vector<std::uint32_t>& microseconds, double part) {
    const auto place = static_cast<std::ptrdiff_t>(part * static_cast<double>(microseconds.size()));
    const auto at = microseconds.begin() +
                    std::min(place, static_cast<std::ptrdiff_t>(microseconds.size()) - 1);
    std::nth_element(microseconds.begin(), at, microseconds.end());
    return *at / 1000.0;
}

// Prints a line of figures, and marks it when the promise does not hold. Returns whether it does.
bool show(const char* name, const std::string& figures, bool holds = true) {
    std::printf("  %-16s %s%s\n", name, figures.c_str(), holds ? "" : "   BROKEN");
    return holds;
}

std::string megabytes(long kibibytes) {
    char text[32];
    (void)std::snprintf(text, sizeof text, "%.1f MB", static_cast<double>(kibibytes) / 1024);
    return text;
}

bool report(const Options& options, Figures& figures, double seconds, int status,
            std::size_t errors) {
    char latency[64];
    (void)std::snprintf(latency, sizeof latency, "p50 %.1f ms, p99 %.1f ms",
                        millisecondsAt(figures.microseconds, 0.5),
                        millisecondsAt(figures.microseconds, 0.99));
    std::printf("%zu requests of %zu clients in %.1f s, %.0f a second\n", options.requests,
                options.clients, seconds, static_cast<double>(options.requests) / seconds);
    bool holds = show("response time", latency);
    holds &= show("wrong bytes", std::to_string(figures.wrong) + " responses", figures.wrong == 0);
    holds &= show("lost requests", std::to_string(figures.lost), figures.lost == 0);
    holds &= show("reloads", std::to_string(figures.reloads), figures.reloads > 0);
    holds &= show("revocation",
                  figures.revocation ? std::to_string(figures.revocation->count()) + " ms"
                                     : std::string("not noticed"),
                  figures.revocation && *figures.revocation <= kRevocationTime);
    holds &= show("slow clients", std::to_string(figures.slow) + " responses", figures.slow > 0);
    holds &= show(
        "wrong passwords",
        std::to_string(figures.refused) + " refused, " + std::to_string(figures.letIn) + " let in",
        figures.letIn == 0 && figures.refused > 0);
    holds &= show("memory",
                  megabytes(figures.earlyMemory) + " after a tenth, " +
                      megabytes(figures.lateMemory) + " at the end",
                  figures.lateMemory - figures.earlyMemory <= kMaxGrowthKibibytes);
    holds &= show("descriptors",
                  std::to_string(figures.firstDescriptors) + " at the start, " +
                      std::to_string(figures.lastDescriptors) + " at the end",
                  figures.lastDescriptors <= figures.firstDescriptors);
    holds &= show("errors in log", std::to_string(errors), errors == 0);
    holds &= show("exit status", std::to_string(status), status == 0);
    if (!figures.firstWrong.empty())
        std::printf("The first wrong response:\n%s", figures.firstWrong.c_str());
    return holds;
}

bool soak(const Options& options) {
    Service service(options.program);
    const auto begin = steady_clock::now();
    Figures figures = Soak(options, service).run();
    const std::chrono::duration<double> seconds = steady_clock::now() - begin;
    const int status = service.stop();
    return report(options, figures, seconds.count(), status, count(service.log(), "Z error "));
}

std::size_t numberOf(const std::string& text) {
    std::size_t length = 0;
    const std::size_t number = std::stoul(text, &length);
    if (length != text.size() || number == 0)
        throw std::invalid_argument(text);
    return number;
}

Options parse(const std::vector<std::string>& arguments) {
    Options options;
    options.program = arguments.at(0);
    const std::map<std::string, std::size_t*> numbers = {{"--requests", &options.requests},
                                                         {"--clients", &options.clients},
                                                         {"--seconds", &options.seconds}};
    for (std::size_t index = 1; index < arguments.size(); index += 2)
        *numbers.at(arguments[index]) = numberOf(arguments.at(index + 1));
    return options;
}

}  // namespace

int main(int argc, char** argv) {
    Options options;
    try {
        options = parse({argv + 1, argv + argc});
    } catch (const std::exception&) {
        std::fputs(kUsage, stderr);
        return 2;
    }
    try {
        return soak(options) ? 0 : 1;
    } catch (const std::exception& error) {
        std::fprintf(stderr, "Soak: %s\n", error.what());
        return 1;
    }
}

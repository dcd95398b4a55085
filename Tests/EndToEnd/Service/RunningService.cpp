#include "Tests/EndToEnd/Service/RunningService.h"

#include <csignal>
#include <regex>
#include <sstream>

#include "ObjectManager/Http/EntityTag.h"
#include "Tests/ObjectManager/Http/WithoutDate.h"
#include "Tests/ObjectManager/Security/Files.h"
#include "Tests/ObjectManager/Security/Hashes.h"
#include "Tests/Providers/WsdlWebProvider/ExpectedDocuments.h"
#include "Tests/Support/WaitUntil.h"

namespace {

constexpr std::string_view kQualifiers =
    "Qualifier Key : boolean = false, Scope(property, reference), "
    "Flavor(DisableOverride, ToSubclass);\n"
    "Qualifier Description : string = null, Scope(any), "
    "Flavor(EnableOverride, ToSubclass, Translatable);\n";

constexpr std::string_view kClasses =
    "class TST_Nothing {};\n"
    "[Description(\"The first.\")] class TST_One { [Key] uint32 Id; uint32 Stop(); };\n";

std::string inQuotes(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

}  // namespace

std::vector<std::string> unusualLines(const std::string& log) {
    const std::regex usual(
        "[-0-9T:.]+Z (information .*|warning HttpFrontEnd: .*[Ff]ailed login.*|warning tesk: The "
        "process runs as root.*)");
    const std::regex time("^[-0-9T:.]+Z ");
    std::vector<std::string> lines;
    std::istringstream stream(log);
    for (std::string line; std::getline(stream, line);) {
        if (!std::regex_match(line, usual))
            lines.push_back(std::regex_replace(line, time, ""));
    }
    return lines;
}

RunningService::RunningService() : namespaces_{{"root/test", "test.mof"}} {
    writeModel("test.mof", kClasses);
    writeUsers("alice:" + std::string(kSha512OfSecret) + "\n");
}

void RunningService::TearDown() {
    if (!process_)
        return;
    if (process_->isRunning())
        process_->signal(SIGTERM);
    EXPECT_EQ(process_->wait(), expectedStatus_);
    EXPECT_EQ(unusualLines(process_->log()), expectedLog_);
}

void RunningService::writeModel(std::string_view name, std::string_view classes) const {
    directory_.write(name, std::string(kQualifiers) + std::string(classes));
}

std::string RunningService::largeClass() {
    // Long names make it large soon.
    constexpr int kProperties = 2000;
    const std::string name = "string " + std::string(2000, 'P');
    std::string text = "class TST_Large {\n";
    for (int index = 0; index < kProperties; ++index)
        text += name + std::to_string(index) + ";\n";
    return text + "};\n";
}

void RunningService::writeUsers(std::string_view text) const {
    // The service never sees half of it.
    std::filesystem::rename(writePrivate(directory_, "users.new", text), directory_ / "users");
}

void RunningService::writeConfiguration() const {
    std::string text = "[namespaces]\n";
    for (const auto& [name, path] : namespaces_)
        text += inQuotes(name) + " = " + inQuotes(path) + "\n";
    text += "[server]\nlisten = [";
    for (const std::string& address : listen_)
        text += inQuotes(address) + ", ";
    text += "]\n";
    for (const auto& [key, value] : serverKeys_)
        text += key + " = " + value + "\n";
    text += "[security]\npassword_file = \"users\"\n[log]\n" + logKeys_;
    directory_.write("tesk.toml", text);
}

void RunningService::start() {
    writeConfiguration();
    startWith({"serve", "--config", directory_ / "tesk.toml"});
}

void RunningService::startWith(const std::vector<std::string>& arguments,
                               const std::filesystem::path& program) {
    process_.emplace(arguments, "", program);
    readyLine_ = process_->readLine();
    const std::regex address("https?://[^ ]*:([0-9]+)");
    ports_.clear();
    for (std::sregex_iterator match(readyLine_.begin(), readyLine_.end(), address), end;
         match != end; ++match)
        ports_.push_back(static_cast<std::uint16_t>(std::stoul((*match)[1].str())));
    ASSERT_FALSE(ports_.empty()) << readyLine_ << process_->log();
}

std::string RunningService::get(std::string_view path) {
    return request("GET " + std::string(path) + " HTTP/1.1",
                   "Host: " + std::string(kHost) + "\r\n" + kAlice);
}

std::string RunningService::request(std::string_view line, std::string_view fields) {
    return std::string(line) + "\r\n" + std::string(fields) + "\r\n";
}

Client RunningService::sending(std::string_view bytes) const {
    Client client = connect();
    EXPECT_TRUE(client.send(bytes));
    return client;
}

std::string RunningService::response(std::string_view request) const {
    return withoutDate(responseWithDate(request));
}

std::string RunningService::responseWithDate(std::string_view request) const {
    return sending(request).readAll();
}

void RunningService::waitForResponse(std::string_view request, std::string_view begin) const {
    std::string response;
    EXPECT_TRUE(waitUntil([&] {
        response = responseWithDate(request);
        return response.starts_with(begin);
    })) << response.substr(0, begin.size());
}

std::string RunningService::found(std::string_view document) {
    return "HTTP/1.1 200 OK\r\nETag: " + Http::entityTag(document) +
           "\r\nConnection: close\r\nContent-Length: " + std::to_string(document.size()) +
           "\r\nContent-Type: text/xml\r\n\r\n" + std::string(document);
}

std::string RunningService::expected(const std::string& name, const std::string& host) {
    std::string document = expectedDocument(name);
    for (std::size_t at = document.find(kHost); at != std::string::npos;
         at = document.find(kHost, at + host.size()))
        document.replace(at, std::string_view(kHost).size(), host);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n" + document;
}

std::string RunningService::refusal(const std::string& status, const std::string& text) {
    return "HTTP/1.1 " + status + "\r\nConnection: close\r\n" +
           (status.starts_with("503") ? "Retry-After: 5\r\n" : "") +
           "Content-Type: text/plain; charset=utf-8\r\nContent-Length: " +
           std::to_string(text.size() + 1) + "\r\n\r\n" + text + "\n";
}

void RunningService::reload() {
    process_->signal(SIGHUP);
    process_->waitForLog("eloaded", ++reloads_);  // "Reloaded" or "Not reloaded"
}

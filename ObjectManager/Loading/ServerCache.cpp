#include "ObjectManager/Loading/ServerCache.h"

#include <filesystem>
#include <sstream>
#include <string_view>
#include <system_error>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Base/OutputDirectory.h"
#include "ObjectManager/CimXml/CimServer.h"
#include "ObjectManager/CimXml/Requests.h"
#include "ObjectManager/Loading/ImportDirectory.h"

namespace Loading {

namespace {

namespace fs = std::filesystem;

// A line for each namespace.
constexpr std::string_view kNamesFile = "namespaces.txt";
constexpr std::size_t kMaxNamesFile = std::size_t{1} << 20U;

// "https-cim.example.com-5989" for "https://cim.example.com:5989"; colons and brackets of an IPv6
// address become "_".
std::string directoryNameOf(const std::string& server) {
    const std::size_t host = server.find("://");
    const std::size_t port = server.rfind(':');
    std::string name = server.substr(0, host) + "-";
    for (const char byte : server.substr(host + 3, port - host - 3)) {
        const bool isPlain =
            Base::isLetter(byte) || Base::isDigit(byte) || byte == '.' || byte == '-';
        name += isPlain ? Base::lowerCase(byte) : '_';
    }
    return name + "-" + server.substr(port + 1);
}

}  // namespace

ServerCache::ServerCache(const std::string& directory, const ServerSource& server)
    : directory_(directory),
      name_(directoryNameOf(CimXml::CimServer(server.options).name())),
      path_(fs::path(directory) / name_) {}

void ServerCache::keep(const std::string& nameSpace, const Mof::Compilation& content,
                       const std::stop_token& stop) const {
    const Base::OutputDirectory output =
        Base::OutputDirectory::create(directory_, "import").createBelow(name_);
    (void)writeImport({{.name = nameSpace, .files = importFiles(content)}}, output,
                      {.prune = true, .isStopped = [&] { return stop.stop_requested(); }});
}

void ServerCache::keepNames(const std::vector<std::string>& namespaces) const {
    std::string text;
    for (const std::string& name : namespaces)
        text += name + "\n";
    Base::OutputDirectory::create(directory_, "import").createBelow(name_).put(kNamesFile, text);
}

Mof::Compilation ServerCache::read(const std::string& nameSpace) const {
    return Mof::compile({mainFileOf(nameSpace)});
}

std::vector<std::string> ServerCache::names() const {
    std::vector<std::string> names;
    try {
        std::istringstream lines(Base::readFile(fs::path(path_) / kNamesFile, kMaxNamesFile));
        for (std::string line; std::getline(lines, line);) {
            if (CimXml::isNamespaceName(line))
                names.push_back(line);
        }
    } catch (const std::system_error&) {
        // As if there were none.
    }
    return names;
}

std::string ServerCache::mainFileOf(const std::string& nameSpace) const {
    return fs::path(path_) / nameSpace / kMainFile;
}

}  // namespace Loading

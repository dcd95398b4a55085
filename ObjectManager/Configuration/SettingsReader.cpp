#include "ObjectManager/Configuration/SettingsReader.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <tuple>
#include <unistd.h>
#include <utility>

#include "ObjectManager/Configuration/NamespaceOption.h"
#include "ObjectManager/Configuration/Table.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Configuration {

namespace {

// So many times what anybody has to say.
constexpr std::size_t kMaxFileSize = 1'048'576;

constexpr std::chrono::milliseconds kShortestTimeout(1);

// Makes paths that are relative to a folder, that of the configuration file, relative to the
// current one.
class Folder {
  public:
    explicit Folder(const std::string& file) : path_(std::filesystem::path(file).parent_path()) {}

    [[nodiscard]] std::string resolve(const std::string& path) const {
        if (path.empty() || path.find('\0') != std::string::npos) {
            throw TeskBaseException("Configuration::Folder",
                                    "a path must have at least one character, and no zero byte",
                                    CIM_ERR_INVALID_PARAMETER);
        }
        return (path_ / path).string();
    }

    // For a key that may be empty to say that there is nothing.
    [[nodiscard]] std::string resolveUnlessEmpty(const std::string& path) const {
        return path.empty() ? path : resolve(path);
    }

  private:
    std::filesystem::path path_;
};

void readNamespaces(Table table, const Folder& folder,
                    std::vector<Repository::NamespaceSource>& namespaces) {
    for (const std::string& key : table.keys()) {
        // A heading reaches to the next one.
        if (key == "include_path") {
            table.reject(key,
                         "\"include_path\" must stand above [namespaces] and all other tables");
            continue;
        }
        Repository::NamespaceSource source;
        table.readTexts(key, "a MOF file or a folder", 1, [&](const std::string& path) {
            source.paths.push_back(folder.resolve(path));
        });
        try {
            source.name = parseNamespaceName(key);
        } catch (const TeskBaseException& exception) {
            table.reject(key, exception.getMessage().data());
            continue;
        }
        const auto isSame = [&](const Repository::NamespaceSource& other) {
            return isSameNamespace(other.name, source.name);
        };
        if (std::ranges::any_of(namespaces, isSame))
            table.reject(key, "the namespace \"" + source.name + "\" is listed twice");
        else
            namespaces.push_back(std::move(source));
    }
}

void readRepository(Table table, Repository::Options& settings) {
    table.readChoice<Repository::PropertyOrder>(
        "property_order",
        {{"name", Repository::PropertyOrder::kName},
         {"declaration", Repository::PropertyOrder::kDeclaration}},
        settings.propertyOrder);
    table.readBoolean("escape_descriptions", settings.escapeDescriptions);
    table.reportUnknownKeys();
}

void readServer(Table table, ServerSettings& settings) {
    std::vector<Endpoint> endpoints;
    table.readTexts("listen", "an address with a port", 1,
                    [&](const std::string& text) { endpoints.push_back(parseEndpoint(text)); });
    if (!endpoints.empty())
        settings.listen = std::move(endpoints);
    table.readInteger("workers", 0, 1024, settings.workers);
    table.readInteger("max_request_head", 256, 1'048'576, settings.maxRequestHead);
    table.readInteger("max_request_line", 64, 1'048'576, settings.maxRequestLine);
    table.readSeconds("head_timeout", kShortestTimeout, settings.headTimeout);
    table.readSeconds("response_timeout", kShortestTimeout, settings.responseTimeout);
    table.readSeconds("shutdown_timeout", kShortestTimeout, settings.shutdownTimeout);
    table.readInteger("max_connections", 1, 1'000'000, settings.maxConnections);
    table.reportUnknownKeys();
}

void readSecurity(Table table, const Folder& folder, SecuritySettings& settings) {
    table.readText("password_file", "a path", [&](const std::string& path) {
        settings.passwordFile = folder.resolveUnlessEmpty(path);
    });
    table.readSeconds("credential_lifetime", std::chrono::milliseconds(0),
                      settings.credentialLifetime);
    table.reportUnknownKeys();
}

void readLog(Table table, const Folder& folder, LogSettings& settings) {
    table.readInteger("level", 1, 4, settings.level);
    table.readText("file", "a path", [&](const std::string& path) {
        settings.file = folder.resolveUnlessEmpty(path);
    });
    table.reportUnknownKeys();
}

void readFile(Table table, const Folder& folder, Settings& settings) {
    table.readTexts("include_path", "a folder", 0, [&](const std::string& path) {
        settings.includePath.push_back(folder.resolve(path));
    });
    readNamespaces(table.readTable("namespaces"), folder, settings.namespaces);
    readRepository(table.readTable("repository"), settings.repository);
    readServer(table.readTable("server"), settings.server);
    readSecurity(table.readTable("security"), folder, settings.security);
    readLog(table.readTable("log"), folder, settings.log);
    table.reportUnknownKeys();
}

// That it is an error stands in front already.
std::string withoutRepetition(std::string_view description) {
    constexpr std::string_view kRepetition = "Error ";
    if (description.starts_with(kRepetition))
        description.remove_prefix(kRepetition.size());
    return std::string(description);
}

// The text of a file, or why it cannot be read.
struct FileText {
    std::string text;
    std::string failure;
};

FileText readText(const std::string& path) {
    const int descriptor = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (descriptor < 0)
        return {.text = "", .failure = std::strerror(errno)};
    FileText result;
    std::array<char, 4096> buffer = {};
    ssize_t count = 1;
    while (count != 0 && result.failure.empty()) {
        count = read(descriptor, buffer.data(), buffer.size());
        if (count > 0)
            result.text.append(buffer.data(), static_cast<std::size_t>(count));
        else if (count < 0 && errno != EINTR)
            result.failure = std::strerror(errno);
        if (result.text.size() > kMaxFileSize)
            result.failure = "it is longer than 1 MiB";
    }
    close(descriptor);
    return result;
}

}  // namespace

SettingsReading readSettings(const std::string& path) {
    const FileText file = readText(path);
    if (file.failure.empty())
        return parseSettings(path, file.text);
    return {.settings = {},
            .errors = {{.file = path, .message = "cannot be read: " + file.failure}}};
}

SettingsReading parseSettings(const std::string& path, std::string_view text) {
    SettingsReading reading;
    const ErrorReport report{.file = path, .errors = reading.errors};
    try {
        const toml::table table = toml::parse(text, path);
        readFile(Table(table, "", report), Folder(path), reading.settings);
    } catch (const toml::parse_error& error) {
        report.add(error.source(), withoutRepetition(error.description()));
    }
    const auto place = [](const SettingsError& error) {
        return std::tie(error.line, error.column);
    };
    std::ranges::stable_sort(reading.errors, {}, place);
    return reading;
}

}  // namespace Configuration

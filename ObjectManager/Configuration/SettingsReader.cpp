#include "ObjectManager/Configuration/SettingsReader.h"

#include <algorithm>
#include <filesystem>
#include <system_error>
#include <tuple>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/CimXml/CimServer.h"
#include "ObjectManager/Configuration/SettingValues.h"
#include "ObjectManager/Configuration/Table.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Configuration {

namespace {

// 1 MiB, far more than any configuration needs.
constexpr std::size_t kMaxFileSize = 1'048'576;

constexpr std::chrono::milliseconds kShortestTimeout(1);

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Configuration::SettingsReader", TSKString(message),
                            CIM_ERR_INVALID_PARAMETER);
}

// The directory of the configuration file, which paths in it are relative to.
class Directory {
  public:
    explicit Directory(const std::string& file)
        : path_(std::filesystem::path(file).parent_path()) {}

    // The path from the current directory.
    [[nodiscard]] std::string resolve(const std::string& path) const {
        if (path.empty() || path.find('\0') != std::string::npos) {
            fail("a path must have at least one character, and no zero byte");
        }
        return (path_ / path).string();
    }

    // For a key whose empty value means that there is no file.
    [[nodiscard]] std::string resolveUnlessEmpty(const std::string& path) const {
        return path.empty() ? path : resolve(path);
    }

  private:
    std::filesystem::path path_;
};

// A namespace of a server: { server = "NAME", namespace = "root/cimv2", classes = ["CIM_*"] }.
void readServerNamespace(Table table, const std::vector<Loading::ServerSource>& servers,
                         Loading::NamespaceSource& source) {
    table.readText("server", "the name of a server", [&](const std::string& name) {
        if (std::ranges::find(servers, name, &Loading::ServerSource::name) == servers.end()) {
            fail("there is no table [servers." + name + "]");
        }
        source.server = name;
    });
    table.readText("namespace", "the name of a namespace",
                   [&](const std::string& name) { source.remoteName = parseRemoteName(name); });
    table.readTexts("classes", "a name of classes", 0,
                    [&](const std::string& pattern) { source.patterns.push_back(pattern); });
    table.reportUnknownKeys();
}

// Stands for all namespaces that a server names.
constexpr std::string_view kAllNamespaces = "*";

void readNamespace(Table& table, const std::string& key, const Directory& directory,
                   const std::vector<Loading::ServerSource>& servers,
                   Loading::NamespaceSource& source) {
    if (!table.isTable(key)) {
        table.readTexts(key, "a MOF file or a directory", 1, [&](const std::string& path) {
            source.paths.push_back(directory.resolve(path));
        });
        source.name = parseNamespaceName(key);
        return;
    }
    Table serverTable = table.readTable(key);
    if (!serverTable.has("server")) {
        fail(Base::quoted(key) +
             " in [namespaces] must be a MOF file, a directory, a list of such, or a table with a "
             "\"server\"");
    }
    readServerNamespace(std::move(serverTable), servers, source);
    if (key == kAllNamespaces)
        return;
    source.name = parseNamespaceName(key);
    if (source.remoteName.empty())
        source.remoteName = source.name;
}

void readNamespaces(Table table, const Directory& directory,
                    const std::vector<Loading::ServerSource>& servers,
                    std::vector<Loading::NamespaceSource>& namespaces) {
    for (const std::string& key : table.keys()) {
        // A key below a table heading belongs to that table.
        if (key == "include_path") {
            table.reject(key,
                         "\"include_path\" must stand above [namespaces] and all other tables");
            continue;
        }
        Loading::NamespaceSource source;
        try {
            readNamespace(table, key, directory, servers, source);
        } catch (const TeskBaseException& exception) {
            table.reject(key, exception.getMessage().data());
            continue;
        }
        const auto isSame = [&](const Loading::NamespaceSource& other) {
            return Base::equalsIgnoringCase(other.name, source.name);
        };
        if (std::ranges::any_of(namespaces, isSame))
            table.reject(key, "the namespace " + Base::quoted(source.name) + " is listed twice");
        else
            namespaces.push_back(std::move(source));
    }
}

void readServerSource(Table table, const Directory& directory, Loading::ServerSource& source) {
    CimXml::ServerOptions& options = source.options;
    const auto readPath = [&](std::string_view key, std::string& target) {
        table.readText(key, "a path", [&](const std::string& path) {
            target = directory.resolveUnlessEmpty(path);
        });
    };
    table.readText("url", "an address", [&](const std::string& url) {
        CimXml::requireServerUrl(url);
        options.url = url;
    });
    table.readText("user", "a user", [&](const std::string& user) {
        options.user = user.empty() ? user : parseServerUser(user);
    });
    readPath("password_file", source.passwordFile);
    readPath("cacert", options.authoritiesFile);
    readPath("certificate", options.certificateFile);
    readPath("key", options.keyFile);
    table.readBoolean("verify", options.verifiesCertificate);
    std::chrono::milliseconds timeout = options.limits.totalTimeout;
    table.readSeconds("timeout", kShortestTimeout, timeout);
    options.limits.setTotalTimeout(timeout);
    table.readBoolean("local_only", options.localOnly);
    std::vector<std::string> interop;
    table.readTexts("interop_namespaces", "the name of a namespace", 1,
                    [&](const std::string& name) { interop.push_back(parseRemoteName(name)); });
    if (!interop.empty())
        options.interopNamespaces = std::move(interop);
    table.reportUnknownKeys();
}

void readServers(Table table, const Directory& directory,
                 std::vector<Loading::ServerSource>& servers) {
    for (const std::string& name : table.keys()) {
        Table serverTable = table.readTable(name);
        if (!table.isTable(name))
            continue;
        const bool hasUrl = serverTable.has("url");
        Loading::ServerSource source = {.name = name};
        readServerSource(std::move(serverTable), directory, source);
        if (!hasUrl)
            table.reject(name, "[servers." + name + "] must have a \"url\"");
        if (source.options.user.empty() != source.passwordFile.empty()) {
            table.reject(name, "[servers." + name +
                                   "] must have both a \"user\" and a \"password_file\", or "
                                   "neither");
        }
        servers.push_back(std::move(source));
    }
}

// Of a document without any member, and a terabyte.
constexpr std::int64_t kLeastSize = 16'384;
constexpr std::int64_t kMostSize = 1'099'511'627'776;

void readRepository(Table table, const Directory& directory, Repository::Options& settings,
                    RefreshSettings& refresh) {
    table.readChoice<Repository::PropertyOrder>(
        "property_order",
        {{"name", Repository::PropertyOrder::kName},
         {"declaration", Repository::PropertyOrder::kDeclaration}},
        settings.propertyOrder);
    table.readBoolean("escape_descriptions", settings.escapeDescriptions);
    table.readInteger("max_document_size", kLeastSize, kMostSize, settings.maxDocumentSize);
    table.readInteger("max_model_size", kLeastSize, kMostSize, settings.maxModelSize);
    table.readSeconds("refresh", std::chrono::milliseconds(0), refresh.interval);
    table.readText("cache", "a path", [&](const std::string& path) {
        refresh.cacheDirectory = directory.resolveUnlessEmpty(path);
    });
    table.reportUnknownKeys();
}

void readServer(Table table, const Directory& directory, Settings& all) {
    Http::Options& settings = all.server;
    std::vector<Http::ListenAddress> addresses;
    table.readTexts("listen", "an address with a port", 1, [&](const std::string& text) {
        addresses.push_back(parseListenAddress(text));
    });
    all.isListenSet = !addresses.empty();
    if (all.isListenSet)
        settings.listen = std::move(addresses);
    table.readTexts("tls_listen", "an address with a port", 0, [&](const std::string& text) {
        settings.tlsListen.push_back(parseListenAddress(text));
    });
    const auto readPath = [&](std::string_view key, std::string& target) {
        table.readText(key, "a path", [&](const std::string& path) {
            target = directory.resolveUnlessEmpty(path);
        });
    };
    readPath("tls_certificate", settings.tls.certificateFile);
    readPath("tls_key", settings.tls.keyFile);
    readPath("tls_client_ca", settings.tls.clientAuthorityFile);
    table.readText("admin_listen", "an address with a port", [&](const std::string& text) {
        if (!text.empty())
            all.adminListen = parseAdminAddress(text);
    });
    table.readText("published_address", "an address", [&](const std::string& text) {
        if (!text.empty())
            settings.publishedAddress = parsePublishedAddress(text);
    });
    table.readChoice<Security::Scheme>(
        "authentication", {{"basic", Security::Scheme::kBasic}, {"none", Security::Scheme::kNone}},
        all.security.scheme);
    table.readTexts("trusted_proxies", "a network", 0, [&](const std::string& text) {
        settings.trustedProxies.push_back(Http::Network::parse(text));
    });
    table.readInteger("workers", 0, 1024, settings.workers);
    table.readInteger("max_header_size", 256, 1'048'576, settings.maxHeaderSize);
    table.readInteger("max_request_line", 64, 1'048'576, settings.maxRequestLine);
    table.readSeconds("header_timeout", kShortestTimeout, settings.headerTimeout);
    table.readSeconds("request_timeout", std::chrono::milliseconds(0), settings.requestTimeout);
    table.readSeconds("response_timeout", kShortestTimeout, settings.responseTimeout);
    table.readSeconds("shutdown_timeout", kShortestTimeout, settings.shutdownTimeout);
    table.readInteger("max_connections", 1, 1'000'000, settings.maxConnections);
    table.readInteger("max_connections_per_client", 0, 1'000'000, settings.maxConnectionsPerClient);
    table.readInteger("max_response_memory", 1'048'576, 1'099'511'627'776,
                      settings.maxResponseMemory);
    table.reportUnknownKeys();
}

void readSecurity(Table table, const Directory& directory, Security::Options& settings) {
    table.readText("password_file", "a path", [&](const std::string& path) {
        settings.passwordFile = directory.resolveUnlessEmpty(path);
    });
    table.readSeconds("credential_lifetime", std::chrono::milliseconds(0),
                      settings.credentialLifetime);
    table.reportUnknownKeys();
}

void readLog(Table table, const Directory& directory, LogSettings& settings) {
    table.readInteger("level", 1, 4, settings.level);
    table.readText("file", "a path", [&](const std::string& path) {
        settings.file = directory.resolveUnlessEmpty(path);
    });
    table.readText("access", "a path or \"-\"", [&](const std::string& path) {
        settings.access = path == "-" ? path : directory.resolveUnlessEmpty(path);
    });
    table.reportUnknownKeys();
}

void readFile(Table table, const Directory& directory, Settings& settings) {
    table.readTexts("include_path", "a directory", 0, [&](const std::string& path) {
        settings.includePath.push_back(directory.resolve(path));
    });
    readServers(table.readTable("servers"), directory, settings.servers);
    readNamespaces(table.readTable("namespaces"), directory, settings.servers, settings.namespaces);
    readRepository(table.readTable("repository"), directory, settings.repository, settings.refresh);
    readServer(table.readTable("server"), directory, settings);
    readSecurity(table.readTable("security"), directory, settings.security);
    readLog(table.readTable("log"), directory, settings.log);
    table.reportUnknownKeys();
}

// Messages begin with "error: " already.
std::string withoutRepetition(std::string_view description) {
    constexpr std::string_view kRepetition = "Error ";
    if (description.starts_with(kRepetition))
        description.remove_prefix(kRepetition.size());
    return std::string(description);
}

}  // namespace

std::string SettingsError::toString() const {
    std::string text = file + ":";
    if (line > 0)
        text += std::to_string(line) + ":" + std::to_string(column) + ":";
    return text + " error: " + message + "\n";
}

SettingsReading readSettings(const std::string& path) {
    try {
        return parseSettings(path, Base::readFile(path, kMaxFileSize));
    } catch (const std::system_error& error) {
        const std::string reason = error.code() == std::errc::file_too_large
                                       ? "it is longer than 1 MiB"
                                       : Base::readFailure(error);
        return {.settings = {}, .errors = {{.file = path, .message = "cannot be read: " + reason}}};
    }
}

SettingsReading parseSettings(const std::string& path, std::string_view text) {
    SettingsReading reading;
    const ErrorReport report{.file = path, .errors = reading.errors};
    try {
        const toml::table table = toml::parse(text, path);
        readFile(Table(table, "", report), Directory(path), reading.settings);
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

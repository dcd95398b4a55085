#include "Tests/ObjectManager/Configuration/SettingsText.h"

namespace {

using namespace Configuration;

std::string joined(const std::vector<std::string>& texts) {
    std::string result;
    for (const std::string& text : texts)
        result += " " + text;
    return result;
}

std::string line(const std::string& key, std::string_view value) {
    return key + ":" + (value.empty() || value[0] == ' ' ? "" : " ") + std::string(value) + "\n";
}

std::string line(const std::string& key, std::size_t value) {
    return line(key, std::to_string(value));
}

std::string line(const std::string& key, std::chrono::milliseconds value) {
    return line(key, std::to_string(value.count()) + " ms");
}

std::string textOf(const Loading::ServerSource& source) {
    const CimXml::ServerOptions& options = source.options;
    std::string text = "server " + source.name + "\n";
    text += line("  url", options.url);
    text += line("  user", options.user);
    text += line("  password_file", source.passwordFile);
    text += line("  cacert", options.authoritiesFile);
    text += line("  certificate", options.certificateFile);
    text += line("  key", options.keyFile);
    text += line("  verify", options.verifiesCertificate ? "true" : "false");
    text += line("  timeout", options.limits.totalTimeout);
    text += line("  local_only", options.localOnly ? "true" : "false");
    return text + line("  interop_namespaces", joined(options.interopNamespaces));
}

}  // namespace

std::string textOf(const Settings& settings) {
    std::string text;
    for (const Loading::NamespaceSource& source : settings.namespaces) {
        text += line("namespace " + source.name, joined(source.paths));
        if (!source.server.empty())
            text +=
                "  " + source.remoteName + " of " + source.server + joined(source.patterns) + "\n";
    }
    for (const Loading::ServerSource& source : settings.servers)
        text += textOf(source);
    text += line("include_path", joined(settings.includePath));
    text +=
        line("property_order", settings.repository.propertyOrder == Repository::PropertyOrder::kName
                                   ? "name"
                                   : "declaration");
    text += line("escape_descriptions", settings.repository.escapeDescriptions ? "true" : "false");
    text += line("max_document_size", settings.repository.maxDocumentSize);
    text += line("max_model_size", settings.repository.maxModelSize);
    text += line("refresh", settings.refresh.interval);
    text += line("cache", settings.refresh.cacheDirectory);
    const Http::Options& server = settings.server;
    std::vector<std::string> addresses;
    for (const Http::ListenAddress& listen : server.listen)
        addresses.push_back(listen.address + ":" + std::to_string(listen.port));
    text += line("listen", joined(addresses));
    addresses.clear();
    for (const Http::ListenAddress& listen : server.tlsListen)
        addresses.push_back(listen.address + ":" + std::to_string(listen.port));
    text += line("tls_listen", joined(addresses));
    text += line("tls_certificate", server.tls.certificateFile);
    text += line("tls_key", server.tls.keyFile);
    text += line("tls_client_ca", server.tls.clientAuthorityFile);
    const auto& admin = settings.adminListen;
    text += line("admin_listen",
                 admin ? admin->address + ":" + std::to_string(admin->port) : std::string());
    const auto& published = server.publishedAddress;
    text += line("published_address",
                 published ? (published->isHttps ? "https://" : "http://") + published->host : "");
    text += line("authentication",
                 settings.security.scheme == Security::Scheme::kBasic ? "basic" : "none");
    std::vector<std::string> proxies;
    for (const Http::Network& network : server.trustedProxies)
        proxies.push_back(network.toString());
    text += line("trusted_proxies", joined(proxies));
    text += line("workers", std::size_t{server.workers});
    text += line("max_header_size", server.maxHeaderSize);
    text += line("max_request_line", server.maxRequestLine);
    text += line("header_timeout", server.headerTimeout);
    text += line("request_timeout", server.requestTimeout);
    text += line("response_timeout", server.responseTimeout);
    text += line("shutdown_timeout", server.shutdownTimeout);
    text += line("max_connections", server.maxConnections);
    text += line("max_connections_per_client",
                 server.maxConnectionsPerClient.value_or(server.maxConnections / 4));
    text += line("max_response_memory", server.maxResponseMemory);
    text += line("password_file", settings.security.passwordFile);
    text += line("credential_lifetime", settings.security.credentialLifetime);
    text += line("level", std::to_string(settings.log.level));
    text += line("file", settings.log.file);
    return text + line("access", settings.log.access);
}

std::string errorsOf(const SettingsReading& reading) {
    std::string text;
    for (const SettingsError& error : reading.errors)
        text += error.toString();
    return text;
}

std::string textOf(const SettingsReading& reading) {
    return textOf(reading.settings) + errorsOf(reading);
}

#pragma once

#include <chrono>
#include <cstddef>
#include <string>
#include <vector>

#include "ObjectManager/Configuration/Endpoint.h"
#include "ObjectManager/Repository/Options.h"
#include "ObjectManager/Repository/RepositoryLoader.h"

namespace Configuration {

struct ServerSettings {
    /// Where connections are awaited: on this machine alone, since Basic authentication shows
    /// passwords to everybody on the way. 5985 is the port of WS-Management over HTTP.
    std::vector<Endpoint> listen = {{.address = "127.0.0.1", .port = 5985}};

    /// Threads that make documents, 0 for as many as there are processors: they do not wait for
    /// clients, so more would only take turns.
    unsigned workers = 0;

    /// The longest head of a request, and the longest first line of one, in bytes. Paths are short
    /// and credentials have less than 1100 bytes; browsers and proxies add fields of their own.
    std::size_t maxRequestHead = 16384;
    std::size_t maxRequestLine = 8192;

    /// Within which a client must have sent the head of a request: a person would wait no longer.
    std::chrono::milliseconds headTimeout = std::chrono::seconds(10);

    /// Within which a client must take its response: time for a slow network, but not for a client
    /// that has gone.
    std::chrono::milliseconds responseTimeout = std::chrono::seconds(30);

    /// For how long requests are finished after the order to end. Service managers wait longer
    /// before they use force.
    std::chrono::milliseconds shutdownTimeout = std::chrono::seconds(10);

    /// How many connections may be open at once. Each takes a file, and the usual limit of those,
    /// up to which the object manager raises its own, is higher.
    std::size_t maxConnections = 4096;

    friend bool operator==(const ServerSettings&, const ServerSettings&) = default;
};

struct SecuritySettings {
    /// Who may ask, see `tesk passwd`. Empty for none: then whoever starts the object manager is
    /// told a password that is good until it ends.
    std::string passwordFile;

    /// For how long a verified credential is remembered, so that not every request costs a hash of
    /// a password; 0 for not at all.
    std::chrono::milliseconds credentialLifetime = std::chrono::minutes(5);

    friend bool operator==(const SecuritySettings&, const SecuritySettings&) = default;
};

struct LogSettings {
    /// The least important lines that are written: 1 errors, 2 warnings, 3 what happens at start
    /// and end, 4 begin and end of each request, which is too much for every day.
    int level = 3;

    /// Where lines are appended to; empty for standard error, which service managers collect.
    std::string file;

    friend bool operator==(const LogSettings&, const LogSettings&) = default;
};

/// What a person can decide about the object manager. Relative paths are relative to the current
/// folder, wherever they came from.
struct Settings {
    std::vector<Repository::NamespaceSource> namespaces;  ///< in the order of their names

    /// The folders in which included MOF files are looked for that do not stand beside the file
    /// that includes them.
    std::vector<std::string> includePath;

    Repository::Options repository;
    ServerSettings server;
    SecuritySettings security;
    LogSettings log;

    friend bool operator==(const Settings&, const Settings&) = default;
};

}  // namespace Configuration

#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "ObjectManager/Http/Options.h"
#include "ObjectManager/Loading/NamespaceSource.h"
#include "ObjectManager/Loading/ServerSource.h"
#include "ObjectManager/Repository/Options.h"
#include "ObjectManager/Security/Options.h"

namespace Configuration {

struct LogSettings {
    /// The least important lines that are written: 1 errors, 2 warnings, 3 what happens at start
    /// and end, 4 begin and end of each request, which is too much for every day.
    int level = 3;

    /// The file that lines are appended to; empty for standard error, which service managers
    /// collect.
    std::string file;

    /// The file that gets a line in the Combined Log Format for each response; "-" for standard
    /// output, empty for none.
    std::string access;

    friend bool operator==(const LogSettings&, const LogSettings&) = default;
};

/// How the classes of CIM servers are kept up to date.
struct RefreshSettings {
    /// How often a service asks the servers again; 0 for only at its start and at a reload.
    std::chrono::milliseconds interval = std::chrono::milliseconds(0);

    /// Where what was read last is kept, for a start without the servers; empty for nowhere.
    std::string cacheDirectory = {};

    friend bool operator==(const RefreshSettings&, const RefreshSettings&) = default;
};

/// What a person can decide about the object manager. Each part has its defaults in the header of
/// what it configures. Relative paths are relative to the current directory, whether they came from
/// the configuration file or from the command line.
struct Settings {
    std::vector<Loading::NamespaceSource> namespaces;  ///< in the order of their names

    /// The CIM servers that they refer to.
    std::vector<Loading::ServerSource> servers;

    /// The directories in which included MOF files are looked for that do not stand beside the file
    /// that includes them.
    std::vector<std::string> includePath;

    Repository::Options repository;
    RefreshSettings refresh;
    Http::Options server;

    /// Whether the file says where to listen without TLS; else that is the default.
    bool isListenSet = false;

    /// Where health and metrics are served, to everybody who reaches it; nothing for nowhere.
    std::optional<Http::ListenAddress> adminListen = std::nullopt;

    Security::Options security;
    LogSettings log;

    friend bool operator==(const Settings&, const Settings&) = default;
};

}  // namespace Configuration

#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "ObjectManager/Http/Options.h"
#include "ObjectManager/Repository/NamespaceSource.h"
#include "ObjectManager/Repository/RepositoryOptions.h"

namespace Configuration {

struct SecuritySettings {
    /// The users and their passwords, see `tesk passwd`. Empty for no file: then a temporary
    /// password is generated, and printed at the start.
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

    /// The file that lines are appended to; empty for standard error, which service managers
    /// collect.
    std::string file;

    friend bool operator==(const LogSettings&, const LogSettings&) = default;
};

/// What a person can decide about the object manager. Each part has its defaults in the header of
/// what it configures. Relative paths are relative to the current directory, whether they came from
/// the configuration file or from the command line.
struct Settings {
    std::vector<Repository::NamespaceSource> namespaces;  ///< in the order of their names

    /// The directories in which included MOF files are looked for that do not stand beside the file
    /// that includes them.
    std::vector<std::string> includePath;

    Repository::RepositoryOptions repository;
    Http::Options server;
    SecuritySettings security;
    LogSettings log;

    friend bool operator==(const Settings&, const Settings&) = default;
};

}  // namespace Configuration

#pragma once

#include <cstdint>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "ObjectManager/Loading/NamespaceSource.h"
#include "ObjectManager/Loading/ServerSource.h"
#include "ObjectManager/Mof/Diagnostics.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "ObjectManager/Repository/Options.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Loading {

/// Where classes come from.
struct Sources {
    /// Those with MOF files of the same namespace, in any case, add up.
    std::vector<NamespaceSource> namespaces;

    /// The servers that they refer to.
    std::vector<ServerSource> servers = {};

    /// As in Mof::CompilerOptions.
    std::vector<std::string> includePath = {};

    friend bool operator==(const Sources&, const Sources&) = default;
};

/// A server that could not be read, but whose classes are known.
struct ServerFailure {
    std::string error;        ///< what is wrong
    std::string consequence;  ///< which classes take the place of the server's

    /// "ERROR; CONSEQUENCE".
    [[nodiscard]] std::string toString() const { return error + "; " + consequence; }

    friend bool operator==(const ServerFailure&, const ServerFailure&) = default;
};

/// Classes, and what is needed to load them again.
struct LoadedRepository {
    TSKSmrPtr<Repository::ClassRepository> repository;  ///< null when there are errors
    std::vector<Mof::Diagnostic> diagnostics;

    /// Of servers whose classes are those of an earlier reading.
    std::vector<ServerFailure> failures = {};

    /// A namespace of a server as it was read.
    struct ServerState {
        NamespaceSource asked;   ///< as in Sources
        NamespaceSource source;  ///< with its name
        ServerSource server;
        std::optional<std::uint64_t> digest = {};  ///< none when it came from the cache
        std::string cacheDirectory = {};           ///< where it was to be kept
    };
    std::vector<ServerState> serverStates = {};
    Repository::Options options = {};
};

/// How classes are loaded once more.
struct LoadOptions {
    /// What was loaded before from the same sources or others. Namespaces of servers that have not
    /// changed are taken from it, and those of servers that fail. If nothing has changed at all,
    /// the result has the same repository. May be null.
    const LoadedRepository* before = nullptr;

    /// Whether namespaces of MOF files are taken from `before`, which has been loaded from the same
    /// sources, instead of compiled again.
    bool keepsFiles = false;

    /// Where what servers give is kept as MOF, to be used when they fail and `before` has nothing
    /// of them; empty for nowhere.
    std::string cacheDirectory = {};

    /// Ends reading from servers.
    std::stop_token stop = {};
};

/// Loads the classes of all namespaces, the same way from MOF files and from servers. Classes whose
/// documents would be too large are left out (CimNamespace::omittedClasses).
/// Errors: CimXml::ServerError for a server that fails while nothing is known of its classes, of
/// the kind kStopped soon after `stop` is requested; TeskBaseException for a namespace that comes
/// from two places; std::bad_alloc.
[[nodiscard]] LoadedRepository loadSources(const Sources& sources,
                                           const Repository::Options& options,
                                           const LoadOptions& how = {});

/// The same of MOF files only.
[[nodiscard]] LoadedRepository loadRepository(const std::vector<NamespaceSource>& sources,
                                              const std::vector<std::string>& includePath,
                                              const Repository::Options& options);

}  // namespace Loading

#pragma once

#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "ObjectManager/Loading/ServerSource.h"
#include "ObjectManager/Mof/Compiler.h"

namespace Loading {

/// Keeps what a server gave last as MOF: SCHEME-HOST-PORT/NAMESPACE/main.mof and the files that it
/// includes, in a directory for all servers.
///
/// Thread safety: belongs to one thread. Processes that write to the same directory at the same
/// time keep each other out.
class ServerCache {
  public:
    /// `directory` is made when something is kept. Errors: ServerError for a wrong address.
    ServerCache(const std::string& directory, const ServerSource& server);

    /// As in messages: the directory of the server.
    [[nodiscard]] const std::string& path() const noexcept { return path_; }

    // Errors of the next two: std::system_error and TeskBaseException when something cannot be
    // written; std::bad_alloc.

    /// Replaces what is kept of a namespace, unless `stop` is requested.
    void keep(const std::string& nameSpace, const Mof::Compilation& content,
              const std::stop_token& stop) const;

    /// Keeps which namespaces the server has.
    void keepNames(const std::vector<std::string>& namespaces) const;

    /// Compiles what is kept of a namespace; the result has errors if there is nothing.
    [[nodiscard]] Mof::Compilation read(const std::string& nameSpace) const;

    /// The namespaces that the server had; empty when that is not kept.
    [[nodiscard]] std::vector<std::string> names() const;

  private:
    [[nodiscard]] std::string mainFileOf(const std::string& nameSpace) const;

    std::string directory_;
    std::string name_;
    std::string path_;
};

}  // namespace Loading

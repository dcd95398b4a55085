#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <stop_token>
#include <string>
#include <vector>

#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/CimXml/CimServer.h"
#include "ObjectManager/Loading/NamespaceSource.h"
#include "ObjectManager/Loading/ServerSource.h"
#include "ObjectManager/Mof/Diagnostics.h"

namespace Loading {

/// A namespace as a server has it.
struct ServerNamespace {
    NamespaceSource source;  ///< with its name
    CimXml::NamespaceContent content;
};

/// What is read of a server.
struct ServerRequest {
    /// Namespaces of the server. One without a name stands for all that the server names, but those
    /// of `namedElsewhere`; of these, a namespace that the server refuses to tell about is left
    /// out.
    std::vector<NamespaceSource> sources;
    Base::NameSet namedElsewhere = {};

    /// The digest of a namespace that was read before, of which nothing but an equal digest is
    /// needed.
    std::function<std::optional<std::uint64_t>(const NamespaceSource& source)> knownDigest;

    /// Gets each namespace before the next one is read.
    std::function<void(ServerNamespace&& read)> onNamespace;

    /// Gets a warning for each namespace that is left out.
    std::function<void(Mof::Diagnostic&& warning)> onWarning;
};

/// Reads namespaces, one after the other.
/// Errors: ServerError, of the kind kStopped soon after `stop` is requested; what the functions of
/// `request` throw; std::bad_alloc.
void readServer(const ServerSource& server, const ServerRequest& request,
                const std::stop_token& stop);

}  // namespace Loading

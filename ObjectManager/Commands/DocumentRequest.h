#pragma once

#include <optional>
#include <string>

#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Repository/CimNamespace.h"

namespace Commands {

/// A document, or why there is none.
struct RequestedDocument {
    std::optional<Host::MemoryClient::Response> response;  ///< its body is the document
    std::string failure;  ///< such as "CIM_Foo.xsd: the response has the status 404"
};

/// Gets a document, such as "CIM_Foo.xsd", of a class of a namespace from the provider. An
/// exception of the provider is a failure like any other.
[[nodiscard]] RequestedDocument requestDocument(const Host::MemoryClient& client,
                                                const Repository::CimNamespace& nameSpace,
                                                const TSKString& document);

}  // namespace Commands

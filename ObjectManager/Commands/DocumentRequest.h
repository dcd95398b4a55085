#pragma once

#include <optional>
#include <string>

#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Repository/CimNamespace.h"

namespace Commands {

/// A document, or why there is none.
struct RequestedDocument {
    std::optional<Host::MemoryClient::Response> answer;  ///< whose body is the document
    std::string failure;  ///< such as "CIM_Foo.xsd is answered with the status 404"
};

/// Asks the provider for a document, such as "CIM_Foo.xsd", of a class of a namespace. Whatever
/// the provider throws is a failure like any other.
[[nodiscard]] RequestedDocument requestDocument(const Host::MemoryClient& client,
                                                const Repository::CimNamespace& nameSpace,
                                                const TSKString& document);

}  // namespace Commands

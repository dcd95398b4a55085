#pragma once

#include <string>
#include <string_view>

#include "ObjectManager/Repository/RepositoryLoader.h"

// A namespace and where its classes are declared, as a command line gives it: "NAME=PATH".

namespace Commands {

/// Whether a namespace may be called so: ASCII letters, digits, `_` and `-`, with single slashes
/// between them. Other characters would have to be encoded in the addresses of documents.
[[nodiscard]] bool isNamespaceName(std::string_view name) noexcept;

/// What is wrong with a text, without a full stop; empty when nothing is.
[[nodiscard]] std::string faultOfNamespaceOption(std::string_view text);

/// Takes a text apart that has no fault.
[[nodiscard]] NamespaceSource parseNamespaceOption(std::string_view text);

}  // namespace Commands

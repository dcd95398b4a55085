#pragma once

#include <string>
#include <string_view>

#include "ObjectManager/Repository/RepositoryLoader.h"

namespace Configuration {

/// The name of a namespace: `text` without the slashes at its ends.
/// Errors: TeskBaseException, whose message says what is right.
[[nodiscard]] std::string parseNamespaceName(std::string_view text);

/// Whether two names are those of the same namespace: letter case does not count.
[[nodiscard]] bool isSameNamespace(std::string_view name, std::string_view other) noexcept;

/// Reads "NAME=PATH", as the command line gives a namespace.
/// Errors: TeskBaseException, whose message says what is right.
[[nodiscard]] Repository::NamespaceSource parseNamespaceOption(std::string_view text);

}  // namespace Configuration

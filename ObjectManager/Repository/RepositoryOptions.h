#pragma once

#include <cstdint>

namespace Repository {

/// The order in which a class lists its properties.
enum class PropertyOrder : std::uint8_t {
    /// Ascending by name, in byte order: as the published class schemas do, and as WS-Management
    /// servers send them, so that instances validate against an `xs:sequence`.
    kName,
    /// As declared: superclass first, an override in the place of what it overrides, new ones
    /// appended.
    kDeclaration,
};

struct RepositoryOptions {
    PropertyOrder propertyOrder = PropertyOrder::kName;

    /// Whether the texts of Description qualifiers are handed out with `&`, `<` and `>` escaped.
    /// Documents insert them as they are, and would not be well-formed without it.
    bool escapeDescriptions = true;

    friend bool operator==(const RepositoryOptions&, const RepositoryOptions&) = default;
};

}  // namespace Repository

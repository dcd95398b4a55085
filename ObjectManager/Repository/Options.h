#pragma once

#include <cstdint>

namespace Repository {

/// The order in which a class lists its properties.
enum class PropertyOrder : std::uint8_t {
    /// Ascending by name, in byte order: as published class schemas do, and as WS-Management
    /// servers send them, so that instances validate against an `xs:sequence`.
    kName,
    /// As declared: superclass first, an override in the place of what it overrides, new ones
    /// appended.
    kDeclaration,
};

/// How a repository hands its classes to providers.
struct Options {
    PropertyOrder propertyOrder = PropertyOrder::kName;

    /// Whether providers get the texts of Description qualifiers with `&`, `<` and `>` escaped.
    /// Documents insert them as they are, and would not be well-formed without it.
    bool escapeDescriptions = true;

    friend bool operator==(const Options&, const Options&) = default;
};

}  // namespace Repository

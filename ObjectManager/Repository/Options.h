#pragma once

#include <cstddef>
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

    /// The size of a document in bytes. A class whose documents would be larger is left out: making
    /// them may take more memory than there is, and a ".." in its MOF is enough for that. Eighty
    /// times the largest document of the DMTF's schema.
    std::uint64_t maxDocumentSize = std::uint64_t{64} << 20U;

    /// The size in bytes of the MOF files of all namespaces together, more than thirty times that
    /// of the DMTF's whole schema. What they declare takes many times their size in memory.
    std::size_t maxModelSize = std::size_t{256} << 20U;

    friend bool operator==(const Options&, const Options&) = default;
};

}  // namespace Repository

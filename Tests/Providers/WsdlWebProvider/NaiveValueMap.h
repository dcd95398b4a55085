#pragma once

#include <optional>
#include <string>
#include <vector>

/// A restriction that a ValueMap is turned into.
struct NaiveRestriction {
    int depth;         ///< 0 for the outermost, 1 in its union, 2 in the union of a lone ".."
    std::string base;  ///< the type that is restricted
    /// What it holds in its order, such as "enumeration 3", "minInclusive 5", "anyAttribute".
    std::vector<std::string> facets;

    bool operator==(const NaiveRestriction&) const = default;
};

/// Evaluates an array ValueMap as literally as possible and returns the restrictions in the order
/// in which they begin. It exists to be held against the plug-in, so it shares no code with it and
/// prefers the plainest way to the fastest.
///
/// An entry of std::nullopt is a null entry; texts hold no zero byte. `typeName` is a CIM type name
/// in lower case, and an unknown one is mapped to "NA". `addMaxLength` and `maxLength` matter only
/// when no entry holds "..". Time and result grow with the number before a lone "..".
///
/// Thread safety: may be used by several threads at once.
[[nodiscard]] std::vector<NaiveRestriction> naiveValueMap(
    const std::string& typeName, const std::vector<std::optional<std::string>>& entries,
    bool addMaxLength, long maxLength);

#pragma once

#include <optional>
#include <string>
#include <vector>

/// Evaluates an array ValueMap as literally as possible and returns the XML text of the result: an
/// `xs:simpleContent` root with the restriction below it. It exists to be held against the product
/// by comparison, so it shares no code with it and prefers the plainest way to the fastest.
///
/// An entry of std::nullopt is a null entry; texts hold no zero byte. `typeName` is a CIM type name
/// in lower case, and an unknown one is mapped to "NA". `addMaxLength` and `maxLength` matter only
/// when no entry holds "..". Time and result grow with the number before a lone "..".
/// May be used by several threads at once.
[[nodiscard]] std::string naiveValueMapRestriction(
    const std::string& typeName, const std::vector<std::optional<std::string>>& entries,
    bool addMaxLength, long maxLength);

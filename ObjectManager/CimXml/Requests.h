#pragma once

#include <string>
#include <string_view>

// The requests that are sent (DSP0200, intrinsic methods; DSP0201, SIMPLEREQ). All functions may be
// called by several threads at once.

namespace CimXml {

struct Request {
    std::string operation;  ///< "EnumerateClasses"
    std::string nameSpace;  ///< "root/cimv2"
    std::string body;
};

// `nameSpace` must be a namespace name.

[[nodiscard]] Request enumerateQualifiers(const std::string& nameSpace);

/// All classes, each with its qualifiers and, without `localOnly`, with all that it inherits.
[[nodiscard]] Request enumerateClasses(const std::string& nameSpace, bool localOnly);

[[nodiscard]] Request enumerateClassNames(const std::string& nameSpace);

/// `className` must be a name.
[[nodiscard]] Request getClass(const std::string& nameSpace, std::string_view className,
                               bool localOnly);
[[nodiscard]] Request enumerateInstanceNames(const std::string& nameSpace,
                                             std::string_view className);

/// Whether a text is the name of a namespace: names with a slash between them (DSP0004, annex A),
/// each of which may have "-" and "." within as well.
[[nodiscard]] bool isNamespaceName(std::string_view text) noexcept;

}  // namespace CimXml

#pragma once

#include <string>
#include <string_view>

namespace Index {

/// A path as it stands in a relative URI (RFC 3986): the slashes as they are, of everything else
/// only letters, digits and "-._~", the other bytes as "%2B". It needs no quotes as the value of an
/// HTML attribute, and no escaping.
[[nodiscard]] std::string percentEncodedPath(std::string_view path);

}  // namespace Index

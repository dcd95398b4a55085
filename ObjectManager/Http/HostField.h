#pragma once

#include <string_view>

namespace Http {

/// Whether `value` is what the field "Host" holds (RFC 9110, section 7.2): a name, an IPv4 address
/// or an IPv6 address in brackets (RFC 3986, section 3.2.2), then perhaps a colon and a port of at
/// most 65535, which may be left out after the colon. An empty host is refused, since no http URI
/// has one; so are addresses of future versions and zones, which nobody has, and a name with an
/// ampersand, which would spoil the XML documents that the host is written into.
[[nodiscard]] bool isHostField(std::string_view value);

}  // namespace Http

#pragma once

#include <string>
#include <string_view>

#include "ObjectManager/Host/PublishedAddress.h"
#include "ObjectManager/Http/Options.h"
#include "ObjectManager/Loading/NamespaceSource.h"

// Values that are written alike in the configuration file and on the command line.
// Errors: TeskBaseException, whose message says what is right.

namespace Configuration {

/// Reads "ADDRESS:PORT", with an IPv6 address in brackets. The address is numeric: a host name may
/// stand for several.
[[nodiscard]] Http::ListenAddress parseListenAddress(std::string_view text);

/// The same, or a port alone, which stands for that of 127.0.0.1.
[[nodiscard]] Http::ListenAddress parseAdminAddress(std::string_view text);

/// Reads "https://cim.example.org:5986": a scheme, a host and an optional port.
[[nodiscard]] Host::PublishedAddress parsePublishedAddress(std::string_view text);

/// The name of a namespace: `text` without the slashes at its ends.
[[nodiscard]] std::string parseNamespaceName(std::string_view text);

/// Reads "NAME=PATH": a namespace and the MOF file or the directory with its classes.
[[nodiscard]] Loading::NamespaceSource parseNamespaceOption(std::string_view text);

/// Reads "NAME[=REMOTE]": a namespace, and what a CIM server calls it where the names differ. The
/// result names no server.
[[nodiscard]] Loading::NamespaceSource parseServerNamespaceOption(std::string_view text);

/// `text` without the slashes at its ends, as the name of a namespace of a CIM server.
[[nodiscard]] std::string parseRemoteName(std::string_view text);

/// A user at a CIM server, which is `text`: not empty, and without a colon, which ends the user in
/// the credentials of HTTP Basic authentication.
[[nodiscard]] std::string parseServerUser(std::string_view text);

}  // namespace Configuration

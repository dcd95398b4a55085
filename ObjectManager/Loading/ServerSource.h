#pragma once

#include <string>

#include "ObjectManager/CimXml/Options.h"

namespace Loading {

/// A CIM server that classes are read from.
struct ServerSource {
    std::string name;  ///< by which namespaces refer to it

    /// With the password only where a person has typed it.
    CimXml::ServerOptions options = {.url = {}};

    /// The file with the password of options.user in its only line; empty for none.
    std::string passwordFile = {};

    friend bool operator==(const ServerSource&, const ServerSource&) = default;
};

/// How to talk to the server: the options, with the password of the file as it is now.
/// Errors: ServerError of the kind kOptions when the file cannot be read, is not safe
/// (Security/PrivateFile.h) or holds no password.
[[nodiscard]] CimXml::ServerOptions optionsWithPassword(const ServerSource& source);

}  // namespace Loading

#pragma once

#include <string>
#include <vector>

namespace Loading {

/// A CIM namespace, and where its classes are declared: in MOF files, or by a CIM server.
struct NamespaceSource {
    /// "root/cimv2", without a `/` at either end. Empty for all namespaces that the server names.
    std::string name;

    /// MOF files, each with all that it includes, or directories.
    std::vector<std::string> paths = {};

    /// ServerSource::name; empty for MOF files.
    std::string server = {};

    /// What the server calls the namespace.
    std::string remoteName = {};

    /// Only classes whose names fit one of these, and their superclasses (Base::NamePattern); all
    /// without a pattern.
    std::vector<std::string> patterns = {};

    friend bool operator==(const NamespaceSource&, const NamespaceSource&) = default;
};

}  // namespace Loading

#pragma once

#include <string>
#include <vector>

namespace Repository {

/// A CIM namespace, and where its classes are declared.
struct NamespaceSource {
    std::string name;  ///< "root/cimv2", without a `/` at either end

    /// MOF files, each with all that it includes, or folders.
    std::vector<std::string> paths;

    friend bool operator==(const NamespaceSource&, const NamespaceSource&) = default;
};

}  // namespace Repository

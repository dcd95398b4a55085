#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Mof/Diagnostics.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "ObjectManager/Repository/Options.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Repository {

/// A CIM namespace, and where its classes are declared.
struct NamespaceSource {
    std::string name;  ///< "root/cimv2", without a `/` at either end

    /// MOF files, each with all that it includes, or directories.
    std::vector<std::string> paths;

    friend bool operator==(const NamespaceSource&, const NamespaceSource&) = default;
};

struct LoadedRepository {
    TSKSmrPtr<ClassRepository> repository;  ///< null when there are errors
    std::vector<Mof::Diagnostic> diagnostics;
};

/// Compiles the classes of all namespaces. Sources of the same namespace, in any case, add up.
/// Classes whose documents would be too large are left out (CimNamespace::omittedClasses).
/// `includePath` as in Mof::CompilerOptions.
[[nodiscard]] LoadedRepository loadRepository(const std::vector<NamespaceSource>& sources,
                                              const std::vector<std::string>& includePath,
                                              const Options& options);

}  // namespace Repository

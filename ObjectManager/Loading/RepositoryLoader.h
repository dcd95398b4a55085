#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Loading/NamespaceSource.h"
#include "ObjectManager/Mof/Diagnostics.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "ObjectManager/Repository/Options.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Loading {

struct LoadedRepository {
    TSKSmrPtr<Repository::ClassRepository> repository;  ///< null when there are errors
    std::vector<Mof::Diagnostic> diagnostics;
};

/// Compiles the classes of all namespaces. Sources of the same namespace, in any case, add up.
/// Classes whose documents would be too large are left out (CimNamespace::omittedClasses).
/// `includePath` as in Mof::CompilerOptions.
[[nodiscard]] LoadedRepository loadRepository(const std::vector<NamespaceSource>& sources,
                                              const std::vector<std::string>& includePath,
                                              const Repository::Options& options);

}  // namespace Loading

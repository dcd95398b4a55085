#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Mof/Diagnostics.h"
#include "ObjectManager/Repository/ClassRepository.h"
#include "ObjectManager/Repository/NamespaceSource.h"
#include "ObjectManager/Repository/RepositoryOptions.h"
#include "Platform/Util/TSKSmrPtr.h"

namespace Repository {

struct LoadedRepository {
    TSKSmrPtr<ClassRepository> repository;  ///< null when there are errors
    std::vector<Mof::Diagnostic> diagnostics;
};

/// Compiles the classes of all namespaces. Sources of the same namespace, in any case, add up.
/// `includePath` as in Mof::CompilerOptions.
[[nodiscard]] LoadedRepository loadRepository(const std::vector<NamespaceSource>& sources,
                                              const std::vector<std::string>& includePath,
                                              const RepositoryOptions& options);

}  // namespace Repository

#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Repository/ClassRepository.h"

namespace Commands {

/// Classes of a namespace. They belong to the repository.
struct ClassSelection {
    const Repository::CimNamespace* nameSpace;
    std::vector<const Repository::CimClass*> classes;  ///< in the order of the namespace
};

/// Every class of every namespace; namespaces without classes too.
[[nodiscard]] std::vector<ClassSelection> selectAllClasses(
    const Repository::ClassRepository& repository);

/// The classes of all namespaces that have one of `names`, in any case, or match one that is a
/// pattern (see NamePattern.h); none twice, no namespace without any.
/// Errors: TeskBaseException, with all of `names` that fit no class.
[[nodiscard]] std::vector<ClassSelection> selectClasses(
    const Repository::ClassRepository& repository, const std::vector<std::string>& names);

}  // namespace Commands

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

/// The classes of all namespaces whose name is one of `names`, in any case; none twice, and no
/// namespace without any. In a name, `*` stands for any number of characters and `?` for one byte;
/// nothing else has a meaning of its own.
/// Errors: TeskBaseException that tells all of `names` that fit no class.
[[nodiscard]] std::vector<ClassSelection> selectClasses(
    const Repository::ClassRepository& repository, const std::vector<std::string>& names);

}  // namespace Commands

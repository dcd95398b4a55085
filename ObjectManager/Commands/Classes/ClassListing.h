#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Commands/SharedOptions.h"
#include "ObjectManager/Repository/ClassRepository.h"

// What `tesk classes` prints, with a newline at the end.

namespace Commands {

/// The classes of the namespaces, with their superclasses.
[[nodiscard]] std::string listClasses(
    const std::vector<const Repository::CimNamespace*>& namespaces, OutputFormat format);

/// One class with its properties and methods, inherited ones too.
[[nodiscard]] std::string describeClass(const Repository::CimNamespace& nameSpace,
                                        const Repository::CimClass& cimClass, OutputFormat format);

}  // namespace Commands

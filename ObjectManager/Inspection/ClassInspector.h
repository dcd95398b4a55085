#pragma once

#include <vector>

#include "ObjectManager/Inspection/Finding.h"
#include "ObjectManager/Repository/CimClass.h"

namespace Inspection {

/// What of a class its documents cannot show, found before they are made. The caller fills in the
/// namespace and the class. May be called by several threads at once.
[[nodiscard]] std::vector<Finding> inspectClass(const Repository::CimClass& cimClass);

}  // namespace Inspection

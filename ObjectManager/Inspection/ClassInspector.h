#pragma once

#include <vector>

#include "ObjectManager/Inspection/Finding.h"
#include "ObjectManager/Repository/CimClass.h"

namespace Inspection {

/// What of a class its documents cannot show rightly. The namespace and the class are left for the
/// caller to fill in.
[[nodiscard]] std::vector<Finding> inspectClass(const CimClass& cimClass);

}  // namespace Inspection

#pragma once

#include <vector>

#include "ObjectManager/Comparison/Change.h"
#include "ObjectManager/Comparison/Contract.h"

namespace Comparison {

/// What changes for the clients of a class. The caller fills in the namespace and the class, and
/// sorts. May be called by several threads at once.
[[nodiscard]] std::vector<Change> compare(const Contract& before, const Contract& after);

}  // namespace Comparison

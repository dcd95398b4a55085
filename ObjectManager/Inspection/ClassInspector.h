#pragma once

#include <vector>

#include "ObjectManager/Inspection/Finding.h"
#include "ObjectManager/Repository/CimClass.h"

namespace Inspection {

/// As many values the ".." of all ValueMaps of a class may be written as. Its documents take
/// several hundred megabytes to make and to read then.
constexpr unsigned long kMostGapsOfClass = 1'000'000;

/// What of a class its documents cannot show rightly. The namespace and the class are left for the
/// caller to fill in. After a finding of FindingKind::kTooManyGaps the documents must not be asked
/// for.
[[nodiscard]] std::vector<Finding> inspectClass(const Repository::CimClass& cimClass);

}  // namespace Inspection

#pragma once

#include <vector>

#include "ObjectManager/Inspection/Finding.h"
#include "ObjectManager/Repository/CimClass.h"

namespace Inspection {

// What of a class its documents cannot show, found before they are made. Both functions may be
// called by several threads at once.

/// How many values the ".." of all ValueMaps of a class may be written as. With that many, its
/// documents take several hundred megabytes to make and to read.
constexpr unsigned long kMaxGapsOfClass = 1'000'000;

/// How many values the ".." of a ValueMap are written as in documents, all of them together: those
/// from 0 up to the number before it that are not listed. Known from the ValueMap alone, since
/// writing them may take more memory than there is.
[[nodiscard]] unsigned long countGaps(const ITeskValue& valueMap);

/// What is wrong with a class. The caller fills in the namespace and the class. After a finding of
/// FindingKind::kTooManyGaps the documents must not be requested.
[[nodiscard]] std::vector<Finding> inspectClass(const Repository::CimClass& cimClass);

}  // namespace Inspection

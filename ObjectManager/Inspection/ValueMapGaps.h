#pragma once

#include "Platform/Cim/ITeskValue.h"

namespace Inspection {

/// How many values the ".." of a ValueMap are written as in documents, all of them together: those
/// from 0 up to the number before it that are not listed. Known from the ValueMap alone, since
/// writing them may take more memory than there is.
[[nodiscard]] unsigned long countGaps(const ITeskValue& valueMap);

}  // namespace Inspection

#pragma once

#include <optional>
#include <string>

#include "ObjectManager/Mof/Declarations.h"

namespace Mof {

/// Why a value does not fit a type.
struct Mismatch {
    Position position;   ///< of the literal that does not fit, or of the whole value
    std::string reason;  ///< what would fit, to stand behind the name of what has the value:
                         ///< "must be a boolean, not a string"
};

/// Whether a value fits a type (DSP0004, 5.2): its kind, its range, and whether it is an array and
/// of no more elements than have place. Null fits everything. Returns the first mismatch.
[[nodiscard]] std::optional<Mismatch> findMismatch(const Value& value, const Type& type);

}  // namespace Mof

#pragma once

#include <optional>
#include <string>

#include "ObjectManager/Mof/Declarations.h"

namespace Mof {

/// Why a value does not fit a type.
struct Mismatch {
    Position position;   ///< of the literal that does not fit, or of the whole value
    std::string reason;  ///< "must be a boolean, not a string": the rest of a sentence that begins
                         ///< with the name of the element that has the value
};

/// Checks whether a value fits a type (DSP0004, 5.2): its kind, its range, whether it is an array,
/// and the number of elements. Null fits every type. Returns the first mismatch.
[[nodiscard]] std::optional<Mismatch> findMismatch(const Value& value, const Type& type);

}  // namespace Mof

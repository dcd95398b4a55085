#pragma once

#include "ObjectManager/Mof/Declarations.h"

// Whether two declarations say the same, wherever they stand. Names are compared without regard to
// case; what has an order is compared in its order.

namespace Mof {

[[nodiscard]] bool isSame(const ClassDeclaration& left, const ClassDeclaration& right);
[[nodiscard]] bool isSame(const QualifierDeclaration& left, const QualifierDeclaration& right);

}  // namespace Mof

#pragma once

#include <cstddef>

#include "ObjectManager/Mof/Compilation.h"
#include "ObjectManager/Mof/Reporter.h"

namespace Mof {

/// How far a class may stand below its topmost superclass. Far more than schemas have; what a class
/// inherits is listed for each class, so that a longer line would take memory by its square.
constexpr std::size_t kDeepestClass = 200;

/// Holds all declarations of a compilation against each other: looks up superclasses and
/// qualifiers, and holds values against types. Removes declarations that are there already and say
/// the same, and fills in the types of qualifiers and which of them propagate.
/// Errors: TooManyErrors out of `reporter`.
void checkDeclarations(Compilation& compilation, Reporter& reporter);

}  // namespace Mof

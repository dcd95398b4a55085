#pragma once

#include <cstddef>

#include "ObjectManager/Mof/Compilation.h"
#include "ObjectManager/Mof/Reporter.h"

namespace Mof {

/// How far a class may stand below its topmost superclass. Far more than schemas have; what a class
/// inherits is listed for each class, so that a longer line would take memory by its square.
constexpr std::size_t kDeepestClass = 200;

/// How many properties, methods, parameters and qualifiers all classes together may have, counted
/// for each class with all that its superclasses declare. The DMTF's schema has 134,000; a small
/// file that was made to do harm could exhaust the memory, of which each may take some bytes.
constexpr std::size_t kMostInherited = 20'000'000;

/// Holds all declarations of a compilation against each other: looks up superclasses and
/// qualifiers, and holds values against types. Removes declarations that are there already and say
/// the same, and fills in the types of qualifiers and which of them propagate.
/// Errors: TooManyErrors out of `reporter`.
void checkDeclarations(Compilation& compilation, Reporter& reporter);

}  // namespace Mof

#pragma once

#include <cstddef>

#include "ObjectManager/Mof/Compiler.h"
#include "ObjectManager/Mof/Diagnostics.h"

namespace Mof {

/// How many superclasses a class may have above it. Far more than schemas need. What a class
/// inherits is listed for each class, so that a longer line would take memory by its square.
constexpr std::size_t kMaxSuperclasses = 200;

/// How many properties, methods, parameters and qualifiers all classes together may have, counted
/// for each class with all that it inherits. The DMTF's schema has 134,000. A small file that was
/// made to do harm could declare enough of them to exhaust the memory.
constexpr std::size_t kMaxInherited = 20'000'000;

/// Checks the declarations of a compilation against each other: superclasses and qualifiers must be
/// declared, values must fit types. Removes repeated declarations that say the same, and completes
/// qualifiers by their type and whether they propagate.
/// Errors: TooManyErrors of `reporter`.
void checkDeclarations(Compilation& compilation, Reporter& reporter);

}  // namespace Mof

#pragma once

#include <cstddef>
#include <string>
#include <vector>

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

/// Why a class cannot be used.
struct ClassFault {
    TSKString className;
    Position position;
    std::string message;
};

/// The same for declarations that their reader cannot have corrected. A class with an error, or
/// with one of `known`, is removed with its subclasses, and the first such error becomes a warning;
/// a default value that does not fit its qualifier is removed likewise. `known` names classes of
/// the compilation, of which nothing but name and superclass needs to be there. Only what is wrong
/// with the whole is an error: more than kMaxInherited, and qualifiers or classes that are declared
/// twice in different ways.
/// Errors: TooManyErrors of `reporter`.
void leaveOutFaulty(Compilation& compilation, Reporter& reporter,
                    const std::vector<ClassFault>& known);

}  // namespace Mof

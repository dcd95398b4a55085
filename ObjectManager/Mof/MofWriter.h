#pragma once

#include <string>

#include "ObjectManager/Mof/Declarations.h"

// Declarations as MOF 2.x (DSP0004, annex A) that any compiler takes, in UTF-8. Compiled again, the
// text declares the same (isSame()). Names and values must be those that a compilation can have:
// see isReservedWord().

namespace Mof {

/// `Qualifier Key : boolean = false, Scope (property, reference), Flavor (DisableOverride);`, with
/// a newline at the end.
[[nodiscard]] std::string mofOf(const QualifierDeclaration& declaration);

/// A class with all that it declares itself, over many lines. Long strings are written in parts, so
/// that lines stay short.
[[nodiscard]] std::string mofOf(const ClassDeclaration& declaration);

}  // namespace Mof

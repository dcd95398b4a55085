#pragma once

#include <string>

#include "ObjectManager/Mof/Compiler.h"

/// The declarations of a compilation as a text to compare: one line a qualifier declaration, class,
/// property, method and parameter, without positions. Numbers are decimal, texts are quoted.
[[nodiscard]] std::string textOf(const Mof::Compilation& compilation);

/// Its diagnostics, as they are shown.
[[nodiscard]] std::string diagnosticsOf(const Mof::Compilation& compilation);

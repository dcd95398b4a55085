#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Mof/Compilation.h"
#include "ObjectManager/Mof/Compiler.h"
#include "ObjectManager/Mof/Reporter.h"

namespace Mof {

/// Adds to `compilation` the files at `paths`, with those that they include, and what they declare.
/// Errors: TooManyErrors out of `reporter`.
void readFiles(const std::vector<std::string>& paths, const CompilerOptions& options,
               Compilation& compilation, Reporter& reporter);

}  // namespace Mof

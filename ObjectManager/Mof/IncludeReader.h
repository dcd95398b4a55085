#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Mof/Compiler.h"
#include "ObjectManager/Mof/Diagnostics.h"

namespace Mof {

/// Adds to `compilation` the files at `paths`, with those that they include, and their
/// declarations. An included file is searched for in the directory of the file that includes it,
/// then in those of the include path. A file is read once, by whatever path it is reached. Files
/// elsewhere than below the directories of `paths` and the include path are errors, and not read.
/// Errors: TooManyErrors of `reporter`.
void readFiles(const std::vector<std::string>& paths, const CompilerOptions& options,
               Compilation& compilation, Reporter& reporter);

}  // namespace Mof

#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ObjectManager/Mof/Compilation.h"

namespace Mof {

struct CompilerOptions {
    /// The folders in which an included file is looked for that does not stand beside the file that
    /// includes it.
    std::vector<std::string> includePath;

    /// After so many errors the rest is not read: they are likely to be the consequence of the
    /// first ones.
    std::size_t mostErrors = 20;

    /// How many files may include each other in a row. Far more than schemas have; it keeps files
    /// that were made to do harm from exhausting the stack.
    std::size_t deepestInclude = 200;

    /// The length in bytes that a file may have, eight times that of the DMTF's whole schema. What
    /// is read takes many times its length in memory.
    std::size_t largestFile = std::size_t{64} << 20U;
};

/// Reads the MOF files at all of `paths`, whose declarations may need each other: each path is a
/// file with all that it includes, or a folder, of which every file is read, and of the folders
/// below it, whose name ends with ".mof", in the order of their names. A file that cannot be read
/// is an error like those in its text.
///
/// What is declared is held against each other too, once all is read without an error: without
/// errors in the result every superclass is there, no class or qualifier is declared twice, and
/// values fit their types.
[[nodiscard]] Compilation compile(const std::vector<std::string>& paths,
                                  const CompilerOptions& options = {});

}  // namespace Mof

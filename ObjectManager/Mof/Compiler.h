#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/Diagnostics.h"
#include "ObjectManager/Mof/SourceText.h"

namespace Mof {

struct CompilerOptions {
    /// The directories that are searched for an included file that is not in the directory of the
    /// file that includes it. No file is read that is neither below one of them nor below the
    /// directory of a path that is compiled, whatever links lead to it.
    std::vector<std::string> includePath;

    /// How many errors and warnings are reported.
    DiagnosticLimits diagnostics;

    /// How many files may include each other in a row. Far more than schemas need; it keeps files
    /// that were made to do harm from exhausting the stack.
    std::size_t maxIncludeDepth = 200;

    /// The size of a file in bytes, eight times that of the DMTF's whole schema. Its declarations
    /// take many times its size in memory.
    std::size_t maxFileSize = std::size_t{64} << 20U;

    /// The size of all files together in bytes.
    std::size_t maxTotalSize = std::size_t{256} << 20U;
};

/// The declarations of MOF files, and what is wrong with them.
struct Compilation {
    std::vector<SourceText> files;
    std::vector<QualifierDeclaration> qualifiers;
    std::vector<ClassDeclaration> classes;
    std::vector<Diagnostic> diagnostics;
    std::size_t bytesRead = 0;  ///< the size of all files

    /// Whether an error makes the declarations useless.
    [[nodiscard]] bool hasErrors() const noexcept;
};

/// Compiles the MOF files at all of `paths`, which may refer to each other's declarations. A path
/// names a file, which is read with all that it includes, or a directory, of which every file whose
/// name ends with ".mof" is read, in the order of names, and those in the directories below it. A
/// file that cannot be read is an error like those in its text.
///
/// When all files are read without an error, the declarations are checked against each other: if
/// the result has no errors, every superclass is declared, no class or qualifier is declared twice,
/// and values fit their types.
[[nodiscard]] Compilation compile(const std::vector<std::string>& paths,
                                  const CompilerOptions& options = {});

}  // namespace Mof

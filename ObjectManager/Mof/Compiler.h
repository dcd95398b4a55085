#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Mof/Diagnostic.h"
#include "ObjectManager/Mof/SourceText.h"

namespace Mof {

/// All that some MOF files declare, and what is wrong with them.
struct Compilation {
    std::vector<SourceText> files;
    std::vector<QualifierDeclaration> qualifiers;
    std::vector<ClassDeclaration> classes;
    std::vector<Diagnostic> diagnostics;

    [[nodiscard]] bool hasErrors() const noexcept;

    /// Adds what is wrong at a place of one of the files.
    void addDiagnostic(Severity severity, const Position& position, std::string message);
};

struct CompilerOptions {
    /// The folders in which an included file is looked for that does not stand beside the file that
    /// includes it.
    std::vector<std::string> includePath;

    /// After so many errors the rest is not read: they are likely to be the consequence of the
    /// first ones.
    std::size_t mostErrors = 20;
};

/// Reads the MOF files at `path`: a file with all that it includes, or every file of a folder, and
/// of the folders below it, whose name ends with ".mof", in the order of their names. A file that
/// cannot be read is an error like those in its text.
[[nodiscard]] Compilation compile(const std::string& path, const CompilerOptions& options = {});

}  // namespace Mof

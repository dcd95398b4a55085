#pragma once

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

    /// Whether something is wrong that leaves the declarations without use.
    [[nodiscard]] bool hasErrors() const noexcept;
};

}  // namespace Mof

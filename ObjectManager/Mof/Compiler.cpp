#include "ObjectManager/Mof/Compiler.h"

#include <algorithm>

#include "ObjectManager/Mof/DeclarationChecker.h"
#include "ObjectManager/Mof/IncludeReader.h"

namespace Mof {

bool Compilation::hasErrors() const noexcept {
    return std::any_of(diagnostics.begin(), diagnostics.end(), [](const Diagnostic& diagnostic) {
        return diagnostic.severity == Severity::kError;
    });
}

Compilation compile(const std::vector<std::string>& paths, const CompilerOptions& options) {
    Compilation compilation;
    Reporter reporter(compilation.files, compilation.diagnostics, options.diagnostics);
    try {
        readFiles(paths, options, compilation, reporter);
        if (!compilation.hasErrors())
            checkDeclarations(compilation, reporter);
    } catch (const TooManyErrors&) {
        // The last diagnostic says so.
    }
    return compilation;
}

}  // namespace Mof

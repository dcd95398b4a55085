#include "ObjectManager/Mof/Compiler.h"

#include "ObjectManager/Mof/DeclarationChecker.h"
#include "ObjectManager/Mof/FileReader.h"
#include "ObjectManager/Mof/Reporter.h"

namespace Mof {

Compilation compile(const std::vector<std::string>& paths, const CompilerOptions& options) {
    Compilation compilation;
    Reporter reporter(compilation, options.mostErrors);
    try {
        readFiles(paths, options, compilation, reporter);
        if (!compilation.hasErrors())
            checkDeclarations(compilation, reporter);
    } catch (const TooManyErrors&) {
        // All that a person needs to know is reported.
    }
    return compilation;
}

}  // namespace Mof

#include "ObjectManager/Mof/Compilation.h"

#include <algorithm>

namespace Mof {

bool Compilation::hasErrors() const noexcept {
    return std::any_of(diagnostics.begin(), diagnostics.end(), [](const Diagnostic& diagnostic) {
        return diagnostic.severity == Severity::kError;
    });
}

}  // namespace Mof

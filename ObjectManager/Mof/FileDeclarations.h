#pragma once

#include <string>
#include <vector>

#include "ObjectManager/Mof/Declarations.h"

namespace Mof {

/// A `#pragma include`.
struct Include {
    std::string path;  ///< as it is written, with `/` between folders
    Position position;
};

/// What one file declares, in its order.
struct FileDeclarations {
    std::vector<Include> includes;
    std::vector<QualifierDeclaration> qualifiers;
    std::vector<ClassDeclaration> classes;
};

}  // namespace Mof

#pragma once

#include <cstddef>
#include <string>

#include "ObjectManager/Mof/SourceText.h"

namespace Mof {

enum class Severity { kWarning, kError };

/// Something that a person should mend in a file.
struct Diagnostic {
    Severity severity = Severity::kError;
    std::string file;
    LineAndColumn place;  ///< line 0 for a file that could not be read
    std::string message;
    std::string sourceLine;   ///< the line that it is about, empty where there is none; of a long
                              ///< line, what surrounds the place
    std::size_t skipped = 0;  ///< how many characters of the line stand in front of sourceLine
    bool continues = false;   ///< whether more of the line stands behind sourceLine

    /// As it is shown, with the line and a caret below the place, and a newline at the end. What
    /// would control a terminal is shown as a question mark, and "..." stands for what is left out.
    ///
    ///     schema/CIM_Foo.mof:12:8: error: expected a property or method name, found ";"
    ///         uint8 ;
    ///               ^
    [[nodiscard]] std::string toString() const;
};

}  // namespace Mof

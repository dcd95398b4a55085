#pragma once

#include <cstddef>

#include "ObjectManager/Mof/FileDeclarations.h"
#include "ObjectManager/Mof/ParserContext.h"
#include "ObjectManager/Mof/SourceText.h"

namespace Mof {

/// Reads what one text declares. Faults are reported, and what they spoil is left out; the rest is
/// read nevertheless. `file` is the number of the text, for positions.
[[nodiscard]] FileDeclarations parseFile(const SourceText& source, std::size_t file,
                                         const ReportFault& onError, const ReportFault& onWarning);

}  // namespace Mof

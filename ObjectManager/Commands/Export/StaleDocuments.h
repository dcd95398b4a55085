#pragma once

#include <cstddef>

#include "ObjectManager/Commands/Export/OutputDirectory.h"
#include "ObjectManager/Repository/CimNamespace.h"

namespace Commands {

/// Removes from `directory` the documents and pages of classes that `nameSpace` does not have. A
/// document of a class whose name is now written in another case goes, too, if the one of the
/// present name is there.
///
/// A document or page is a regular file that is named after a class and says near its beginning
/// that it describes that class; every other file stays, and so do directories and what is in them.
/// Returns how many files were removed.
/// Errors: std::system_error that names the file or the directory.
std::size_t removeStaleDocuments(const OutputDirectory& directory,
                                 const Repository::CimNamespace& nameSpace);

}  // namespace Commands

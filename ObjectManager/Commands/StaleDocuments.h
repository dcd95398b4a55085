#pragma once

#include <cstddef>

#include "ObjectManager/Commands/OutputFolder.h"
#include "ObjectManager/Repository/CimNamespace.h"

namespace Commands {

/// Removes from `folder` the documents of classes that `nameSpace` does not have, not even in
/// another case. A document is a file proper that is named after a class and tells near its begin
/// that it describes that class; every other file stays, and so do folders and what is in them.
/// Returns how many files were removed.
/// Errors: std::system_error that names the file or the folder.
std::size_t removeStaleDocuments(const OutputFolder& folder, const CimNamespace& nameSpace);

}  // namespace Commands

#pragma once

#include <cstddef>

#include "ObjectManager/Commands/OutputFolder.h"
#include "ObjectManager/Repository/CimNamespace.h"

namespace Commands {

/// Removes from `folder` the documents of classes that `nameSpace` does not have, and those under a
/// name that a class had in another case, unless it is the only one of them that the folder lists.
/// A document is a file proper that is named after a class and tells near its begin that it
/// describes that class; every other file stays, and so do folders and what is in them.
/// Returns how many files were removed.
/// Errors: std::system_error that names the file or the folder.
std::size_t removeStaleDocuments(const OutputFolder& folder,
                                 const Repository::CimNamespace& nameSpace);

/// Removes from `folder` the files that a process began and did not live to finish: those that are
/// named so (see isAbandonedName), and no other. Returns how many were removed.
/// Errors: std::system_error that names the file or the folder.
std::size_t removeUnfinishedFiles(const OutputFolder& folder);

}  // namespace Commands

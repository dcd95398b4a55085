#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "ObjectManager/Base/FileList.h"
#include "ObjectManager/Base/OutputDirectory.h"
#include "ObjectManager/Repository/CimNamespace.h"

// The list of the documents that exports have put into a directory (Base::FileList).

namespace Commands {

/// The name of the file that holds it.
inline constexpr std::string_view kDocumentListFile = ".tesk-export";

/// The list of a directory.
[[nodiscard]] Base::FileList readDocumentList(const Base::OutputDirectory& directory);

/// A list without any document.
[[nodiscard]] Base::FileList emptyDocumentList();

/// Removes the listed documents of classes that `nameSpace` does not have. A document of a class
/// whose name is now written in another case goes, too, if the one of the present name is there.
/// Returns how many files were removed.
/// Errors: those of Base::FileList.
std::size_t removeStaleDocuments(Base::FileList& list, const Base::OutputDirectory& directory,
                                 const Repository::CimNamespace& nameSpace);

/// The name of the class that a document or page of this name describes; empty if it is not one of
/// these.
[[nodiscard]] std::string_view classNameOf(std::string_view document) noexcept;

}  // namespace Commands

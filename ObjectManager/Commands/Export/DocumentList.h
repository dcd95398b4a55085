#pragma once

#include <cstddef>
#include <set>
#include <string>
#include <string_view>

#include "ObjectManager/Commands/Export/OutputDirectory.h"
#include "ObjectManager/Repository/CimNamespace.h"

namespace Commands {

/// The documents and pages that exports have put into a directory, kept in a file of that
/// directory: these, and no other files, may be removed when their classes are gone. A document
/// that was changed by hand is one of them, since the next export would replace it as well.
///
/// Errors: std::system_error that names the file or the directory.
///
/// Thread safety: belongs to one thread.
class DocumentList {
  public:
    /// The name of the file.
    static constexpr std::string_view kFile = ".tesk-export";

    /// Reads the list of a directory; an empty one where there is none, or fault() says why not.
    [[nodiscard]] static DocumentList read(const OutputDirectory& directory);

    /// Why the list cannot be used; empty when nothing is wrong. Such a list is empty.
    [[nodiscard]] const std::string& fault() const noexcept { return fault_; }

    /// Lists a document, unless its name is none that a list can hold.
    void add(const std::string& document);

    /// Removes the listed documents of classes that `nameSpace` does not have, from the directory
    /// and from the list. A document of a class whose name is now written in another case goes,
    /// too, if the one of the present name is there. What is no regular file stays in the
    /// directory. Returns how many files were removed.
    std::size_t removeStale(const OutputDirectory& directory,
                            const Repository::CimNamespace& nameSpace);

    /// Makes this the list of a directory.
    void write(const OutputDirectory& directory) const;

  private:
    std::set<std::string> documents_;
    std::string fault_;
};

/// The name of the class that a document or page of this name describes; empty if it is not one of
/// these.
[[nodiscard]] std::string_view classNameOf(std::string_view document) noexcept;

}  // namespace Commands

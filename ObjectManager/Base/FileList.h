#pragma once

#include <cstddef>
#include <functional>
#include <set>
#include <string>
#include <string_view>

#include "ObjectManager/Base/OutputDirectory.h"

namespace Base {

/// The files that a command has put into a directory, kept in a file of that directory: these, and
/// no other files, may be removed when they are not made any more. A file that was changed by hand
/// is one of them, since the command would replace it as well.
///
/// Errors: std::system_error that names the file or the directory.
///
/// Thread safety: belongs to one thread.
class FileList {
  public:
    /// What distinguishes the list of a command.
    struct Kind {
        std::string file;     ///< the name of the file that holds the list
        std::string heading;  ///< its first line, a comment for people: "# ...\n"
        std::string content;  ///< what is listed, with an article: "a document"

        /// Whether a file of that name may be one of those that the command makes.
        bool (*isOfKind)(std::string_view name);
    };

    /// What a listed file is called now; empty for one that is not made any more.
    using PresentName = std::function<std::string(const std::string& file)>;

    /// An empty list. `kind` must outlive it.
    explicit FileList(const Kind& kind) : kind_(&kind) {}

    /// Reads the list of a directory; an empty one where there is none, or fault() says why not.
    [[nodiscard]] static FileList read(const OutputDirectory& directory, const Kind& kind);

    /// Why the list cannot be used; empty when nothing is wrong. Such a list is empty.
    [[nodiscard]] const std::string& fault() const noexcept { return fault_; }

    /// Lists a file, unless its name is none that a list can hold.
    void add(const std::string& file);

    /// Removes the listed files that are not made any more, from the directory and from the list. A
    /// file whose present name differs in case goes, too, if the one of the present name is there.
    /// What is no regular file stays in the directory. Returns how many files were removed.
    std::size_t removeStale(const OutputDirectory& directory, const PresentName& presentName);

    /// Makes this the list of a directory.
    void write(const OutputDirectory& directory) const;

  private:
    [[nodiscard]] bool mayHold(std::string_view name) const;

    const Kind* kind_;
    std::set<std::string> files_;
    std::string fault_;
};

}  // namespace Base

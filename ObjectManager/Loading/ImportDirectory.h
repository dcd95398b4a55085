#pragma once

#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Base/OutputDirectory.h"
#include "ObjectManager/Loading/ImportFiles.h"

namespace Loading {

/// What is to be written of a namespace.
struct ImportedNamespace {
    std::string name;
    std::vector<ImportFile> files;
};

/// The file, in each directory of a namespace, that lists what imports have written there.
inline constexpr std::string_view kImportListFile = ".tesk-import";

struct ImportOptions {
    /// Whether files that are not part of this import are removed from the directories of its
    /// namespaces, as far as imports have written them, and the temporary files of killed
    /// processes.
    bool prune = false;

    /// Called before each file is written; work stops when it returns true. No file has changed
    /// then.
    std::function<bool()> isStopped = [] { return false; };
};

/// What was written.
struct ImportResult {
    std::size_t written = 0;
    std::size_t unchanged = 0;  ///< files that keep their time stamps
    std::size_t removed = 0;
    std::size_t bytes = 0;  ///< of the files that were written or unchanged

    /// Lists of files that cannot be read, so that nothing was listed or removed there, and why.
    std::vector<std::string> failures;

    bool isStopped = false;
};

/// Writes the files of each namespace into a directory of `output` that is named after it:
/// root/cimv2/CIM_Foo.mof. All of them are written under temporary names first, and get their names
/// when nothing is left that takes time or room; the main files last. So a process that ends before
/// leaves the directory as it was, and only a reader that reads at that very moment, or a machine
/// that stops then, can see files of two imports together.
///
/// Errors: TeskBaseException when the name of a namespace cannot be a path, or is that of another
/// namespace or of a file of the import, before anything is written; std::system_error when a
/// directory or a file cannot be written, or another export or import is at work there.
[[nodiscard]] ImportResult writeImport(const std::vector<ImportedNamespace>& namespaces,
                                       const Base::OutputDirectory& output,
                                       const ImportOptions& options);

}  // namespace Loading

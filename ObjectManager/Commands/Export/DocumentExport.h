#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Base/OutputDirectory.h"
#include "ObjectManager/Commands/Export/ClassSelection.h"
#include "ObjectManager/Host/MemoryClient.h"

namespace Commands {

/// The page that lists all classes, and what it searches, in the output directory. The caller
/// writes them.
constexpr std::string_view kIndexFile = "index.html";
constexpr std::string_view kSearchFile = "search.js";

/// The page of a class has the name of the class and this.
constexpr const char* kPageExtension = ".html";

struct DocumentExportOptions {
    /// How many documents are made at once.
    unsigned jobs = 1;

    /// Whether the documents of classes that are gone are removed from the directories of the
    /// selected namespaces (see DocumentList.h), and the temporary files of killed processes from
    /// these and, if it is locked, from the output directory. It looks at whole namespaces, also
    /// where only some classes of them are selected.
    bool prune = false;

    /// Called before each document; work stops when it returns true. In any thread.
    std::function<bool()> isStopped = [] { return false; };

    /// Called after each document. In any thread.
    std::function<void()> onDocumentDone = [] {};

    /// Puts the pages of classes into the directory of their namespace; none are written without
    /// it. Called when the documents are there, before stale files are removed; not after a stop.
    std::function<void(const ClassSelection&, const Base::OutputDirectory&)> exportPages = {};
};

/// What was exported.
struct DocumentExportResult {
    std::size_t namespaces = 0;
    std::size_t classes = 0;    ///< that were selected
    std::size_t documents = 0;  ///< that were to be written: two a class
    std::size_t written = 0;
    std::size_t unchanged = 0;
    std::size_t removed = 0;  ///< files of either kind
    std::size_t bytes = 0;    ///< of the documents that were written or unchanged
    double seconds = 0;
    /// The documents that could not be made, and why: "root/cimv2:CIM_Foo: CIM_Foo.xsd ...", and
    /// the lists of documents that could not be read; in ascending order.
    std::vector<std::string> failures;
    bool isStopped = false;  ///< some documents are missing because work was stopped
};

/// Puts both documents of each selected class, as `client` gets them, into a directory of `output`
/// that is named after the namespace: root/cimv2/CIM_Foo.wsdl and .xsd. A document that cannot be
/// made is a failure in the result, and the others are written.
/// Errors: TeskBaseException when a namespace's name cannot be a path, or is that of a file of the
/// export, before anything is written; std::system_error when a directory or a file cannot be
/// written, or another export or import is at work in it; the export ends then.
[[nodiscard]] DocumentExportResult exportDocuments(const std::vector<ClassSelection>& selections,
                                                   const Host::MemoryClient& client,
                                                   const Base::OutputDirectory& output,
                                                   const DocumentExportOptions& options);

/// How many documents exportDocuments would write.
[[nodiscard]] std::size_t countDocuments(const std::vector<ClassSelection>& selections) noexcept;

/// The failures, a line each.
[[nodiscard]] std::string failuresText(const DocumentExportResult& result);

/// One line, such as "1,438 classes in 1 namespace, 2,876 documents, 60.1 MB, 1.52 s: 10 written,
/// 2,866 unchanged, 0 removed".
[[nodiscard]] std::string summaryText(const DocumentExportResult& result);

}  // namespace Commands

#include "ObjectManager/Commands/Export/DocumentExport.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <iterator>
#include <mutex>
#include <string_view>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/DocumentRequest.h"
#include "ObjectManager/Commands/Export/DocumentList.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

using Base::OutputDirectory;

constexpr const char* kExtensions[] = {".wsdl", ".xsd"};
constexpr std::size_t kDocumentsOfAClass = std::size(kExtensions);

[[noreturn]] void refuse(const Repository::CimNamespace& nameSpace, const std::string& reason) {
    throw TeskBaseException("Commands::exportDocuments",
                            TSKString("the namespace " + Base::quoted(nameSpace.name()) +
                                      " cannot be the path of a directory: " + reason),
                            CIM_ERR_INVALID_NAMESPACE);
}

// Names are compared without regard to case, as some file systems do.
bool isFileOfExport(const OutputDirectory& output, const std::string& directory, bool isAtTheTop) {
    return (isAtTheTop && (Base::equalsIgnoringCase(directory, kIndexFile) ||
                           Base::equalsIgnoringCase(directory, kSearchFile))) ||
           Base::equalsIgnoringCase(directory, kDocumentListFile) ||
           output.isTemporaryName(Base::lowerCase(directory));
}

bool hasDocument(const std::vector<ClassSelection>& selections, std::string_view nameSpace,
                 const std::string& document) {
    const std::string lower = Base::lowerCase(document);
    const TSKString className(classNameOf(lower));
    return !className.isEmpty() &&
           std::ranges::any_of(selections, [&](const ClassSelection& selection) {
               return Base::equalsIgnoringCase(selection.nameSpace->name(), nameSpace) &&
                      !selection.nameSpace->findClass(className).isNull();
           });
}

void requireDirectoryNames(const std::vector<ClassSelection>& selections,
                           const Repository::CimNamespace& nameSpace,
                           const OutputDirectory& output) {
    std::string above;
    for (const std::string& directory : OutputDirectory::namesIn(nameSpace.name())) {
        const std::string_view fault = OutputDirectory::validateName(directory);
        if (!fault.empty())
            refuse(nameSpace, "a name in it " + std::string(fault));
        if (isFileOfExport(output, directory, above.empty()))
            refuse(nameSpace, "the export has a file " + Base::quoted(directory));
        if (hasDocument(selections, above, directory))
            refuse(nameSpace, Base::quoted(directory) + " is a document of the namespace " +
                                  Base::quoted(above));
        above += (above.empty() ? "" : "/") + directory;
    }
}

// Exports in several threads, and counts what they have done.
class Exporter {
  public:
    Exporter(const Host::MemoryClient& client, const DocumentExportOptions& options)
        : client_(client), options_(options) {}

    void exportAll(const ClassSelection& selection, const OutputDirectory& directory) {
        // Listed before they are written, so that none is forgotten when the process is killed. A
        // list that cannot be read stays as it is, so that nothing in it is forgotten either.
        Base::FileList list = readDocumentList(directory);
        const bool isListed = list.fault().empty();
        if (isListed) {
            addDocuments(selection, list);
            list.write(directory);
        } else {
            failures_.push_back(
                (directory.path() / kDocumentListFile).string() +
                " cannot be read, so no document is listed or removed there: " + list.fault());
        }
        workInParallel(selection.classes.size() * kDocumentsOfAClass, options_.jobs,
                       [&](std::size_t number) {
                           if (isStopped())
                               return;
                           exportDocument(*selection.nameSpace,
                                          *selection.classes[number / kDocumentsOfAClass],
                                          kExtensions[number % kDocumentsOfAClass], directory);
                           options_.onDocumentDone();
                       });
        if (options_.exportPages && !isStopped())
            options_.exportPages(selection, directory);
        if (!isStopped() && options_.prune) {
            removed_ += directory.removeUnfinishedFiles();
            if (isListed) {
                removed_ += removeStaleDocuments(list, directory, *selection.nameSpace);
                list.write(directory);
            }
        }
    }

    // The index page is written there later, by the same class.
    void pruneTop(const OutputDirectory& output) {
        if (options_.prune && !isStopped())
            removed_ += output.removeUnfinishedFiles();
    }

    // Once stopped, always stopped.
    [[nodiscard]] bool isStopped() {
        if (!isStopped_ && options_.isStopped())
            isStopped_ = true;
        return isStopped_;
    }

    void takeResult(DocumentExportResult& result) {
        result.written = written_;
        result.unchanged = unchanged_;
        result.removed = removed_;
        result.bytes = bytes_;
        result.isStopped = isStopped_;
        std::sort(failures_.begin(), failures_.end());
        result.failures = std::move(failures_);
    }

  private:
    void addDocuments(const ClassSelection& selection, Base::FileList& list) const {
        for (const Repository::CimClass* cimClass : selection.classes) {
            for (const char* const extension : kExtensions)
                list.add(std::string(cimClass->name() + extension));
            if (options_.exportPages)
                list.add(std::string(cimClass->name() + kPageExtension));
        }
    }

    void exportDocument(const Repository::CimNamespace& nameSpace,
                        const Repository::CimClass& cimClass, const char* extension,
                        const OutputDirectory& directory) {
        const TSKString file = cimClass.name() + extension;
        const std::string_view fault = OutputDirectory::validateName(file);
        if (!fault.empty()) {
            addFailure(nameSpace, cimClass, std::string(file) + " " + std::string(fault));
            return;
        }
        const RequestedDocument document = requestDocument(client_, nameSpace, file);
        if (!document.response) {
            addFailure(nameSpace, cimClass, document.failure);
            return;
        }
        const std::string_view content = document.response->body();
        const OutputDirectory::Outcome outcome = directory.put(file, content);
        ++(outcome == OutputDirectory::Outcome::kWritten ? written_ : unchanged_);
        bytes_ += content.size();
    }

    void addFailure(const Repository::CimNamespace& nameSpace, const Repository::CimClass& cimClass,
                    const std::string& reason) {
        const std::lock_guard lock(mutex_);
        failures_.push_back(std::string(nameSpace.name()) + ":" + std::string(cimClass.name()) +
                            ": " + reason);
    }

    const Host::MemoryClient& client_;
    const DocumentExportOptions& options_;
    std::atomic<std::size_t> written_ = 0;
    std::atomic<std::size_t> unchanged_ = 0;
    std::atomic<std::size_t> bytes_ = 0;
    std::atomic<bool> isStopped_ = false;
    std::size_t removed_ = 0;
    std::mutex mutex_;
    std::vector<std::string> failures_;  // guarded by mutex_
};

}  // namespace

DocumentExportResult exportDocuments(const std::vector<ClassSelection>& selections,
                                     const Host::MemoryClient& client,
                                     const Base::OutputDirectory& output,
                                     const DocumentExportOptions& options) {
    const auto start = std::chrono::steady_clock::now();
    for (const ClassSelection& selection : selections)
        requireDirectoryNames(selections, *selection.nameSpace, output);
    DocumentExportResult result;
    result.namespaces = selections.size();
    result.documents = countDocuments(selections);
    result.classes = result.documents / kDocumentsOfAClass;
    Exporter exporter(client, options);
    for (const ClassSelection& selection : selections) {
        if (exporter.isStopped())
            break;
        OutputDirectory directory = output.createPath(selection.nameSpace->name());
        directory.lock();
        exporter.exportAll(selection, directory);
    }
    exporter.pruneTop(output);
    exporter.takeResult(result);
    result.seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    return result;
}

std::size_t countDocuments(const std::vector<ClassSelection>& selections) noexcept {
    std::size_t classes = 0;
    for (const ClassSelection& selection : selections)
        classes += selection.classes.size();
    return classes * kDocumentsOfAClass;
}

std::string failuresText(const DocumentExportResult& result) {
    std::string text;
    for (const std::string& failure : result.failures)
        text += failure + "\n";
    return text;
}

std::string summaryText(const DocumentExportResult& result) {
    return Base::counted(result.classes, "class", "classes") + " in " +
           Base::counted(result.namespaces, "namespace", "namespaces") + ", " +
           Base::counted(result.written + result.unchanged, "document", "documents") + ", " +
           Base::bytesText(result.bytes) + ", " + Base::secondsText(result.seconds) + ": " +
           Base::withSeparators(result.written) + " written, " +
           Base::withSeparators(result.unchanged) + " unchanged, " +
           Base::withSeparators(result.removed) + " removed\n";
}

}  // namespace Commands

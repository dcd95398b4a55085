#include "ObjectManager/Commands/DocumentExport.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <iterator>
#include <mutex>
#include <string_view>
#include <utility>

#include "ObjectManager/Commands/DocumentRequest.h"
#include "ObjectManager/Commands/FileName.h"
#include "ObjectManager/Commands/NumberText.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "ObjectManager/Commands/StaleDocuments.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

constexpr const char* kExtensions[] = {".wsdl", ".xsd"};
constexpr std::size_t kDocumentsOfAClass = std::size(kExtensions);

std::vector<std::string> foldersOf(std::string_view nameSpace) {
    std::vector<std::string> folders;
    while (true) {
        const std::size_t end = nameSpace.find('/');
        folders.emplace_back(nameSpace.substr(0, end));
        if (end == std::string_view::npos)
            return folders;
        nameSpace.remove_prefix(end + 1);
    }
}

void requireFolderNames(const Repository::CimNamespace& nameSpace) {
    for (const std::string& folder : foldersOf(nameSpace.name())) {
        const std::string_view fault = faultOfFileName(folder);
        if (fault.empty())
            continue;
        const std::string message = "the namespace \"" + std::string(nameSpace.name()) +
                                    "\" cannot be a folder: a name in it " + std::string(fault);
        throw TeskBaseException("exportDocuments", TSKString(message), CIM_ERR_INVALID_NAMESPACE);
    }
}

OutputFolder createFolder(const OutputFolder& output, const Repository::CimNamespace& nameSpace) {
    const std::vector<std::string> folders = foldersOf(nameSpace.name());
    OutputFolder folder = output.createBelow(folders.front());
    for (auto below = folders.begin() + 1; below != folders.end(); ++below)
        folder = folder.createBelow(*below);
    return folder;
}

// Counts what the threads have done.
class Exporter {
  public:
    Exporter(const Host::MemoryClient& client, const DocumentExportOptions& options)
        : client_(client), options_(options) {}

    void exportAll(const ClassSelection& selection, const OutputFolder& folder) {
        workInParallel(selection.classes.size() * kDocumentsOfAClass, options_.jobs,
                       [&](std::size_t number) {
                           if (isStopped())
                               return;
                           exportDocument(*selection.nameSpace,
                                          *selection.classes[number / kDocumentsOfAClass],
                                          kExtensions[number % kDocumentsOfAClass], folder);
                           options_.onDocumentDone();
                       });
        if (options_.prune && !isStopped()) {
            removed_ += removeStaleDocuments(folder, *selection.nameSpace);
            removed_ += removeUnfinishedFiles(folder);
        }
    }

    // What stands beside the namespaces is written elsewhere, but by the same means.
    void pruneTop(const OutputFolder& output) {
        if (options_.prune && !isStopped())
            removed_ += removeUnfinishedFiles(output);
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
    void exportDocument(const Repository::CimNamespace& nameSpace,
                        const Repository::CimClass& cimClass, const char* extension,
                        const OutputFolder& folder) {
        const TSKString file = cimClass.name() + extension;
        const std::string_view fault = faultOfFileName(file);
        if (!fault.empty()) {
            addFailure(nameSpace, cimClass, std::string(file) + " " + std::string(fault));
            return;
        }
        const RequestedDocument document = requestDocument(client_, nameSpace, file);
        if (!document.answer) {
            addFailure(nameSpace, cimClass, document.failure);
            return;
        }
        const std::string_view content = document.answer->body();
        const OutputFolder::Outcome outcome = folder.put(file, content);
        ++(outcome == OutputFolder::Outcome::kWritten ? written_ : unchanged_);
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
                                     const Host::MemoryClient& client, const OutputFolder& output,
                                     const DocumentExportOptions& options) {
    const auto start = std::chrono::steady_clock::now();
    for (const ClassSelection& selection : selections)
        requireFolderNames(*selection.nameSpace);
    DocumentExportResult result;
    result.namespaces = selections.size();
    result.documents = countDocuments(selections);
    result.classes = result.documents / kDocumentsOfAClass;
    Exporter exporter(client, options);
    for (const ClassSelection& selection : selections) {
        if (exporter.isStopped())
            break;
        exporter.exportAll(selection, createFolder(output, *selection.nameSpace));
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
    return counted(result.classes, "class", "classes") + " in " +
           counted(result.namespaces, "namespace", "namespaces") + ", " +
           counted(result.written + result.unchanged, "document", "documents") + ", " +
           bytesText(result.bytes) + ", " + secondsText(result.seconds) + ": " +
           groupedDigits(result.written) + " written, " + groupedDigits(result.unchanged) +
           " unchanged, " + groupedDigits(result.removed) + " removed\n";
}

}  // namespace Commands

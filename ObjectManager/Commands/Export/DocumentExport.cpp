#include "ObjectManager/Commands/Export/DocumentExport.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <iterator>
#include <mutex>
#include <string_view>
#include <utility>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/DocumentRequest.h"
#include "ObjectManager/Commands/Export/StaleDocuments.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

constexpr const char* kExtensions[] = {".wsdl", ".xsd"};
constexpr std::size_t kDocumentsOfAClass = std::size(kExtensions);

std::vector<std::string> directoriesOf(std::string_view nameSpace) {
    std::vector<std::string> directories;
    while (true) {
        const std::size_t end = nameSpace.find('/');
        directories.emplace_back(nameSpace.substr(0, end));
        if (end == std::string_view::npos)
            return directories;
        nameSpace.remove_prefix(end + 1);
    }
}

void requireDirectoryNames(const Repository::CimNamespace& nameSpace) {
    for (const std::string& directory : directoriesOf(nameSpace.name())) {
        const std::string_view fault = OutputDirectory::validateName(directory);
        if (fault.empty())
            continue;
        const std::string message = "the namespace \"" + std::string(nameSpace.name()) +
                                    "\" cannot be the path of a directory: a name in it " +
                                    std::string(fault);
        throw TeskBaseException("Commands::exportDocuments", TSKString(message),
                                CIM_ERR_INVALID_NAMESPACE);
    }
}

OutputDirectory createDirectory(const OutputDirectory& output,
                                const Repository::CimNamespace& nameSpace) {
    const std::vector<std::string> directories = directoriesOf(nameSpace.name());
    OutputDirectory directory = output.createBelow(directories.front());
    for (auto below = directories.begin() + 1; below != directories.end(); ++below)
        directory = directory.createBelow(*below);
    return directory;
}

// Exports in several threads, and counts what they have done.
class Exporter {
  public:
    Exporter(const Host::MemoryClient& client, const DocumentExportOptions& options)
        : client_(client), options_(options) {}

    void exportAll(const ClassSelection& selection, const OutputDirectory& directory) {
        workInParallel(selection.classes.size() * kDocumentsOfAClass, options_.jobs,
                       [&](std::size_t number) {
                           if (isStopped())
                               return;
                           exportDocument(*selection.nameSpace,
                                          *selection.classes[number / kDocumentsOfAClass],
                                          kExtensions[number % kDocumentsOfAClass], directory);
                           options_.onDocumentDone();
                       });
        if (!isStopped())
            options_.onNamespaceDone(selection, directory);
        if (!isStopped() && options_.prune) {
            removed_ += removeStaleDocuments(directory, *selection.nameSpace);
            removed_ += directory.removeUnfinishedFiles();
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
                                     const OutputDirectory& output,
                                     const DocumentExportOptions& options) {
    const auto start = std::chrono::steady_clock::now();
    for (const ClassSelection& selection : selections)
        requireDirectoryNames(*selection.nameSpace);
    DocumentExportResult result;
    result.namespaces = selections.size();
    result.documents = countDocuments(selections);
    result.classes = result.documents / kDocumentsOfAClass;
    Exporter exporter(client, options);
    for (const ClassSelection& selection : selections) {
        if (exporter.isStopped())
            break;
        exporter.exportAll(selection, createDirectory(output, *selection.nameSpace));
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

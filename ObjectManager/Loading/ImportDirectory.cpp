#include "ObjectManager/Loading/ImportDirectory.h"

#include <deque>
#include <map>
#include <memory>
#include <set>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/FileList.h"
#include "ObjectManager/Base/Text.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Loading {

namespace {

using Base::OutputDirectory;

const Base::FileList::Kind& kindOfList() {
    static const Base::FileList::Kind kind = {
        .file = std::string(kImportListFile),
        .heading =
            "# The files that \"tesk import\" has written here, of which --prune removes "
            "those that are not imported any more.\n",
        .content = "a MOF file",
        .isOfKind = [](std::string_view name) {
            return name.ends_with(".mof") && name.size() > std::string_view(".mof").size();
        }};
    return kind;
}

[[noreturn]] void refuse(const ImportedNamespace& nameSpace, const std::string& reason) {
    throw TeskBaseException("Loading::writeImport",
                            TSKString("the namespace " + Base::quoted(nameSpace.name) +
                                      " cannot be the path of a directory: " + reason),
                            CIM_ERR_INVALID_NAMESPACE);
}

// Paths are compared without regard to case, as some file systems do.
void requirePaths(const std::vector<ImportedNamespace>& namespaces, const OutputDirectory& output) {
    std::set<std::string> files;
    std::set<std::string> names;
    for (const ImportedNamespace& nameSpace : namespaces) {
        const std::string lowerName = Base::lowerCase(nameSpace.name);
        if (!names.insert(lowerName).second)
            refuse(nameSpace, "there are two of that name");
        for (const ImportFile& file : nameSpace.files)
            files.insert(lowerName + "/" + Base::lowerCase(file.name));
    }
    for (const ImportedNamespace& nameSpace : namespaces) {
        std::string path;
        for (const std::string& name : OutputDirectory::namesIn(nameSpace.name)) {
            const std::string_view fault = OutputDirectory::validateName(name);
            if (!fault.empty())
                refuse(nameSpace, "a name in it " + std::string(fault));
            const std::string lowerName = Base::lowerCase(name);
            path += (path.empty() ? "" : "/") + lowerName;
            if (lowerName == kImportListFile || output.isTemporaryName(lowerName) ||
                files.contains(path))
                refuse(nameSpace, "the import has a file " + Base::quoted(name));
        }
    }
}

// The directory of a namespace, with the files that wait for their names.
class Target {
  public:
    Target(OutputDirectory directory, ImportResult& result)
        : directory_(std::move(directory)), result_(result) {
        directory_.lock();
        list_ = Base::FileList::read(directory_, kindOfList());
        if (!list_.fault().empty()) {
            result_.failures.push_back(
                (directory_.path() / kImportListFile).string() +
                " cannot be read, so no file is listed or removed there: " + list_.fault());
        }
    }

    void stage(const ImportFile& file) {
        presentNames_.emplace(Base::lowerCase(file.name), file.name);
        list_.add(file.name);
        if (std::unique_ptr<OutputDirectory::StagedFile> staged =
                directory_.stage(file.name, file.content))
            staged_.push_back(std::move(staged));
        else
            ++result_.unchanged;
        result_.bytes += file.content.size();
    }

    // Files are listed before they are written, so that none is forgotten when the process is
    // killed.
    void publish() {
        writeList();
        for (const std::unique_ptr<OutputDirectory::StagedFile>& file : staged_)
            file->publish();
        result_.written += staged_.size();
        staged_.clear();
    }

    void prune() {
        result_.removed += directory_.removeUnfinishedFiles();
        result_.removed += list_.removeStale(directory_, [this](const std::string& file) {
            const auto present = presentNames_.find(Base::lowerCase(file));
            return present == presentNames_.end() ? std::string() : present->second;
        });
        writeList();
    }

  private:
    // One that cannot be read stays as it is, so that nothing in it is forgotten.
    void writeList() const {
        if (list_.fault().empty())
            list_.write(directory_);
    }

    OutputDirectory directory_;
    ImportResult& result_;
    Base::FileList list_{kindOfList()};
    std::map<std::string, std::string> presentNames_;  // by the names in lower case
    std::vector<std::unique_ptr<OutputDirectory::StagedFile>> staged_;
};

}  // namespace

ImportResult writeImport(const std::vector<ImportedNamespace>& namespaces,
                         const OutputDirectory& output, const ImportOptions& options) {
    requirePaths(namespaces, output);
    ImportResult result;
    std::deque<Target> targets;
    for (const ImportedNamespace& nameSpace : namespaces) {
        Target& target = targets.emplace_back(output.createPath(nameSpace.name), result);
        for (const ImportFile& file : nameSpace.files) {
            if (options.isStopped()) {
                result.isStopped = true;
                return result;
            }
            target.stage(file);
        }
    }
    for (Target& target : targets)
        target.publish();
    for (Target& target : targets) {
        if (options.prune)
            target.prune();
    }
    return result;
}

}  // namespace Loading

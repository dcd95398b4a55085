#include "ObjectManager/Commands/Export/DocumentList.h"

#include <algorithm>
#include <iterator>
#include <system_error>
#include <vector>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Files.h"

namespace Commands {

namespace {

constexpr std::string_view kHeading =
    "# The documents that \"tesk export\" has written here, of which --prune removes those of "
    "classes that are gone.\n";

constexpr std::size_t kMaxListSize = std::size_t{256} << 20U;

// A name that stays in the directory, on a line of its own.
bool mayBeListed(std::string_view name) noexcept {
    return !classNameOf(name).empty() && OutputDirectory::validateName(name).empty() &&
           std::ranges::none_of(name, Base::isControl);
}

// Whether `document`, one of the sorted `files`, is not that of a class as it is named now. Where
// the class is there under a name in another case, the document is stale only beside the one of
// that name: a file system that ignores case lists one file, and that is the present document.
bool isStale(const std::vector<std::string>& files, const std::string& document,
             const Repository::CimNamespace& nameSpace) {
    const std::string_view className = classNameOf(document);
    const TSKSmrPtr<Repository::CimClass> cimClass = nameSpace.findClass(TSKString(className));
    if (!cimClass)
        return true;
    const std::string present = std::string(cimClass->name()) + document.substr(className.size());
    return present != document && std::ranges::binary_search(files, present);
}

}  // namespace

std::string_view classNameOf(std::string_view document) noexcept {
    for (const std::string_view extension : {".wsdl", ".xsd", ".html"}) {
        if (document.ends_with(extension))
            return document.substr(0, document.size() - extension.size());
    }
    return {};
}

DocumentList DocumentList::read(const OutputDirectory& directory) {
    DocumentList list;
    std::string text;
    try {
        text = directory.contentOf(kFile, kMaxListSize);
    } catch (const std::system_error& error) {
        list.fault_ = Base::readFailure(error);
        return list;
    }
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        if (end == std::string_view::npos || !(line.starts_with('#') || mayBeListed(line))) {
            list.documents_.clear();
            list.fault_ = "it has a line that is no name of a document";
            break;
        }
        if (!line.starts_with('#'))
            list.documents_.emplace(line);
        rest.remove_prefix(end + 1);
    }
    return list;
}

void DocumentList::add(const std::string& document) {
    if (mayBeListed(document))
        documents_.insert(document);
}

std::size_t DocumentList::removeStale(const OutputDirectory& directory,
                                      const Repository::CimNamespace& nameSpace) {
    std::size_t removed = 0;
    const std::vector<std::string> files = directory.files();
    std::erase_if(documents_, [&](const std::string& document) {
        if (!std::ranges::binary_search(files, document))
            return nameSpace.findClass(TSKString(classNameOf(document))).isNull();
        if (!isStale(files, document, nameSpace))
            return false;
        directory.remove(document);
        ++removed;
        return true;
    });
    return removed;
}

void DocumentList::write(const OutputDirectory& directory) const {
    std::string text(kHeading);
    for (const std::string& document : documents_)
        text += document + "\n";
    directory.put(kFile, text);
}

}  // namespace Commands

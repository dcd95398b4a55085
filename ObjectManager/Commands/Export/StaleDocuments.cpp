#include "ObjectManager/Commands/Export/StaleDocuments.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace Commands {

namespace {

// The class that a document, or a page, of this name describes; empty if the name is of neither.
std::string_view classNameOf(std::string_view file) {
    for (const std::string_view extension : {".wsdl", ".xsd", ".html"}) {
        if (file.ends_with(extension))
            return file.substr(0, file.size() - extension.size());
    }
    return {};
}

// Documents declare, in their first element, the namespace that WS-CIM gives to the class, and the
// page of the class names it in its head.
bool describesClass(const OutputDirectory& directory, const std::string& file,
                    std::string_view className) {
    constexpr std::size_t kStartLength = 4096;
    const std::string classNamespace =
        "/wbem/wscim/1/cim-schema/2/" + std::string(className) + "\"";
    return directory.startOf(file, kStartLength).find(classNamespace) != std::string::npos;
}

// Whether `file`, one of the sorted `files`, is not the document of a class as it is named now.
// Where the class is there under a name in another case, `file` is stale only beside the document
// of that name: a file system that ignores case lists one file, and that is the present document.
bool isStale(const std::vector<std::string>& files, const std::string& file,
             std::string_view className, const Repository::CimNamespace& nameSpace) {
    const TSKSmrPtr<Repository::CimClass> cimClass = nameSpace.findClass(TSKString(className));
    if (!cimClass)
        return true;
    const std::string present = std::string(cimClass->name()) + file.substr(className.size());
    return present != file && std::ranges::binary_search(files, present);
}

}  // namespace

std::size_t removeStaleDocuments(const OutputDirectory& directory,
                                 const Repository::CimNamespace& nameSpace) {
    std::size_t removed = 0;
    const std::vector<std::string> files = directory.files();
    for (const std::string& file : files) {
        const std::string_view className = classNameOf(file);
        if (className.empty() || !isStale(files, file, className, nameSpace) ||
            !describesClass(directory, file, className))
            continue;
        directory.remove(file);
        ++removed;
    }
    return removed;
}

}  // namespace Commands

#include "ObjectManager/Commands/StaleDocuments.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

#include "ObjectManager/Commands/TemporaryName.h"

namespace Commands {

namespace {

// The name of the class whose document a file of that name would be; empty for other names.
std::string_view classNameOf(std::string_view file) {
    for (const std::string_view extension : {".wsdl", ".xsd"}) {
        if (file.ends_with(extension))
            return file.substr(0, file.size() - extension.size());
    }
    return {};
}

// Both documents declare, in their first element, the namespace that WS-CIM gives to the class.
bool describesClass(const OutputFolder& folder, const std::string& file,
                    std::string_view className) {
    constexpr std::size_t kHeadLength = 4096;
    const std::string classNamespace =
        "/wbem/wscim/1/cim-schema/2/" + std::string(className) + "\"";
    return folder.head(file, kHeadLength).find(classNamespace) != std::string::npos;
}

// Whether `file`, one of the `files` in ascending order, is not what a class is called now. A class
// that is called so but for the case has given the file up when there is one of its present name,
// too; where names of files ignore case there is but one, and that is the document.
bool isGivenUp(const std::vector<std::string>& files, const std::string& file,
               std::string_view className, const Repository::CimNamespace& nameSpace) {
    const TSKSmrPtr<Repository::CimClass> cimClass = nameSpace.findClass(TSKString(className));
    if (!cimClass)
        return true;
    const std::string present = std::string(cimClass->name()) + file.substr(className.size());
    return present != file && std::binary_search(files.begin(), files.end(), present);
}

}  // namespace

std::size_t removeStaleDocuments(const OutputFolder& folder,
                                 const Repository::CimNamespace& nameSpace) {
    std::size_t removed = 0;
    const std::vector<std::string> files = folder.files();
    for (const std::string& file : files) {
        const std::string_view className = classNameOf(file);
        if (className.empty() || !isGivenUp(files, file, className, nameSpace) ||
            !describesClass(folder, file, className))
            continue;
        folder.remove(file);
        ++removed;
    }
    return removed;
}

std::size_t removeUnfinishedFiles(const OutputFolder& folder) {
    std::size_t removed = 0;
    for (const std::string& file : folder.files()) {
        if (!isAbandonedName(file))
            continue;
        folder.remove(file);
        ++removed;
    }
    return removed;
}

}  // namespace Commands

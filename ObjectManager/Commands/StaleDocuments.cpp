#include "ObjectManager/Commands/StaleDocuments.h"

#include <string>
#include <string_view>

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

}  // namespace

std::size_t removeStaleDocuments(const OutputFolder& folder, const CimNamespace& nameSpace) {
    std::size_t removed = 0;
    for (const std::string& file : folder.files()) {
        const std::string_view className = classNameOf(file);
        if (className.empty() || !nameSpace.findClass(TSKString(className)).isNull() ||
            !describesClass(folder, file, className))
            continue;
        folder.remove(file);
        ++removed;
    }
    return removed;
}

}  // namespace Commands

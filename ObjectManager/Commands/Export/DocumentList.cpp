#include "ObjectManager/Commands/Export/DocumentList.h"

namespace Commands {

namespace {

const Base::FileList::Kind& kindOfDocuments() {
    static const Base::FileList::Kind kind = {
        .file = std::string(kDocumentListFile),
        .heading =
            "# The documents that \"tesk export\" has written here, of which --prune removes those "
            "of classes that are gone.\n",
        .content = "a document",
        .isOfKind = [](std::string_view name) { return !classNameOf(name).empty(); }};
    return kind;
}

}  // namespace

std::string_view classNameOf(std::string_view document) noexcept {
    for (const std::string_view extension : {".wsdl", ".xsd", ".html"}) {
        if (document.ends_with(extension))
            return document.substr(0, document.size() - extension.size());
    }
    return {};
}

Base::FileList emptyDocumentList() {
    return Base::FileList(kindOfDocuments());
}

Base::FileList readDocumentList(const Base::OutputDirectory& directory) {
    return Base::FileList::read(directory, kindOfDocuments());
}

std::size_t removeStaleDocuments(Base::FileList& list, const Base::OutputDirectory& directory,
                                 const Repository::CimNamespace& nameSpace) {
    return list.removeStale(directory, [&](const std::string& document) -> std::string {
        const std::string_view className = classNameOf(document);
        const TSKSmrPtr<Repository::CimClass> cimClass = nameSpace.findClass(TSKString(className));
        if (!cimClass)
            return {};
        return std::string(cimClass->name()) + document.substr(className.size());
    });
}

}  // namespace Commands

#include "ObjectManager/Pages/NamespaceArchive.h"

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Pages/ZipArchive.h"

namespace Pages {

namespace {

// What the documents import, and what that imports in turn, with names for copies.
struct ImportedSchema {
    const char* file;
    const char* address;
};

constexpr ImportedSchema kImportedSchemas[] = {
    {"common.xsd", "http://schemas.dmtf.org/wbem/wscim/1/common.xsd"},
    {"wsman.xsd", "http://schemas.dmtf.org/wbem/wsman/1/wsman.xsd"},
    {"cimbinding.xsd", "http://schemas.dmtf.org/wbem/wsman/1/cimbinding.xsd"},
    {"transfer.xsd", "http://schemas.xmlsoap.org/ws/2004/09/transfer/transfer.xsd"},
    {"enumeration.xsd", "http://schemas.xmlsoap.org/ws/2004/09/enumeration/enumeration.xsd"},
    {"addressing.xsd", "http://schemas.xmlsoap.org/ws/2004/08/addressing"},
    {"xml.xsd", "http://www.w3.org/2001/xml.xsd"},
};

std::string catalog() {
    std::string xml =
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
        "<catalog xmlns=\"urn:oasis:names:tc:entity:xmlns:xml:catalog\">\n";
    for (const ImportedSchema& each : kImportedSchemas)
        xml += "  <uri name=\"" + std::string(each.address) + "\" uri=\"" + each.file + "\"/>\n";
    return xml + "</catalog>\n";
}

std::string readme(const std::string& nameSpace) {
    std::string text =
        "WSDL and XML Schema documents of the CIM classes in " + nameSpace + ".\n\n" +
        R"(The documents import published schemas from the addresses below, where a client with
a network finds them. For a client without one, save each under its name in this directory
and let the client use catalog.xml. With xmllint, for example:

    XML_CATALOG_FILES=catalog.xml xmllint --nonet --noout \
      --schema )" +
        nameSpace + R"(/CLASS.xsd INSTANCE.xml

Some of these schemas import others without an address: add the schemaLocation to them.

)";
    for (const ImportedSchema& each : kImportedSchemas)
        text += std::string(each.file) + "\n    " + each.address + "\n";
    return text;
}

// Encoded, so that whoever unpacks the archive gets no name that leads elsewhere.
std::string fileOf(const std::string& nameSpace, const std::string& document) {
    std::string file = Base::percentEncodedPath(document);
    for (std::size_t slash = file.find('/'); slash != std::string::npos;
         slash = file.find('/', slash))
        file.replace(slash, 1, "%2F");
    return Base::percentEncodedPath(nameSpace) + "/" + file;
}

}  // namespace

void writeNamespaceArchive(const Repository::CimNamespace& nameSpace, const DocumentSource& source,
                           const std::function<void(std::string_view bytes)>& sink) {
    const std::string name(nameSpace.name());
    const std::string directory = "/" + name + "/";
    ZipArchive archive(sink);
    archive.add("README.txt", readme(name));
    archive.add("catalog.xml", catalog());
    for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace.classes()) {
        for (const char* const extension : {".wsdl", ".xsd"}) {
            const std::string document = std::string(cimClass->name()) + extension;
            if (const std::optional<std::string> content = source(directory + document))
                archive.add(fileOf(name, document), *content);
        }
    }
    archive.finish();
}

}  // namespace Pages

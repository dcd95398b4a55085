#include "ObjectManager/CimXml/Requests.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/CimXml/ResponseReader.h"

namespace CimXml {

namespace {

// The first part of a text up to a slash, which is taken from it with the slash.
std::string_view takeSegment(std::string_view& text) noexcept {
    const std::size_t slash = std::min(text.find('/'), text.size());
    const std::string_view segment = text.substr(0, slash);
    text.remove_prefix(std::min(slash + 1, text.size()));
    return segment;
}

bool isSegment(std::string_view text) noexcept {
    return !text.empty() && text.front() != '.' && text.front() != '-' &&
           std::ranges::all_of(text, [](char byte) {
               return Base::isLetter(byte) || Base::isDigit(byte) || byte == '_' || byte == '-' ||
                      byte == '.';
           });
}

std::string boolean(const char* name, bool value) {
    return std::string("<IPARAMVALUE NAME=\"") + name + "\"><VALUE>" + (value ? "TRUE" : "FALSE") +
           "</VALUE></IPARAMVALUE>";
}

std::string classNamed(std::string_view name) {
    return R"(<IPARAMVALUE NAME="ClassName"><CLASSNAME NAME=")" + std::string(name) +
           R"("/></IPARAMVALUE>)";
}

std::string classForm(bool localOnly) {
    return boolean("LocalOnly", localOnly) + boolean("IncludeQualifiers", true) +
           boolean("IncludeClassOrigin", true);
}

// Neither operation, namespace nor parameters hold anything that XML would need escaped.
Request request(const char* operation, const std::string& nameSpace,
                const std::string& parameters) {
    std::string path;
    for (std::string_view rest = nameSpace; !rest.empty();)
        path += "<NAMESPACE NAME=\"" + std::string(takeSegment(rest)) + "\"/>";
    std::string body =
        "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
        "<CIM CIMVERSION=\"2.0\" DTDVERSION=\"2.0\"><MESSAGE ID=\"";
    body += kMessageId;
    body += R"(" PROTOCOLVERSION="1.0"><SIMPLEREQ><IMETHODCALL NAME=")";
    body += operation;
    body += "\"><LOCALNAMESPACEPATH>" + path + "</LOCALNAMESPACEPATH>" + parameters +
            "</IMETHODCALL></SIMPLEREQ></MESSAGE></CIM>\n";
    return {.operation = operation, .nameSpace = nameSpace, .body = std::move(body)};
}

}  // namespace

Request enumerateQualifiers(const std::string& nameSpace) {
    return request("EnumerateQualifiers", nameSpace, "");
}

Request enumerateClasses(const std::string& nameSpace, bool localOnly) {
    return request("EnumerateClasses", nameSpace,
                   boolean("DeepInheritance", true) + classForm(localOnly));
}

Request enumerateClassNames(const std::string& nameSpace) {
    return request("EnumerateClassNames", nameSpace, boolean("DeepInheritance", true));
}

Request getClass(const std::string& nameSpace, std::string_view className, bool localOnly) {
    return request("GetClass", nameSpace, classNamed(className) + classForm(localOnly));
}

Request enumerateInstanceNames(const std::string& nameSpace, std::string_view className) {
    return request("EnumerateInstanceNames", nameSpace, classNamed(className));
}

bool isNamespaceName(std::string_view text) noexcept {
    if (text.empty() || text.ends_with('/'))
        return false;
    while (!text.empty()) {
        if (!isSegment(takeSegment(text)))
            return false;
    }
    return true;
}

}  // namespace CimXml

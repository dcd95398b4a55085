#include "ObjectManager/Pages/SearchData.h"

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Base/Utf8.h"
#include "ObjectManager/Pages/Qualifiers.h"

namespace Pages {

namespace {

using Repository::CimClass;
using Repository::CimNamespace;

constexpr char32_t kLineSeparator = 0x2028;
constexpr char32_t kParagraphSeparator = 0x2029;

bool needsEscape(char32_t code) {
    return Base::isControlCode(code) || code == '"' || code == '\\' || code == '<' ||
           code == kLineSeparator || code == kParagraphSeparator;
}

void appendEscape(std::string& text, char32_t code) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    text += "\\u";
    for (int shift = 12; shift >= 0; shift -= 4)
        text += kDigits[(code >> static_cast<unsigned>(shift)) & 0xFU];
}

// Of the declared members only: what a class inherits is found at its superclass.
template <typename Member>
void appendMembers(std::string& data, const CimClass& cimClass,
                   const std::vector<const Member*>& members, const char* kind, bool& isFirst) {
    for (const Member* const member : members) {
        if (&cimClass.declaringClass(*member) != &cimClass)
            continue;
        data += isFirst ? "[" : ",[";
        isFirst = false;
        data += scriptText(member->name());
        data += kind;
        data += scriptText(descriptionOf(*member));
        data += "]";
    }
}

void appendClass(std::string& data, const CimClass& cimClass) {
    data += "[" + scriptText(cimClass.name()) + ",";
    data += scriptText(cimClass.superclass() == nullptr
                           ? std::string_view()
                           : std::string_view(cimClass.superclass()->name()));
    data += "," + scriptText(cimClass.description()) + ",[";
    bool isFirst = true;
    appendMembers(data, cimClass, cimClass.properties(), ",0,", isFirst);
    appendMembers(data, cimClass, cimClass.methods(), ",1,", isFirst);
    data += "]]";
}

}  // namespace

std::string makeSearchData(const Repository::ClassRepository& repository, Layout layout) {
    std::string data = "teskClasses({\"suffix\":";
    data += layout == Layout::kServed ? "\"\"" : "\".html\"";
    data += ",\"namespaces\":[";
    for (const CimNamespace& nameSpace : repository.namespaces()) {
        data += &nameSpace == &repository.namespaces().front() ? "\n{\"name\":" : ",\n{\"name\":";
        data += scriptText(nameSpace.name()) + ",\"pages\":" +
                scriptText((layout == Layout::kServed ? "-/" : "") +
                           Base::percentEncodedPath(nameSpace.name()) + "/") +
                ",\"classes\":[";
        for (const TSKSmrPtr<CimClass>& cimClass : nameSpace.classes()) {
            data += cimClass == nameSpace.classes().front() ? "\n" : ",\n";
            appendClass(data, *cimClass);
        }
        data += "]}";
    }
    return data + "]});\n";
}

std::string scriptText(std::string_view text) {
    std::string literal = "\"";
    literal.reserve(text.size() + 2);
    while (!text.empty()) {
        const auto [code, length] = Base::decodeCodePoint(text);
        if (length == 0)
            literal += Base::kReplacementCharacter;
        else if (needsEscape(code))
            appendEscape(literal, code);
        else
            literal += text.substr(0, length);
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return literal + "\"";
}

}  // namespace Pages

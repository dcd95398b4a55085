#include "ObjectManager/Configuration/NamespaceOption.h"

#include <algorithm>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Configuration {

namespace {

[[noreturn]] void fail(const std::string& message) {
    throw TeskBaseException("Configuration::NamespaceOption", TSKString(message),
                            CIM_ERR_INVALID_PARAMETER);
}

char lowerCase(char letter) noexcept {
    return static_cast<char>(letter >= 'A' && letter <= 'Z' ? letter - 'A' + 'a' : letter);
}

bool isNameCharacter(char character) noexcept {
    const char letter = lowerCase(character);
    return (letter >= 'a' && letter <= 'z') || (letter >= '0' && letter <= '9') || letter == '_' ||
           letter == '-' || letter == '.';
}

// A name is a part of paths of requests, in which "." and ".." have another meaning.
bool isSegment(std::string_view text) {
    return !text.empty() && text != "." && text != ".." &&
           std::ranges::all_of(text, isNameCharacter);
}

std::string_view withoutSlashesAround(std::string_view text) {
    const std::size_t first = text.find_first_not_of('/');
    if (first == std::string_view::npos)
        return {};
    return text.substr(first, text.find_last_not_of('/') - first + 1);
}

}  // namespace

std::string parseNamespaceName(std::string_view text) {
    const std::string_view name = withoutSlashesAround(text);
    for (std::size_t start = 0; start <= name.size();) {
        const std::size_t end = std::min(name.find('/', start), name.size());
        if (!isSegment(name.substr(start, end - start))) {
            fail('"' + std::string(text) +
                 "\" is no name of a namespace, such as \"root/cimv2\": letters, digits, \"_\", "
                 "\"-\" and \".\", in parts with a \"/\" between them");
        }
        start = end + 1;
    }
    return std::string(name);
}

bool isSameNamespace(std::string_view name, std::string_view other) noexcept {
    return std::ranges::equal(name, other, {}, lowerCase, lowerCase);
}

Repository::NamespaceSource parseNamespaceOption(std::string_view text) {
    const std::size_t sign = text.find('=');
    if (sign == std::string_view::npos || sign + 1 == text.size()) {
        fail('"' + std::string(text) +
             R"(" is no namespace with a MOF file or folder, such as "root/cimv2=schema/cim.mof")");
    }
    return {.name = parseNamespaceName(text.substr(0, sign)),
            .paths = {std::string(text.substr(sign + 1))}};
}

}  // namespace Configuration

#include "ObjectManager/Commands/NamespaceOption.h"

#include <algorithm>

namespace Commands {

namespace {

constexpr char kBetween = '=';

constexpr bool isNameCharacter(char character) noexcept {
    return (character >= 'a' && character <= 'z') || (character >= 'A' && character <= 'Z') ||
           (character >= '0' && character <= '9') || character == '_' || character == '-';
}

}  // namespace

bool isNamespaceName(std::string_view name) noexcept {
    if (name.empty() || name.starts_with('/') || name.ends_with('/') ||
        name.find("//") != std::string_view::npos)
        return false;
    return std::all_of(name.begin(), name.end(), [](char character) {
        return isNameCharacter(character) || character == '/';
    });
}

std::string faultOfNamespaceOption(std::string_view text) {
    const auto between = text.find(kBetween);
    if (between == std::string_view::npos || between + 1 == text.size())
        return "\"" + std::string(text) + "\" is not NAME=PATH, such as root/acme=mof/acme.mof";
    const std::string_view name = text.substr(0, between);
    if (!isNamespaceName(name)) {
        return "\"" + std::string(name) +
               "\" cannot be the name of a namespace: one is made of letters, digits, _ and -, "
               "with "
               "single slashes between them, such as root/cimv2";
    }
    return {};
}

NamespaceSource parseNamespaceOption(std::string_view text) {
    const auto between = text.find(kBetween);
    return {.name = std::string(text.substr(0, between)),
            .paths = {std::string(text.substr(between + 1))}};
}

}  // namespace Commands

#include "ObjectManager/Security/CredentialText.h"

namespace Security {

namespace {

constexpr char32_t kNoCharacter = 0xFFFFFFFF;

// How many bytes a character has by its first one, 0 if none begins so.
std::size_t lengthByFirstByte(unsigned char byte) noexcept {
    if (byte < 0x80)
        return 1;
    if (byte >= 0xC2 && byte <= 0xDF)
        return 2;
    if (byte >= 0xE0 && byte <= 0xEF)
        return 3;
    return byte >= 0xF0 && byte <= 0xF4 ? 4 : 0;
}

// Whether a character may be written with so many bytes: neither with fewer, nor is it a surrogate
// or beyond the last one.
bool isWellFormed(char32_t character, std::size_t length) noexcept {
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    return character >= kSmallest[length] && character <= 0x10FFFF && !isSurrogate;
}

// Removes the first character of a text that is not empty; kNoCharacter if it is malformed.
char32_t takeCharacter(std::string_view& text) noexcept {
    const auto first = static_cast<unsigned char>(text.front());
    const std::size_t length = lengthByFirstByte(first);
    if (length == 0 || length > text.size())
        return kNoCharacter;
    char32_t character = length == 1 ? first : first & (0x7FU >> length);
    for (const char byte : text.substr(1, length - 1)) {
        const auto next = static_cast<unsigned char>(byte);
        if ((next & 0xC0U) != 0x80U)
            return kNoCharacter;
        character = character << 6U | (next & 0x3FU);
    }
    text.remove_prefix(length);
    return isWellFormed(character, length) ? character : kNoCharacter;
}

bool isControl(char32_t character) noexcept {
    return character < 0x20 || (character >= 0x7F && character <= 0x9F);
}

}  // namespace

bool isCredentialText(std::string_view text) noexcept {
    while (!text.empty()) {
        const char32_t character = takeCharacter(text);
        if (character == kNoCharacter || isControl(character))
            return false;
    }
    return true;
}

std::string_view faultOfUserName(std::string_view name) noexcept {
    if (name.empty())
        return "it is empty";
    if (name.size() > kMaxUserNameLength)
        return "it is longer than 255 bytes";
    if (name.front() == '#')
        return "it begins with #, as comments do";
    if (name.find(':') != std::string_view::npos)
        return "it contains a colon";
    return isCredentialText(name) ? "" : "it contains control characters or is not UTF-8";
}

std::string_view faultOfPassword(std::string_view password) noexcept {
    if (password.empty())
        return "it is empty";
    if (password.size() > kMaxPasswordLength)
        return "it is longer than 511 bytes";
    return isCredentialText(password) ? "" : "it contains control characters or is not UTF-8";
}

}  // namespace Security

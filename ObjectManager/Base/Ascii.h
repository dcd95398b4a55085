#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Characters of ASCII, whatever the locale is. Bytes of other characters are none of these: they
// are no letters, have no case, and are not printable.

namespace Base {

[[nodiscard]] constexpr bool isDigit(char byte) noexcept {
    return byte >= '0' && byte <= '9';
}

[[nodiscard]] constexpr bool isLetter(char byte) noexcept {
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z');
}

/// A space or a tab.
[[nodiscard]] constexpr bool isSpaceOrTab(char byte) noexcept {
    return byte == ' ' || byte == '\t';
}

/// CR or LF.
[[nodiscard]] constexpr bool isLineEnd(char byte) noexcept {
    return byte == '\r' || byte == '\n';
}

/// A space, tab, CR or LF.
[[nodiscard]] constexpr bool isSpace(char byte) noexcept {
    return isSpaceOrTab(byte) || isLineEnd(byte);
}

/// Anything below the space, and DEL.
[[nodiscard]] constexpr bool isControl(char byte) noexcept {
    const auto code = static_cast<unsigned char>(byte);
    return code < 0x20 || code == 0x7F;
}

/// A space or what is visible.
[[nodiscard]] constexpr bool isPrintable(char byte) noexcept {
    return byte >= ' ' && byte <= '~';
}

[[nodiscard]] constexpr char lowerCase(char byte) noexcept {
    return byte >= 'A' && byte <= 'Z' ? static_cast<char>(byte - 'A' + 'a') : byte;
}

[[nodiscard]] inline std::string lowerCase(std::string_view text) {
    std::string result(text);
    for (char& byte : result)
        byte = lowerCase(byte);
    return result;
}

[[nodiscard]] constexpr bool equalsIgnoringCase(std::string_view left,
                                                std::string_view right) noexcept {
    if (left.size() != right.size())
        return false;
    for (std::size_t index = 0; index < left.size(); ++index) {
        if (lowerCase(left[index]) != lowerCase(right[index]))
            return false;
    }
    return true;
}

[[nodiscard]] constexpr bool startsWithIgnoringCase(std::string_view text,
                                                    std::string_view start) noexcept {
    return equalsIgnoringCase(text.substr(0, start.size()), start);
}

/// `text` without the spaces and tabs around it.
[[nodiscard]] constexpr std::string_view trimmed(std::string_view text) noexcept {
    while (!text.empty() && isSpaceOrTab(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && isSpaceOrTab(text.back()))
        text.remove_suffix(1);
    return text;
}

}  // namespace Base

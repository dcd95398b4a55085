#pragma once

#include <cstddef>
#include <string_view>

// Texts in UTF-8 (RFC 3629): neither overlong forms nor surrogates, nothing beyond U+10FFFF. All
// functions may be called by several threads at once.

namespace Base {

/// U+FFFD, which stands for what cannot be shown.
constexpr std::string_view kReplacementCharacter = "\xEF\xBF\xBD";

/// Whether a byte continues a character, that is, does not begin one.
[[nodiscard]] constexpr bool isContinuation(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// Where the character begins that the byte at `position` belongs to; the end of the text for a
/// position behind it.
[[nodiscard]] constexpr std::size_t startOfCharacter(std::string_view text,
                                                     std::size_t position) noexcept {
    if (position >= text.size())
        return text.size();
    while (position > 0 && isContinuation(text[position]))
        --position;
    return position;
}

/// How many bytes the well-formed character has that `text` begins with; 0 if it begins with none.
[[nodiscard]] std::size_t lengthOfCharacter(std::string_view text) noexcept;

struct CodePoint {
    char32_t code = 0;
    std::size_t length = 0;  ///< in bytes; 0 if no well-formed character stands there
};

/// The character that begins at `position`, which must not be beyond the end of the text.
[[nodiscard]] CodePoint decodeCodePoint(std::string_view text, std::size_t position = 0) noexcept;

/// Whether all of `text` is well-formed.
[[nodiscard]] bool isUtf8(std::string_view text) noexcept;

/// How many characters a well-formed text has.
[[nodiscard]] std::size_t countCharacters(std::string_view text) noexcept;

/// U+0000 to U+001F and U+007F to U+009F, tabs and line ends included.
[[nodiscard]] constexpr bool isControlCode(char32_t code) noexcept {
    return code < 0x20 || (code >= 0x7F && code <= 0x9F);
}

[[nodiscard]] constexpr bool isHighSurrogate(char32_t code) noexcept {
    return code >= 0xD800 && code <= 0xDBFF;
}

[[nodiscard]] constexpr bool isLowSurrogate(char32_t code) noexcept {
    return code >= 0xDC00 && code <= 0xDFFF;
}

/// Appends a character to a text to which bytes can be added, such as std::string or TSKString.
/// `code` is at most U+10FFFF. A surrogate gives three bytes that are not well-formed UTF-8.
template <typename Text>
void appendCodePoint(Text& text, char32_t code) {
    const auto append = [&text](char32_t byte) { text += static_cast<char>(byte); };
    const auto appendContinuation = [&](char32_t bits) { append(0x80U | (bits & 0x3FU)); };
    if (code < 0x80) {
        append(code);
    } else if (code < 0x800) {
        append(0xC0U | code >> 6U);
        appendContinuation(code);
    } else if (code < 0x10000) {
        append(0xE0U | code >> 12U);
        appendContinuation(code >> 6U);
        appendContinuation(code);
    } else {
        append(0xF0U | code >> 18U);
        appendContinuation(code >> 12U);
        appendContinuation(code >> 6U);
        appendContinuation(code);
    }
}

}  // namespace Base

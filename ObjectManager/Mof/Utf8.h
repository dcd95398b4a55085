#pragma once

#include <cstddef>
#include <string_view>

// Where characters begin and end in a text in UTF-8.

namespace Mof {

/// Whether a byte is one of a character behind its first one.
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

/// How many bytes the well-formed character has that `text`, which is not empty, begins with; 0 if
/// it begins with none.
[[nodiscard]] std::size_t lengthOfCharacter(std::string_view text) noexcept;

}  // namespace Mof

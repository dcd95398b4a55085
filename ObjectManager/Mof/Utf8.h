#pragma once

#include <cstddef>
#include <string_view>

namespace Mof {

/// Whether a byte of a text in UTF-8 is another one than the first of a character.
[[nodiscard]] constexpr bool isUtf8Continuation(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

/// How many bytes the well-formed character has that `text`, which is not empty, begins with; 0 if
/// it begins with none.
[[nodiscard]] std::size_t utf8Length(std::string_view text) noexcept;

}  // namespace Mof

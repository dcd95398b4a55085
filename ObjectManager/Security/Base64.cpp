#include "ObjectManager/Security/Base64.h"

#include <cstddef>

namespace Security {

namespace {

constexpr std::string_view kAlphabet =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t kGroupLength = 4;

std::size_t paddingLength(std::string_view text) noexcept {
    if (text.ends_with("=="))
        return 2;
    return text.ends_with('=') ? 1 : 0;
}

}  // namespace

std::optional<SecretText> decodeBase64(std::string_view text) {
    if (text.size() % kGroupLength != 0)
        return std::nullopt;
    text.remove_suffix(paddingLength(text));

    SecretText bytes;
    unsigned bits = 0;
    unsigned bitCount = 0;
    for (const char character : text) {
        const std::size_t value = kAlphabet.find(character);
        if (value == std::string_view::npos)
            return std::nullopt;
        bits = bits << 6U | static_cast<unsigned>(value);
        bitCount += 6;
        if (bitCount >= 8) {
            bitCount -= 8;
            bytes.append(static_cast<char>(bits >> bitCount));
            bits &= (1U << bitCount) - 1;
        }
    }
    if (bits != 0)
        return std::nullopt;
    return bytes;
}

}  // namespace Security

#include "ObjectManager/Base/Utf8.h"

#include <algorithm>
#include <cstdint>
#include <cstring>

namespace Base {

namespace {

// The bytes that a well-formed character of several bytes begins with (Unicode, table 3-7): a range
// of first bytes, the range of the second one, and how many there are in all.
struct Form {
    unsigned firstLow;
    unsigned firstHigh;
    unsigned secondLow;
    unsigned secondHigh;
    std::size_t length;
};

constexpr Form kForms[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool begins(std::string_view text, const Form& form) noexcept {
    const auto isBetween = [&](std::size_t index, unsigned low, unsigned high) {
        const unsigned byte = static_cast<unsigned char>(text[index]);
        return byte >= low && byte <= high;
    };
    return text.size() >= form.length && isBetween(0, form.firstLow, form.firstHigh) &&
           isBetween(1, form.secondLow, form.secondHigh) &&
           std::all_of(text.begin() + 2, text.begin() + static_cast<std::ptrdiff_t>(form.length),
                       isContinuation);
}

// Almost all of a schema is ASCII, which is stepped over a word at a time.
std::size_t lengthOfAsciiWords(std::string_view text) noexcept {
    constexpr std::uint64_t kHighBits = 0x8080808080808080U;
    std::size_t length = 0;
    for (std::uint64_t word = 0; length + sizeof word <= text.size(); length += sizeof word) {
        std::memcpy(&word, text.data() + length, sizeof word);
        if ((word & kHighBits) != 0)
            break;
    }
    return length;
}

}  // namespace

std::size_t lengthOfCharacter(std::string_view text) noexcept {
    if (text.empty())
        return 0;
    if (static_cast<unsigned char>(text.front()) < 0x80)
        return 1;
    for (const Form& form : kForms) {
        if (begins(text, form))
            return form.length;
    }
    return 0;
}

CodePoint decodeCodePoint(std::string_view text, std::size_t position) noexcept {
    text.remove_prefix(position);
    const std::size_t length = lengthOfCharacter(text);
    if (length == 0)
        return {};
    const char32_t first = static_cast<unsigned char>(text.front());
    char32_t code = length == 1 ? first : first & (0x7FU >> length);
    for (const char byte : text.substr(1, length - 1))
        code = code << 6U | (static_cast<unsigned char>(byte) & 0x3FU);
    return {.code = code, .length = length};
}

bool isUtf8(std::string_view text) noexcept {
    while (!text.empty()) {
        text.remove_prefix(lengthOfAsciiWords(text));
        if (text.empty())
            return true;
        const std::size_t length = lengthOfCharacter(text);
        if (length == 0)
            return false;
        text.remove_prefix(length);
    }
    return true;
}

std::size_t countCharacters(std::string_view text) noexcept {
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !isContinuation(byte); }));
}

}  // namespace Base

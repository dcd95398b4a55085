#include "ObjectManager/Mof/Utf8.h"

#include <algorithm>

namespace Mof {

namespace {

// The bytes that a well-formed character begins with (Unicode, table 3-7): a range of first bytes,
// the range of the second one, and how many there are in all.
struct Utf8Form {
    unsigned firstLow;
    unsigned firstHigh;
    unsigned secondLow;
    unsigned secondHigh;
    std::size_t length;
};

constexpr Utf8Form kUtf8Forms[] = {
    {0xC2, 0xDF, 0x80, 0xBF, 2}, {0xE0, 0xE0, 0xA0, 0xBF, 3}, {0xE1, 0xEC, 0x80, 0xBF, 3},
    {0xED, 0xED, 0x80, 0x9F, 3}, {0xEE, 0xEF, 0x80, 0xBF, 3}, {0xF0, 0xF0, 0x90, 0xBF, 4},
    {0xF1, 0xF3, 0x80, 0xBF, 4}, {0xF4, 0xF4, 0x80, 0x8F, 4},
};

bool begins(std::string_view text, const Utf8Form& form) noexcept {
    const auto isBetween = [&](std::size_t index, unsigned low, unsigned high) {
        const unsigned byte = static_cast<unsigned char>(text[index]);
        return byte >= low && byte <= high;
    };
    return text.size() >= form.length && isBetween(0, form.firstLow, form.firstHigh) &&
           isBetween(1, form.secondLow, form.secondHigh) &&
           std::all_of(text.begin() + 2, text.begin() + static_cast<std::ptrdiff_t>(form.length),
                       isContinuation);
}

}  // namespace

std::size_t lengthOfCharacter(std::string_view text) noexcept {
    if (static_cast<unsigned char>(text.front()) < 0x80)
        return 1;
    for (const Utf8Form& form : kUtf8Forms) {
        if (begins(text, form))
            return form.length;
    }
    return 0;
}

}  // namespace Mof

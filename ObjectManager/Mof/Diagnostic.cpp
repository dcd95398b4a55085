#include "ObjectManager/Mof/Diagnostic.h"

#include <algorithm>
#include <cstddef>
#include <string_view>

#include "ObjectManager/Mof/Utf8.h"

namespace Mof {

namespace {

constexpr std::string_view kLeftOut = "...";

// The control characters are those below the blank, DEL, and U+0080 to U+009F, which take two
// bytes; of them all, tabs do no harm. Returns how many bytes of one are at the front of `text`.
std::size_t lengthOfControl(std::string_view text) {
    const auto code = static_cast<unsigned char>(text.front());
    if (code == 0x7F || (code < 0x20 && code != '\t'))
        return 1;
    if (code != 0xC2 || text.size() == 1)
        return 0;
    const auto second = static_cast<unsigned char>(text[1]);
    return second >= 0x80 && second < 0xA0 ? 2 : 0;
}

// A question mark for each control character. Texts, and the names of files, are others'.
std::string printable(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::size_t control = lengthOfControl(text);
        result += control == 0 ? text.front() : '?';
        text.remove_prefix(std::max<std::size_t>(control, 1));
    }
    return result;
}

// Blanks below the first `count` characters; a tab stays one, so that the caret stands below its
// place.
std::string blanksBelow(std::string_view line, std::size_t count) {
    std::string blanks;
    for (const char byte : line) {
        if (isContinuation(byte))
            continue;
        if (blanks.size() == count)
            break;
        blanks += byte == '\t' ? '\t' : ' ';
    }
    return blanks;
}

}  // namespace

std::string Diagnostic::toString() const {
    std::string text = printable(file) + ":";
    if (place.line > 0)
        text += std::to_string(place.line) + ":" + std::to_string(place.column) + ":";
    text += severity == Severity::kError ? " error: " : " warning: ";
    text += printable(message) + "\n";
    if (sourceLine.empty())
        return text;
    const std::size_t inFront = place.column - std::min(place.column, skipped + 1);
    std::string line = printable(sourceLine);
    std::string blanks = blanksBelow(line, inFront);
    if (skipped > 0) {
        line.insert(0, kLeftOut);
        blanks.insert(0, kLeftOut.size(), ' ');
    }
    if (continues)
        line += kLeftOut;
    return text + line + "\n" + blanks + "^\n";
}

}  // namespace Mof

#include "ObjectManager/Mof/Diagnostic.h"

#include <string_view>

namespace Mof {

namespace {

// Blanks up to the column; a tab stays one, so that the caret stands below its place.
std::string indentationTo(std::size_t column, std::string_view line) {
    std::string blanks;
    for (const char byte : line) {
        const bool startsCharacter = (static_cast<unsigned char>(byte) & 0xC0U) != 0x80U;
        if (startsCharacter && blanks.size() + 1 >= column)
            break;
        if (startsCharacter)
            blanks += byte == '\t' ? '\t' : ' ';
    }
    return blanks;
}

}  // namespace

std::string Diagnostic::toString() const {
    std::string text = file + ":";
    if (place.line > 0)
        text += std::to_string(place.line) + ":" + std::to_string(place.column) + ":";
    text += severity == Severity::kError ? " error: " : " warning: ";
    text += message + "\n";
    if (!sourceLine.empty())
        text += sourceLine + "\n" + indentationTo(place.column, sourceLine) + "^\n";
    return text;
}

}  // namespace Mof

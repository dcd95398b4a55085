#include "ObjectManager/Mof/SourceText.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Utf8.h"

namespace Mof {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// CR, LF, or the two in a row.
std::size_t countLineEnds(std::string_view text) noexcept {
    std::size_t count = 0;
    char last = 0;
    for (const char byte : text) {
        if (byte == '\r' || (byte == '\n' && last != '\r'))
            ++count;
        last = byte;
    }
    return count;
}

std::string fromLatin1(std::string_view bytes) {
    std::string text;
    text.reserve(bytes.size() + bytes.size() / 8);
    for (const char byte : bytes)
        Base::appendCodePoint(text, static_cast<unsigned char>(byte));
    return text;
}

void turnIntoUtf8(std::string& bytes) {
    if (std::string_view(bytes).starts_with(kByteOrderMark))
        bytes.erase(0, kByteOrderMark.size());
    if (!Base::isUtf8(bytes))
        bytes = fromLatin1(bytes);
}

}  // namespace

SourceText::SourceText(std::string name, std::string bytes)
    : name_(std::move(name)), text_(std::move(bytes)) {
    turnIntoUtf8(text_);
}

bool SourceText::looksLikeUtf16() const noexcept {
    constexpr std::string_view kLittleEndianMark = "\xC3\xBF\xC3\xBE";  // FF FE, as Latin-1
    constexpr std::string_view kBigEndianMark = "\xC3\xBE\xC3\xBF";
    const std::string_view start = text();
    if (start.starts_with(kLittleEndianMark) || start.starts_with(kBigEndianMark))
        return true;
    // Letters of ASCII without a mark.
    return start.size() >= 4 && (start[0] == '\0') != (start[1] == '\0') &&
           (start[0] == '\0') == (start[2] == '\0') && (start[1] == '\0') == (start[3] == '\0');
}

LineAndColumn SourceText::locate(std::size_t offset) const noexcept {
    const std::string_view before = text().substr(0, offset);
    const std::size_t lineStart = startOfLine(offset);
    const std::string_view inLine = before.substr(lineStart);
    return {
        .line = 1 + countLineEnds(text().substr(0, lineStart)),
        .column = 1 + Base::countCharacters(inLine),
    };
}

LineExcerpt SourceText::excerptAt(std::size_t offset) const noexcept {
    const std::string_view line = lineAt(offset);
    if (line.size() <= kMaxExcerpt)
        return {.text = line, .skipped = 0, .continues = false};
    const std::size_t place = std::min(offset - startOfLine(offset), line.size());
    const std::size_t begin =
        Base::startOfCharacter(line, place - std::min(place, kMaxExcerpt / 2));
    const std::size_t end = Base::startOfCharacter(line, begin + kMaxExcerpt);
    return {
        .text = line.substr(begin, end - begin),
        .skipped = Base::countCharacters(line.substr(0, begin)),
        .continues = end < line.size(),
    };
}

std::string_view SourceText::lineAt(std::size_t offset) const noexcept {
    const std::string_view line = text().substr(startOfLine(offset));
    const auto end = std::find_if(line.begin(), line.end(), Base::isLineEnd);
    return line.substr(0, static_cast<std::size_t>(end - line.begin()));
}

std::size_t SourceText::startOfLine(std::size_t offset) const noexcept {
    const std::string_view all = text();
    std::size_t start = std::min(offset, all.size());
    // Between the two bytes of one end the line is not over.
    if (start > 0 && all[start - 1] == '\r' && all.substr(start).starts_with('\n'))
        --start;
    while (start > 0 && !Base::isLineEnd(all[start - 1]))
        --start;
    return start;
}

}  // namespace Mof

#include "ObjectManager/Http/LogText.h"

namespace Http {

namespace {

constexpr std::size_t kMostBytes = 200;

void appendEscaped(std::string& line, char character) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    const unsigned byte = static_cast<unsigned char>(character);
    line += "\\x";
    line += kDigits[byte >> 4U];
    line += kDigits[byte & 0xFU];
}

}  // namespace

std::string toLogText(std::string_view text) {
    std::string line;
    for (const char character : text.substr(0, kMostBytes)) {
        if (character == '\\')
            line += "\\\\";
        else if (character >= ' ' && character < 0x7f)
            line += character;
        else
            appendEscaped(line, character);
    }
    if (text.size() > kMostBytes)
        line += "...";
    return line;
}

}  // namespace Http

#include "ObjectManager/Base/Text.h"

#include <cstdio>
#include <iterator>
#include <new>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Utf8.h"
#include "Platform/Util/TeskBaseException.h"

namespace Base {

namespace {

std::string fixed(double number, int decimals) {
    char text[64];
    (void)std::snprintf(text, sizeof text, "%.*f", decimals, number);
    return text;
}

// The two hexadecimal digits of a byte.
void appendHexadecimal(std::string& text, char byte, std::string_view digits) {
    const auto code = static_cast<unsigned char>(byte);
    text += digits[code >> 4U];
    text += digits[code & 0xFU];
}

// Empty for what is no markup.
std::string_view markupOf(char character) noexcept {
    switch (character) {
        case '&':
            return "&amp;";
        case '<':
            return "&lt;";
        case '>':
            return "&gt;";
        default:
            return {};
    }
}

std::size_t roomForMarkup(std::string_view text) noexcept {
    return text.size() + text.size() / 16;
}

// All but tabs and line feeds.
bool isUnknownToHtml(char32_t code) noexcept {
    return isControlCode(code) && code != '\t' && code != '\n';
}

}  // namespace

std::string quoted(std::string_view text) {
    std::string result = "\"";
    result += text;
    result += '"';
    return result;
}

std::string shellQuoted(std::string_view text) {
    constexpr std::string_view kPlain =
        "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_-./";
    if (!text.empty() && text.find_first_not_of(kPlain) == std::string_view::npos)
        return std::string(text);
    std::string word = "'";
    for (const char byte : text) {
        if (byte == '\'')
            word += "'\\''";
        else
            word += byte;
    }
    return word + "'";
}

std::string joined(std::span<const std::string> texts, std::string_view separator,
                   std::string_view lastSeparator) {
    std::string result;
    for (std::size_t index = 0; index < texts.size(); ++index) {
        if (index > 0)
            result += index + 1 == texts.size() ? lastSeparator : separator;
        result += texts[index];
    }
    return result;
}

std::string joined(std::span<const std::string> texts, std::string_view separator) {
    return joined(texts, separator, separator);
}

std::string withSeparators(std::size_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t end = digits.size(); end > 3; end -= 3)
        digits.insert(end - 3, 1, ',');
    return digits;
}

std::string counted(std::size_t number, std::string_view singular, std::string_view plural) {
    return withSeparators(number) + " " + std::string(number == 1 ? singular : plural);
}

std::string bytesText(std::size_t bytes) {
    constexpr const char* kUnits[] = {"KB", "MB", "GB", "TB"};
    constexpr double kThousand = 1000;
    constexpr double kRoundsToThousand = 999.95;
    if (bytes < 1000)
        return counted(bytes, "byte", "bytes");
    double size = static_cast<double>(bytes) / kThousand;
    const char* const* unit = std::begin(kUnits);
    while (size >= kRoundsToThousand && unit + 1 != std::end(kUnits)) {
        size /= kThousand;
        ++unit;
    }
    return fixed(size, 1) + " " + *unit;
}

std::string secondsText(double seconds) {
    return fixed(seconds, 2) + " s";
}

std::string_view reasonOf(const std::exception& error) noexcept {
    if (const auto* const failure = dynamic_cast<const TeskBaseException*>(&error))
        return failure->getMessage();
    if (dynamic_cast<const std::bad_alloc*>(&error) != nullptr)
        return "there is not enough memory";
    return error.what();
}

std::string logText(std::string_view text) {
    constexpr std::size_t kMaxBytes = 200;
    std::string line;
    for (const char byte : text.substr(0, kMaxBytes)) {
        if (byte == '\\') {
            line += "\\\\";
        } else if (isPrintable(byte)) {
            line += byte;
        } else {
            line += "\\x";
            appendHexadecimal(line, byte, "0123456789abcdef");
        }
    }
    if (text.size() > kMaxBytes)
        line += "...";
    return line;
}

std::string percentEncodedPath(std::string_view path) {
    constexpr std::string_view kUnchanged = "-._~/";
    std::string encoded;
    encoded.reserve(path.size());
    for (const char byte : path) {
        if (isLetter(byte) || isDigit(byte) || kUnchanged.find(byte) != std::string_view::npos) {
            encoded += byte;
        } else {
            encoded += '%';
            appendHexadecimal(encoded, byte, "0123456789ABCDEF");
        }
    }
    return encoded;
}

std::string htmlText(std::string_view text) {
    std::string html;
    html.reserve(roomForMarkup(text));
    while (!text.empty()) {
        const auto [code, length] = decodeCodePoint(text);
        const std::string_view markup = code == '"' ? "&quot;" : markupOf(text.front());
        if (length == 0 || isUnknownToHtml(code))
            html += kReplacementCharacter;
        else
            html += markup.empty() ? text.substr(0, length) : markup;
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return html;
}

bool needsXmlEscapes(std::string_view text) noexcept {
    // One fast search a character.
    constexpr std::size_t kNowhere = std::string_view::npos;
    return text.find('&') != kNowhere || text.find('<') != kNowhere || text.find('>') != kNowhere;
}

std::string xmlText(std::string_view text) {
    std::string xml;
    xml.reserve(roomForMarkup(text));
    for (const char byte : text) {
        const std::string_view markup = markupOf(byte);
        if (markup.empty())
            xml += byte;
        else
            xml += markup;
    }
    return xml;
}

}  // namespace Base

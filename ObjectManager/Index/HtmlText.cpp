#include "ObjectManager/Index/HtmlText.h"

#include <cstddef>
#include <span>

#include "ObjectManager/Base/Utf8.h"

namespace Index {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

struct Escape {
    char character;
    std::string_view markup;
};

// Those that a repository makes come first.
constexpr std::size_t kEscapesOfRepository = 3;
constexpr Escape kEscapes[] = {{'&', "&amp;"}, {'<', "&lt;"}, {'>', "&gt;"}, {'"', "&quot;"}};

// Of U+0000 to U+001F without tab and line feed, U+007F to U+009F.
bool isControl(std::string_view character) noexcept {
    const auto code = static_cast<unsigned char>(character.front());
    if (character.size() == 1)
        return (code < 0x20 && code != '\t' && code != '\n') || code == 0x7F;
    return code == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
}

void appendCharacter(std::string& html, std::string_view character) {
    for (const Escape& escape : kEscapes) {
        if (character.front() == escape.character) {
            html += escape.markup;
            return;
        }
    }
    html += isControl(character) ? kReplacement : character;
}

}  // namespace

std::string htmlText(std::string_view text) {
    std::string html;
    html.reserve(text.size() + text.size() / 16);
    while (!text.empty()) {
        const std::size_t length = Base::lengthOfCharacter(text);
        if (length == 0)
            html += kReplacement;
        else
            appendCharacter(html, text.substr(0, length));
        text.remove_prefix(length == 0 ? 1 : length);
    }
    return html;
}

std::string withoutEscapes(std::string_view markup) {
    std::string text;
    text.reserve(markup.size());
    while (!markup.empty()) {
        std::size_t length = 1;
        char character = markup.front();
        for (const Escape& escape : std::span(kEscapes).first(kEscapesOfRepository)) {
            if (markup.starts_with(escape.markup)) {
                length = escape.markup.size();
                character = escape.character;
            }
        }
        text += character;
        markup.remove_prefix(length);
    }
    return text;
}

}  // namespace Index

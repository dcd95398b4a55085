#include "ObjectManager/Pages/FirstSentence.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/Base/Utf8.h"

namespace Pages {

namespace {

constexpr std::string_view kSpaces = " \t\r\n";
constexpr std::string_view kEllipsis = "\xE2\x80\xA6";

// The words up to the first empty line, with one space between them.
std::string firstParagraph(std::string_view text) {
    std::string paragraph;
    while (true) {
        const std::size_t start = text.find_first_not_of(kSpaces);
        if (start == std::string_view::npos)
            return paragraph;
        const std::string_view spaces = text.substr(0, start);
        if (!paragraph.empty() && std::count(spaces.begin(), spaces.end(), '\n') > 1)
            return paragraph;
        text.remove_prefix(start);
        const std::size_t length = std::min(text.find_first_of(kSpaces), text.size());
        if (!paragraph.empty())
            paragraph += ' ';
        paragraph += text.substr(0, length);
        text.remove_prefix(length);
    }
}

// Whether a full stop after `word` belongs to an abbreviation: "e.g", "i.e", "U.S", a single
// letter.
bool isAbbreviation(std::string_view word) {
    const std::size_t letters = word.find_first_not_of("(\"'");
    word.remove_prefix(std::min(letters, word.size()));
    return word.size() == 1 || (word.size() > 1 && word[1] == '.') || word == "vs" || word == "cf";
}

bool endsSentence(std::string_view paragraph, std::size_t position) {
    if (std::string_view(".?!").find(paragraph[position]) == std::string_view::npos)
        return false;
    if (position + 2 >= paragraph.size())
        return true;
    const char next = paragraph[position + 2];
    if (paragraph[position + 1] != ' ' || (next >= 'a' && next <= 'z'))
        return false;
    const std::string_view before = paragraph.substr(0, position);
    const std::size_t space = before.rfind(' ');
    return !isAbbreviation(before.substr(space == std::string_view::npos ? 0 : space + 1));
}

std::string cut(std::string sentence, std::size_t maxBytes) {
    if (sentence.size() <= maxBytes)
        return sentence;
    std::size_t end = sentence.rfind(' ', maxBytes);
    if (end == std::string::npos)
        end = Base::startOfCharacter(sentence, maxBytes);
    sentence.resize(end);
    return sentence + std::string(kEllipsis);
}

}  // namespace

std::string firstSentence(std::string_view text, std::size_t maxBytes) {
    std::string sentence = firstParagraph(text);
    for (std::size_t position = 0; position < sentence.size(); ++position) {
        if (endsSentence(sentence, position)) {
            sentence.resize(position + 1);
            break;
        }
    }
    return cut(std::move(sentence), maxBytes);
}

}  // namespace Pages

#include "ObjectManager/Pages/Markup.h"

#include <algorithm>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Pages/FirstSentence.h"

namespace Pages {

namespace {

using Base::htmlText;

// Two lines on a wide screen.
constexpr std::size_t kMaxUnfoldedBytes = 240;

std::string_view trimmed(std::string_view text) {
    while (!text.empty() && Base::isSpace(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && Base::isSpace(text.back()))
        text.remove_suffix(1);
    return text;
}

// Where the first line without words begins; the end of the text where there is none.
std::size_t endOfParagraph(std::string_view text) {
    for (std::size_t end = text.find('\n'); end != std::string_view::npos;
         end = text.find('\n', end + 1)) {
        const std::size_t next = text.find_first_not_of(" \t\r", end + 1);
        if (next == std::string_view::npos || text[next] == '\n')
            return end;
    }
    return text.size();
}

}  // namespace

std::string paragraphs(std::string_view text) {
    std::string html;
    for (text = trimmed(text); !text.empty(); text = trimmed(text)) {
        const std::size_t end = endOfParagraph(text);
        html += "<p>" + htmlText(trimmed(text.substr(0, end))) + "</p>\n";
        text.remove_prefix(end);
    }
    return html;
}

std::string foldedText(std::string_view text) {
    if (trimmed(text).size() <= kMaxUnfoldedBytes)
        return paragraphs(text);
    return "<details class=text><summary><span>" +
           htmlText(firstSentence(text, kMaxUnfoldedBytes)) + "</span></summary>\n" +
           paragraphs(text) + "</details>\n";
}

std::string classLink(const ClassRelations& relations, Layout layout, std::string_view className) {
    const TSKSmrPtr<Repository::CimClass> cimClass =
        relations.nameSpace().findClass(TSKString(className));
    if (!cimClass)
        return htmlText(className);
    return "<a href=" + siblingPage(layout, cimClass->name()) + ">" + htmlText(cimClass->name()) +
           "</a>";
}

std::string mentionLink(const ClassRelations& relations, Layout layout, std::string_view mention) {
    const std::size_t end = std::min(mention.find_first_of(".|"), mention.size());
    return classLink(relations, layout, mention.substr(0, end)) + htmlText(mention.substr(end));
}

std::string badge(std::string_view text, const char* kind) {
    return std::string(" <span class=\"badge ") + kind + "\">" + htmlText(text) + "</span>";
}

std::string code(std::string_view text) {
    return "<code>" + htmlText(text) + "</code>";
}

}  // namespace Pages

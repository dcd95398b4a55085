#include "ObjectManager/Mof/Pragma.h"

#include <algorithm>
#include <optional>

#include "ObjectManager/Base/Ascii.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Mof/Scanner.h"

namespace Mof {

namespace {

constexpr std::string_view kLineEnds = "\r\n";

// A longer comment makes a pragma incomplete. A file may have thousands of pragmas with a comment
// that is not closed; without a limit, the file would be searched to its end for each of them.
constexpr std::size_t kMaxCommentSize = 1000;

bool holdsLineEnd(std::string_view text) {
    return text.find_first_of(kLineEnds) != std::string_view::npos;
}

bool isNameByte(char byte) {
    return beginsName(byte) || Base::isDigit(byte);
}

// Takes the parts of a pragma from the front of a text, each with the spaces and comments before
// it.
class Cursor {
  public:
    explicit Cursor(std::string_view text) : text_(text) {}

    // Empty if there is none.
    std::string_view takeName() {
        skipSpaces();
        const auto end = std::find_if_not(text_.begin(), text_.end(), isNameByte);
        return take(static_cast<std::size_t>(end - text_.begin()));
    }

    bool takeSign(char sign) {
        skipSpaces();
        return text_.starts_with(sign) && !take(1).empty();
    }

    // The text between quotation marks on one line.
    std::optional<std::string_view> takeValue() {
        if (!takeSign('"'))
            return std::nullopt;
        const std::size_t end = text_.find('"');
        if (end == std::string_view::npos || holdsLineEnd(text_.substr(0, end)))
            return std::nullopt;
        const std::string_view value = take(end);
        (void)take(1);
        return value;
    }

    [[nodiscard]] std::size_t left() const noexcept { return text_.size(); }

  private:
    std::string_view take(std::size_t length) {
        const std::string_view taken = text_.substr(0, length);
        text_.remove_prefix(length);
        return taken;
    }

    void skipSpaces() {
        constexpr std::string_view kSpaces = " \t\r\n\f\v\x1A";  // SPACE in Scanner.l
        while (true) {
            (void)take(std::min(text_.find_first_not_of(kSpaces), text_.size()));
            const std::size_t length = lengthOfComment();
            if (length == 0)
                return;
            (void)take(length);
        }
    }

    // 0 if there is none, or none that ends.
    [[nodiscard]] std::size_t lengthOfComment() const {
        if (text_.starts_with("//"))
            return std::min(text_.find_first_of(kLineEnds), text_.size());
        if (!text_.starts_with("/*"))
            return 0;
        const std::size_t end = text_.substr(0, kMaxCommentSize).find("*/", 2);
        return end == std::string_view::npos ? 0 : end + 2;
    }

    std::string_view text_;
};

}  // namespace

Pragma::Kind Pragma::kind() const {
    if (name.equalsIgnoreCase("include"))
        return Kind::kInclude;
    if (name.equalsIgnoreCase("locale"))
        return Kind::kLocale;
    return name.equalsIgnoreCase("namespace") ? Kind::kNamespace : Kind::kUnknown;
}

PragmaText readPragma(std::string_view text) {
    constexpr std::string_view kKeyword = "#pragma";
    Cursor cursor(text.substr(kKeyword.size()));
    const std::string_view name = cursor.takeName();
    const std::string_view upToName = text.substr(0, text.size() - cursor.left());
    std::optional<std::string_view> value;
    if (!name.empty() && cursor.takeSign('('))
        value = cursor.takeValue();
    if (value && cursor.takeSign(')'))
        return {.pragma = {.name = TSKString(name), .value = TSKString(*value)},
                .length = text.size() - cursor.left(),
                .isComplete = true};
    PragmaText incomplete;
    // The name of an incomplete pragma is on its first line: the next line is other text.
    if (!holdsLineEnd(upToName))
        incomplete.pragma.name = TSKString(name);
    incomplete.length = std::min(text.find_first_of(kLineEnds), text.size());
    return incomplete;
}

std::string unknownPragmaWarning(const Pragma& pragma) {
    return "the pragma " + Base::quoted(pragma.name) + " is not known and is ignored";
}

}  // namespace Mof

#include "ObjectManager/Mof/Pragma.h"

#include <algorithm>
#include <optional>

namespace Mof {

namespace {

constexpr std::string_view kLineEnds = "\r\n";

// How far the end of a comment is looked for: a file may have pragmas by the thousand, and none of
// them may take as long as the file is.
constexpr std::size_t kLongestComment = 1000;

bool holdsLineEnd(std::string_view text) {
    return text.find_first_of(kLineEnds) != std::string_view::npos;
}

bool isNameByte(char byte) {
    const auto code = static_cast<unsigned char>(byte);
    return (code >= 'a' && code <= 'z') || (code >= 'A' && code <= 'Z') ||
           (code >= '0' && code <= '9') || code == '_' || code >= 0x80;
}

// Takes one piece after the other from the front of a text, with the blanks before it.
class Pieces {
  public:
    explicit Pieces(std::string_view text) : text_(text) {}

    // Empty where there is none.
    std::string_view takeName() {
        skipBlanks();
        const auto end = std::find_if_not(text_.begin(), text_.end(), isNameByte);
        return take(static_cast<std::size_t>(end - text_.begin()));
    }

    bool takeSign(char sign) {
        skipBlanks();
        return text_.starts_with(sign) && !take(1).empty();
    }

    // What stands between quotation marks on one line.
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

    void skipBlanks() {
        constexpr std::string_view kBlanks = " \t\r\n\f\v\x1A";
        while (true) {
            (void)take(std::min(text_.find_first_not_of(kBlanks), text_.size()));
            const std::size_t length = lengthOfComment();
            if (length == 0)
                return;
            (void)take(length);
        }
    }

    // 0 where there is none that ends.
    [[nodiscard]] std::size_t lengthOfComment() const {
        if (text_.starts_with("//"))
            return std::min(text_.find_first_of(kLineEnds), text_.size());
        if (!text_.starts_with("/*"))
            return 0;
        const std::size_t end = text_.substr(0, kLongestComment).find("*/", 2);
        return end == std::string_view::npos ? 0 : end + 2;
    }

    std::string_view text_;
};

}  // namespace

PragmaText readPragma(std::string_view text) {
    constexpr std::string_view kKeyword = "#pragma";
    Pieces pieces(text.substr(kKeyword.size()));
    const std::string_view name = pieces.takeName();
    const std::string_view upToName = text.substr(0, text.size() - pieces.left());
    std::optional<std::string_view> value;
    if (!name.empty() && pieces.takeSign('('))
        value = pieces.takeValue();
    if (value && pieces.takeSign(')'))
        return {.pragma = {.name = TSKString(name), .value = TSKString(*value)},
                .length = text.size() - pieces.left(),
                .isComplete = true};
    PragmaText incomplete;
    // What stands on the next line is the name of a complete one alone.
    if (!holdsLineEnd(upToName))
        incomplete.pragma.name = TSKString(name);
    incomplete.length = std::min(text.find_first_of(kLineEnds), text.size());
    return incomplete;
}

}  // namespace Mof

#include "ObjectManager/Mof/Pragma.h"

#include <algorithm>
#include <optional>

namespace Mof {

namespace {

constexpr std::string_view kLineEnds = "\r\n";

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
        if (end == std::string_view::npos || text_.find_first_of(kLineEnds) < end)
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
            if (text_.starts_with("//")) {
                (void)take(std::min(text_.find_first_of(kLineEnds), text_.size()));
            } else if (const std::size_t end = text_.find("*/", 2);
                       text_.starts_with("/*") && end != std::string_view::npos) {
                (void)take(end + 2);
            } else {
                return;
            }
        }
    }

    std::string_view text_;
};

}  // namespace

PragmaText readPragma(std::string_view text) {
    constexpr std::string_view kKeyword = "#pragma";
    PragmaText result;
    result.length = std::min(text.find_first_of(kLineEnds), text.size());
    Pieces pieces(text.substr(kKeyword.size()));
    const std::string_view name = pieces.takeName();
    // What stands on the next line is the name of a complete one alone.
    if (text.size() - pieces.left() <= result.length)
        result.pragma.name = TSKString(name);
    if (name.empty() || !pieces.takeSign('('))
        return result;
    const std::optional<std::string_view> value = pieces.takeValue();
    if (!value || !pieces.takeSign(')'))
        return result;
    result.pragma = {.name = TSKString(name), .value = TSKString(*value)};
    result.length = text.size() - pieces.left();
    result.isComplete = true;
    return result;
}

}  // namespace Mof

#include "ObjectManager/Mof/Literals.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string>
#include <system_error>

#include "ObjectManager/Base/Utf8.h"

namespace Mof {

namespace {

struct Digits {
    std::string_view text;
    int radix;
};

Digits digitsOf(std::string_view text) {
    if (text.starts_with("0x") || text.starts_with("0X"))
        return {.text = text.substr(2), .radix = 16};
    if (text.ends_with('b') || text.ends_with('B'))
        return {.text = text.substr(0, text.size() - 1), .radix = 2};
    if (text.size() > 1 && text.starts_with('0'))
        return {.text = text.substr(1), .radix = 8};
    return {.text = text, .radix = 10};
}

// Removes a sign; returns whether it is a minus.
bool takeSign(std::string_view& text) {
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    return isNegative;
}

// Reads the escapes of a literal, one after the other.
class Unescaper {
  public:
    Unescaper(std::string_view text, std::size_t offset, const ReportFault& onError)
        : text_(text), offset_(offset), onError_(onError) {}

    TSKString read() {
        TSKString result;
        result.reserve(text_.size());
        while (position_ < text_.size()) {
            const std::size_t escape = std::min(text_.find('\\', position_), text_.size());
            result.append(text_.data() + position_, escape - position_);
            position_ = escape;
            if (position_ < text_.size())
                readEscape(result);
        }
        return result;
    }

  private:
    void readEscape(TSKString& result) {
        const std::size_t start = position_;
        position_ += 2;
        switch (text_[start + 1]) {
            case 'b':
                result += '\b';
                break;
            case 't':
                result += '\t';
                break;
            case 'n':
                result += '\n';
                break;
            case 'f':
                result += '\f';
                break;
            case 'r':
                result += '\r';
                break;
            case '"':
            case '\'':
            case '\\':
                result += text_[start + 1];
                break;
            case 'x':
            case 'X':
                readCodePoint(result, start);
                break;
            default:
                onError_(offset_ + start, "this escape does not exist");
        }
    }

    // \x and one to four hexadecimal digits; characters beyond the basic plane are two of them.
    void readCodePoint(TSKString& result, std::size_t start) {
        const std::optional<char32_t> first = readHexadecimal();
        if (!first) {
            onError_(offset_ + start, "\\x needs hexadecimal digits");
            return;
        }
        const char32_t code = Base::isHighSurrogate(*first) ? joinedToNext(*first) : *first;
        if (code == 0 || Base::isHighSurrogate(code) || Base::isLowSurrogate(code))
            onError_(offset_ + start, "this escape stands for no character");
        else
            Base::appendCodePoint(result, code);
    }

    // The character that `high` and the escape that follows stand for; `high` if no second half
    // follows.
    char32_t joinedToNext(char32_t high) {
        const std::string_view escape = text_.substr(position_, 2);
        if (escape == "\\x" || escape == "\\X") {
            position_ += 2;
            const std::optional<char32_t> low = readHexadecimal();
            if (low && Base::isLowSurrogate(*low))
                return 0x10000 + ((high - 0xD800) << 10U) + (*low - 0xDC00);
        }
        return high;
    }

    // None without a digit.
    std::optional<char32_t> readHexadecimal() {
        constexpr std::size_t kMostDigits = 4;
        const std::string_view digits = text_.substr(position_, kMostDigits);
        std::uint32_t code = 0;
        const auto [end, error] =
            std::from_chars(digits.data(), digits.data() + digits.size(), code, 16);
        position_ += static_cast<std::size_t>(end - digits.data());
        if (error != std::errc())
            return std::nullopt;
        return code;
    }

    std::string_view text_;
    std::size_t offset_;
    const ReportFault& onError_;
    std::size_t position_ = 0;
};

// Whether the last character is a backslash that is not itself escaped.
bool endsWithEscape(std::string_view text) noexcept {
    const std::size_t last = text.find_last_not_of('\\');
    return last != std::string_view::npos && (text.size() - last) % 2 == 0;
}

// The only character of a text, if it is one of the basic plane; otherwise 0.
char16_t onlyCharacter(std::string_view text) {
    constexpr char32_t kLastOfBasicPlane = 0xFFFF;
    const auto [code, length] = Base::decodeCodePoint(text);
    return length == text.size() && code <= kLastOfBasicPlane ? static_cast<char16_t>(code) : 0;
}

}  // namespace

Literal booleanLiteral(bool truth) {
    Literal literal;
    literal.kind = Literal::Kind::kBoolean;
    literal.truth = truth;
    return literal;
}

Literal integerLiteral(std::string_view text, std::size_t offset, const ReportFault& onError) {
    Literal literal;
    literal.kind = Literal::Kind::kInteger;
    literal.isNegative = takeSign(text);
    const Digits digits = digitsOf(text);
    const auto [end, error] =
        std::from_chars(digits.text.data(), digits.text.data() + digits.text.size(),
                        literal.magnitude, digits.radix);
    constexpr std::uint64_t kMostNegative = std::uint64_t{1} << 63U;
    if (error != std::errc() || (literal.isNegative && literal.magnitude > kMostNegative)) {
        literal.magnitude = std::numeric_limits<std::uint64_t>::max();
        onError(offset, "this number does not fit into 64 bits");
    }
    return literal;
}

Literal realLiteral(std::string_view text, std::size_t offset, const ReportFault& onError) {
    Literal literal;
    literal.kind = Literal::Kind::kReal;
    const bool isNegative = takeSign(text);
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), literal.real);
    if (error != std::errc())
        onError(offset, "this number is beyond the range of real64");
    if (isNegative)
        literal.real = -literal.real;
    return literal;
}

StringText readString(std::string_view text) noexcept {
    std::size_t start = 1;
    while (true) {
        // Nothing after the next quotation mark is searched: a line may have many strings, and a
        // string many quotation marks.
        const std::size_t quote = std::min(text.find('"', start), text.size());
        const std::size_t lineEnd = std::min(text.substr(0, quote).find('\n', start), quote);
        const std::size_t end = std::min(text.substr(0, lineEnd).find('\r', start), lineEnd);
        const bool isEscaped = endsWithEscape(text.substr(0, end));
        if (end == text.size() || text[end] != '"')
            return {.length = isEscaped ? end - 1 : end, .isClosed = false};
        if (!isEscaped)
            return {.length = end + 1, .isClosed = true};
        start = end + 1;
    }
}

TSKString unescape(std::string_view text, std::size_t offset, const ReportFault& onError) {
    if (text.find('\\') == std::string_view::npos)
        return TSKString(text);
    return Unescaper(text, offset, onError).read();
}

Literal characterLiteral(std::string_view text, std::size_t offset, const ReportFault& onError) {
    Literal literal;
    literal.kind = Literal::Kind::kCharacter;
    bool hasFault = false;
    const ReportFault onEscapeError = [&](std::size_t place, const std::string& message) {
        hasFault = true;
        onError(place, message);
    };
    const char16_t code = onlyCharacter(unescape(text, offset, onEscapeError));
    if (code == 0 && !hasFault)
        onError(offset, "a char16 literal holds one character of the basic plane");
    literal.character = code;
    return literal;
}

}  // namespace Mof

#include "ObjectManager/Comparison/ValueSet.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <limits>

#include "ObjectManager/Base/Text.h"

namespace Comparison {

namespace {

struct IntegerType {
    std::string_view name;
    bool isSigned;
    unsigned bits;
};
constexpr std::array<IntegerType, 8> kIntegerTypes = {{
    {"byte", true, 8},
    {"short", true, 16},
    {"int", true, 32},
    {"long", true, 64},
    {"unsignedByte", false, 8},
    {"unsignedShort", false, 16},
    {"unsignedInt", false, 32},
    {"unsignedLong", false, 64},
}};

// The number that the whole text is.
template <typename Integer>
std::optional<Integer> parsed(std::string_view text) noexcept {
    // XML Schema allows a plus sign.
    if (text.size() > 1 && text.front() == '+' && text[1] != '-')
        text.remove_prefix(1);
    Integer number = 0;
    const char* const end = text.data() + text.size();
    const auto [stopped, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stopped != end)
        return std::nullopt;
    return number;
}

constexpr std::uint64_t kShift = std::uint64_t{1} << 63U;

}  // namespace

ValueSet::ValueSet(std::string_view type) {
    const auto* const found = std::ranges::find(kIntegerTypes, type, &IntegerType::name);
    if (found == kIntegerTypes.end())
        return;
    isInteger_ = true;
    isSigned_ = found->isSigned;
    const std::uint64_t most = std::numeric_limits<std::uint64_t>::max() >> (64 - found->bits);
    const std::uint64_t half = most / 2 + 1;
    all_ = isSigned_ ? Range{kShift - half, kShift + half - 1} : Range{0, most};
}

std::optional<ValueSet::Number> ValueSet::numberOf(std::string_view text) const noexcept {
    if (!isInteger_)
        return std::nullopt;
    if (!isSigned_)
        return parsed<std::uint64_t>(text);
    const std::optional<std::int64_t> number = parsed<std::int64_t>(text);
    if (!number)
        return std::nullopt;
    return static_cast<std::uint64_t>(*number) ^ kShift;
}

std::string ValueSet::textOf(Number number) const {
    return isSigned_ ? std::to_string(static_cast<std::int64_t>(number ^ kShift))
                     : std::to_string(number);
}

std::string ValueSet::textOf(const Range& range) const {
    if (range.least == range.most)
        return textOf(range.least);
    if (range.most == all_.most)
        return textOf(range.least) + " and more";
    return textOf(range.least) + " to " + textOf(range.most);
}

void ValueSet::addValue(std::string_view text) {
    isRestricted_ = true;
    if (const std::optional<Number> number = numberOf(text))
        ranges_.push_back({*number, *number});
    else
        texts_.emplace(text);
}

void ValueSet::addRange(std::optional<std::string_view> least,
                        std::optional<std::string_view> most) {
    isRestricted_ = true;
    const std::optional<Number> from = least ? numberOf(*least) : all_.least;
    const std::optional<Number> to = most ? numberOf(*most) : all_.most;
    if (isInteger_ && from && to && *from <= *to)
        ranges_.push_back({*from, *to});
    else
        texts_.insert(std::string(least.value_or("")) + ".." + std::string(most.value_or("")));
}

// In order, without overlaps; neighbours are one.
std::vector<ValueSet::Range> ValueSet::merged() const {
    if (isInteger_ && holdsAll())
        return {all_};
    std::vector<Range> sorted = ranges_;
    std::ranges::sort(sorted, {}, &Range::least);
    std::vector<Range> result;
    for (const Range& range : sorted) {
        const bool continues =
            !result.empty() && (range.least == 0 || range.least - 1 <= result.back().most);
        if (continues)
            result.back().most = std::max(result.back().most, range.most);
        else
            result.push_back(range);
    }
    return result;
}

std::vector<ValueSet::Range> ValueSet::rangesNotIn(const ValueSet& other) const {
    const std::vector<Range> others = other.merged();
    std::vector<Range> missing;
    for (Range rest : merged()) {
        bool isCovered = false;
        for (const Range& covered : others) {
            if (covered.most < rest.least)
                continue;
            if (covered.least > rest.most)
                break;
            if (covered.least > rest.least)
                missing.push_back({rest.least, covered.least - 1});
            isCovered = covered.most >= rest.most;
            if (isCovered)
                break;
            rest.least = covered.most + 1;
        }
        if (!isCovered)
            missing.push_back(rest);
    }
    return missing;
}

bool ValueSet::includes(const ValueSet& other) const {
    if (holdsAll())
        return true;
    const bool holdsAllTexts = other.holdsAll() && !isInteger_;
    return !holdsAllTexts && std::ranges::includes(texts_, other.texts_) &&
           other.rangesNotIn(*this).empty();
}

std::string ValueSet::textOfThoseNotIn(const ValueSet& other) const {
    if (other.holdsAll())
        return "";
    if (holdsAll() && !isInteger_)
        return "others";
    std::vector<std::string> shown;
    for (const Range& range : rangesNotIn(other))
        shown.push_back(textOf(range));
    for (const std::string& text : texts_) {
        if (!other.texts_.contains(text))
            shown.push_back(Base::quoted(text));
    }
    constexpr std::size_t kMost = 10;
    if (shown.size() > kMost) {
        shown.resize(kMost);
        shown.emplace_back("...");
    }
    return Base::joined(shown, ", ");
}

}  // namespace Comparison

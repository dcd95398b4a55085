#include "ObjectManager/Repository/DocumentSize.h"

#include <algorithm>
#include <cstdlib>
#include <limits>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Base/Utf8.h"
#include "ObjectManager/Repository/CimClass.h"
#include "Platform/Util/TSKValSlistIterator.h"

namespace Repository {

namespace {

constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

std::uint64_t multiplySizes(std::uint64_t left, std::uint64_t right) noexcept {
    std::uint64_t product = 0;
    return __builtin_mul_overflow(left, right, &product) ? kLargest : product;
}

// What is written around names and values. Types count as "unsignedShort", the longest one.

// A document without members. A class with a name of N bytes has N times the second number more.
constexpr std::uint64_t kClass = 12'000;
constexpr std::uint64_t kNamesOfClass = 16;
constexpr std::uint64_t kProperty = 137;
constexpr std::uint64_t kNamesOfProperty = 2;
constexpr std::uint64_t kMethod = 1'681;
constexpr std::uint64_t kNamesOfMethod = 13;
constexpr std::uint64_t kMethodDescription = 48;
constexpr std::uint64_t kParameter = 84;  // in one direction, and its name once

// Lines of a schema, with the indent that they have below a property.
struct Lines {
    std::uint64_t bytes;
    std::uint64_t count;

    [[nodiscard]] constexpr std::uint64_t indentedBy(std::uint64_t spaces) const noexcept {
        return bytes + count * spaces;
    }
};

constexpr std::uint64_t kIndentOfParameter = 6;  // more than a property has

constexpr Lines kMaxLen{.bytes = 264, .count = 9};
constexpr Lines kValueMap{.bytes = 229, .count = 8};
constexpr Lines kValue{.bytes = 37, .count = 1};
constexpr Lines kUnion{.bytes = 329, .count = 12};
constexpr Lines kUnionMember{.bytes = 152, .count = 4};  // of single values
constexpr Lines kUnionValue{.bytes = 45, .count = 1};
constexpr Lines kInterval{.bytes = 244, .count = 6};   // with both bounds
constexpr Lines kGaps{.bytes = 284 + 24, .count = 8};  // around values and a deeper interval
constexpr Lines kGap{.bytes = 49, .count = 1};

// The length of a text in an attribute.
std::uint64_t attributeLength(std::string_view text) noexcept {
    std::uint64_t length = text.size();
    for (const char byte : text) {
        if (byte == '"')
            length += 5;
        else if (byte == '&' || byte == '\t' || byte == '\n' || byte == '\r')
            length += 4;
        else if (byte == '<' || byte == '>')
            length += 3;
    }
    return length;
}

std::string_view view(const TSKString& text) noexcept {
    return {text.data(), text.length()};
}

// Numbers are read as the documents' maker reads them: an "x" anywhere makes a text hexadecimal,
// and what does not fit is the largest number.

bool isHexadecimal(const TSKString& text) noexcept {
    return view(text).find_first_of("xX") != std::string_view::npos;
}

long numberOf(const TSKString& text) noexcept {
    return std::strtol(text.data(), nullptr, isHexadecimal(text) ? 16 : 10);
}

// Of a number that is written anew.
constexpr std::uint64_t kMaxDigits = 20;

std::uint64_t digitsOf(long number) noexcept {
    std::uint64_t digits = number < 0 ? 2 : 1;
    for (; number / 10 != 0; number /= 10)
        ++digits;
    return digits;
}

// A hexadecimal number may be written as a decimal one, or as it is.
std::uint64_t valueLength(const TSKString& text) noexcept {
    const std::uint64_t length = attributeLength(view(text));
    return isHexadecimal(text) ? std::max(length, kMaxDigits) : length;
}

long numberAfter(long number) noexcept {
    return static_cast<long>(static_cast<unsigned long>(number) + 1UL);  // wraps
}

constexpr std::string_view kDotDot = "..";

bool isRange(const TSKString& entry) noexcept {
    return view(entry).find(kDotDot) != std::string_view::npos;
}

// Counts the numbers below another one among those that were added so far, in logarithmic time: a
// ValueMap may have thousands of "..", each after thousands of numbers. (A Fenwick tree.)
class NumberCounter {
  public:
    // `numbers` are all that may be added.
    explicit NumberCounter(std::vector<long> numbers) : numbers_(std::move(numbers)) {
        std::ranges::sort(numbers_);
        numbers_.erase(std::unique(numbers_.begin(), numbers_.end()), numbers_.end());
        sums_.resize(numbers_.size() + 1);
        isAdded_.resize(numbers_.size());
    }

    void add(long number) {
        const std::size_t place = placeOf(number);
        if (isAdded_[place])
            return;
        isAdded_[place] = true;
        ++count_;
        for (std::size_t node = place + 1; node < sums_.size(); node += node & (~node + 1))
            ++sums_[node];
    }

    // Each number once.
    [[nodiscard]] std::size_t count() const noexcept { return count_; }

    // From 0 up to, but not including, `end`.
    [[nodiscard]] std::size_t countBelow(long end) const {
        return countBefore(placeOf(end)) - countBefore(placeOf(0));
    }

  private:
    [[nodiscard]] std::size_t placeOf(long number) const {
        const auto found = std::ranges::lower_bound(numbers_, number);
        return static_cast<std::size_t>(found - numbers_.begin());
    }

    [[nodiscard]] std::size_t countBefore(std::size_t place) const {
        std::size_t sum = 0;
        for (std::size_t node = place; node > 0; node &= node - 1)
            sum += sums_[node];
        return sum;
    }

    std::vector<long> numbers_;
    std::vector<std::size_t> sums_;
    std::vector<bool> isAdded_;
    std::size_t count_ = 0;
};

std::vector<TSKString> entriesOf(const TSKValSlist<TSKSmrPtr<ITeskValue>>& values) {
    std::vector<TSKString> entries;
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> next(values);
    while (next()) {
        if (next.key())
            entries.push_back(next.key()->toString());
    }
    return entries;
}

bool isLoneDotDot(const TSKString& entry) noexcept {
    return view(entry) == kDotDot;
}

// Adds up what a ValueMap with ranges is written as.
class UnionSize {
  public:
    UnionSize(const std::vector<TSKString>& entries, std::uint64_t indent)
        : entries_(entries), indent_(indent) {
        // Nothing else needs to know which numbers are listed.
        if (std::ranges::any_of(entries, isLoneDotDot))
            listed_.emplace(singleNumbers());
    }

    std::uint64_t measure() {
        std::uint64_t size = kUnion.indentedBy(indent_);
        for (std::size_t index = 0; index < entries_.size(); ++index)
            size = addSizes(size, sizeOfEntry(index));
        return size;
    }

  private:
    [[nodiscard]] std::vector<long> singleNumbers() const {
        std::vector<long> numbers;
        for (const TSKString& entry : entries_) {
            if (!isRange(entry))
                numbers.push_back(numberOf(entry));
        }
        return numbers;
    }

    std::uint64_t sizeOfEntry(std::size_t index) {
        const TSKString& entry = entries_[index];
        if (isRange(entry)) {
            isMemberOpen_ = false;
            return isLoneDotDot(entry) ? sizeOfUnlisted(index) : sizeOfRange(entry);
        }
        if (listed_)
            listed_->add(numberOf(entry));
        const std::uint64_t frame = isMemberOpen_ ? 0 : kUnionMember.indentedBy(indent_);
        isMemberOpen_ = true;
        return frame + kUnionValue.indentedBy(indent_) +
               (isHexadecimal(entry) ? kMaxDigits : attributeLength(view(entry)));
    }

    // One bound may come from a neighbour.
    [[nodiscard]] std::uint64_t sizeOfRange(const TSKString& entry) const {
        return kInterval.indentedBy(indent_) + valueLength(entry) + 2 * kMaxDigits;
    }

    [[nodiscard]] std::uint64_t sizeOfUnlisted(std::size_t index) const {
        const long before = index == 0 ? -1 : numberOf(entries_[index - 1]);
        const long least = numberAfter(before);
        const std::uint64_t interval = kInterval.indentedBy(indent_) + 2 * kMaxDigits;
        if (static_cast<long>(listed_->count()) >= least)
            return interval;
        const auto end = static_cast<std::uint64_t>(before);
        const std::uint64_t gaps = end - listed_->countBelow(before);
        const std::uint64_t values =
            multiplySizes(gaps, kGap.indentedBy(indent_) + digitsOf(before));
        return addSizes(values, kGaps.indentedBy(indent_) + interval);
    }

    const std::vector<TSKString>& entries_;
    std::uint64_t indent_;
    std::optional<NumberCounter> listed_;
    bool isMemberOpen_ = false;
};

std::uint64_t sizeOfEnumeration(const std::vector<TSKString>& entries, std::uint64_t indent) {
    std::uint64_t size = kValueMap.indentedBy(indent);
    for (const TSKString& entry : entries)
        size = addSizes(size, kValue.indentedBy(indent) + valueLength(entry));
    return size;
}

std::uint64_t sizeOfValueMap(const CimQualifier& valueMap, std::uint64_t indent) {
    const auto values = valueMap.value()->getArrayValues();
    if (!values)
        return kValueMap.indentedBy(indent);
    const std::vector<TSKString> entries = entriesOf(*values);
    return std::ranges::any_of(entries, isRange) ? UnionSize(entries, indent).measure()
                                                 : sizeOfEnumeration(entries, indent);
}

// What the qualifiers MaxLen and ValueMap add to an element.
template <typename Definition>
std::uint64_t sizeOfRestrictions(const Definition& definition, std::uint64_t indent) {
    static const TSKString kMaxLenName = "MaxLen";
    static const TSKString kValueMapName = "ValueMap";
    std::uint64_t size = 0;
    if (const CimQualifier* const maxLen = definition.getQualifier(kMaxLenName, true))
        size = kMaxLen.indentedBy(indent) + attributeLength(view(maxLen->value()->text()));
    if (const CimQualifier* const valueMap = definition.getQualifier(kValueMapName, false))
        size = addSizes(size, sizeOfValueMap(*valueMap, indent));
    return size;
}

std::uint64_t sizeOfParameter(const CimParameter& parameter) {
    static const TSKString kIn = "In";
    static const TSKString kOut = "Out";
    const int places = isTrue(parameter, kIn) + isTrue(parameter, kOut);
    if (places == 0)
        return 0;
    const std::uint64_t size = addSizes(kParameter + attributeLength(view(parameter.name())),
                                        sizeOfRestrictions(parameter, kIndentOfParameter));
    return multiplySizes(size, static_cast<std::uint64_t>(places));
}

// Of a Description that is written on a definition, as documents insert it.
template <typename Definition>
std::uint64_t descriptionLength(const Definition& definition) {
    static const TSKString kDescription = "Description";
    const CimQualifier* const description = definition.getQualifier(kDescription, false);
    return description == nullptr ? 0 : description->value()->toString().length();
}

// The name that makes a class large stands in the documents once for each method, too.
std::uint64_t sizeOfName(const CimClass& cimClass) {
    return multiplySizes(attributeLength(view(cimClass.name())),
                         kNamesOfClass + cimClass.methods().size());
}

// A name as it stands in a message.
std::string shownName(const TSKString& name) {
    constexpr std::size_t kMaxBytes = 100;
    const std::string_view text = view(name);
    if (text.size() <= kMaxBytes)
        return Base::quoted(text);
    return Base::quoted(text.substr(0, Base::startOfCharacter(text, kMaxBytes))) + "...";
}

template <typename Member>
void takeLarger(LargestPart& largest, const char* kind, const std::vector<const Member*>& members) {
    const auto found = std::ranges::max_element(members, {}, &Member::documentSize);
    if (found == members.end() || (*found)->documentSize() <= largest.size)
        return;
    largest = {.member = std::string((*found)->name()),
               .description = kind + shownName((*found)->name()),
               .size = (*found)->documentSize()};
}

}  // namespace

std::uint64_t addSizes(std::uint64_t left, std::uint64_t right) noexcept {
    std::uint64_t sum = 0;
    return __builtin_add_overflow(left, right, &sum) ? kLargest : sum;
}

std::uint64_t sizeInDocument(const CimProperty& property) {
    return addSizes(kProperty + kNamesOfProperty * attributeLength(view(property.name())),
                    sizeOfRestrictions(property, 0));
}

std::uint64_t sizeInDocument(const CimMethod& method) {
    std::uint64_t size = kMethod + kNamesOfMethod * attributeLength(view(method.name())) +
                         kMethodDescription + descriptionLength(method);
    for (const CimParameter& parameter : method.parameters())
        size = addSizes(size, sizeOfParameter(parameter));
    return size;
}

std::uint64_t documentSizeOf(const CimClass& cimClass) {
    const std::uint64_t own = addSizes(kClass + descriptionLength(cimClass), sizeOfName(cimClass));
    return addSizes(own, cimClass.sizeOfMembers());
}

LargestPart largestPartOf(const CimClass& cimClass) {
    LargestPart largest = {.member = {},
                           .description = "the description of the class",
                           .size = descriptionLength(cimClass)};
    if (const std::uint64_t size = sizeOfName(cimClass); size > largest.size)
        largest = {.member = {}, .description = "the name of the class", .size = size};
    takeLarger(largest, "the property ", cimClass.properties());
    takeLarger(largest, "the method ", cimClass.methods());
    return largest;
}

}  // namespace Repository

#include "Tests/Providers/WsdlWebProvider/RandomValueMaps.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <limits>

// The distributions of <random> differ between libraries, and so does the order in which compilers
// evaluate operands. Hence modulo, and never two draws in one expression.

namespace {

constexpr unsigned long kMaxEntries = 12;

/// The largest number before a lone ".."; every number below it may be written.
constexpr long long kMaxBeforeLoneDotDot = 5000;

constexpr std::array kTypeNames = {
    "string", "char16", "datetime", "real64", "real32", "boolean", "sint64", "uint64",
    "sint32", "uint32", "sint16",   "uint16", "sint8",  "uint8",   "object",
};

constexpr std::array kJunkTexts = {
    "Max",  "max", "a b", "<&>", "",         "\xC3\xA9", "\t",  "\"",   "'",
    "\r\n", " ",   ".",   "-",   "7 apples", "1.5",      "\v3", "face",
};

constexpr std::array kOddHexadecimals = {
    "x", "X", "0x", "0xg", "1x", "x1", "-0x3", " 0x2", "+0xA", "0x1f", "0X1F", "10x", "0x0x1",
};

constexpr std::array kOddRanges = {
    "...",  "....",   ".....", "1..2..3",  "3..4..",    "..5..", "1...",   "1...2",
    "...4", " ..",    ".. ",   "Max..",    "..Max",     "a..b",  "<..&",   "0..",
    "..0",  "0..0",   "-1..",  "..-1",     "-0x2..0x2", "x..x",  "3 .. 5", "\t..\n",
    "9..1", "..0..9", "0x..",  "10..0x20", "..1x",      "1x..2", ". ..",   "0...0",
};

constexpr std::array kLimitNumbers = {
    "9223372036854775806",  "9223372036854775807",  "9223372036854775808",
    "-9223372036854775807", "-9223372036854775808", "-9223372036854775809",
    "0x7ffffffffffffffe",   "0x7fffffffffffffff",   "0X8000000000000000",
    "-0x7fffffffffffffff",  "-0x8000000000000000",  "-0xFFFFFFFFFFFFFFFFFF",
    "18446744073709551615", "18446744073709551616", "99999999999999999999999999",
    "2147483647",           "2147483648",           "4294967296",
    "0x7fffffff",           "0x80000000",           "0xffffffff",
};

/// All read as the largest 64-bit number, after which the next one wraps around.
constexpr std::array kLargestNumbers = {
    "9223372036854775807",
    "9223372036854775808",
    "0x7fffffffffffffff",
    "9223372036854775807..",
};

std::string inBase16(unsigned long value, bool capitals) {
    std::array<char, 20> text{};
    std::snprintf(text.data(), text.size(), capitals ? "%lX" : "%lx", value);
    return text.data();
}

bool holdsDotDot(const std::optional<std::string>& entry) {
    return entry && entry->find("..") != std::string::npos;
}

/// Whether the gaps below the number make a long list. Above the largest number nothing is left,
/// so that one makes none.
bool isLong(long long number) {
    return number > kMaxBeforeLoneDotDot && number != std::numeric_limits<long long>::max();
}

bool makesLongGaps(const std::string& text) {
    return isLong(std::strtoll(text.c_str(), nullptr, 10)) ||
           isLong(std::strtoll(text.c_str(), nullptr, 16));
}

}  // namespace

RandomValueMaps::RandomValueMaps(unsigned long seed) : engine_(seed) {}

RandomValueMaps::Case RandomValueMaps::next() {
    Case result{};
    result.typeName = kTypeNames[below(kTypeNames.size())];
    switch (below(3)) {
        case 0:
            result.entries = valuesOnly();
            break;
        case 1:
            result.entries = valuesAndRanges();
            break;
        default:
            result.entries = countedValuesThenLoneDotDot();
            break;
    }
    shortenGaps(result.entries);
    result.addMaxLength = onceIn(2);
    result.maxLength = static_cast<long>(below(1000));
    if (onceIn(10))
        result.maxLength = -result.maxLength;
    if (onceIn(100))
        result.maxLength = std::numeric_limits<long>::min();
    if (onceIn(100))
        result.maxLength = std::numeric_limits<long>::max();
    return result;
}

unsigned long RandomValueMaps::below(unsigned long limit) {
    return engine_() % limit;
}

bool RandomValueMaps::onceIn(unsigned long times) {
    return below(times) == 0;
}

unsigned long RandomValueMaps::smallNumber() {
    if (onceIn(40))
        return below(301);
    return onceIn(3) ? below(41) : below(9);
}

std::string RandomValueMaps::decimal() {
    const std::string digits = std::to_string(smallNumber());
    switch (below(20)) {
        case 0:
            return "-" + digits;
        case 1:
            return "00" + digits;
        case 2:
            return "+" + digits;
        case 3:
            return "  " + digits;
        case 4:
            return " -" + digits;
        default:
            return digits;
    }
}

std::string RandomValueMaps::hexadecimal() {
    const unsigned long value = smallNumber();
    switch (below(5)) {
        case 0:
            return kOddHexadecimals[below(kOddHexadecimals.size())];
        case 1:
            return "0X" + inBase16(value, true);
        case 2:
            return "0x0" + inBase16(value, true);
        default:
            return "0x" + inBase16(value, false);
    }
}

std::string RandomValueMaps::number() {
    return onceIn(4) ? hexadecimal() : decimal();
}

std::string RandomValueMaps::limitNumber() {
    return kLimitNumbers[below(kLimitNumbers.size())];
}

std::string RandomValueMaps::range() {
    const std::string lower = number();
    const std::string upper = number();
    switch (below(4)) {
        case 0:
            return lower + "..";
        case 1:
            return ".." + upper;
        case 2:
            return lower + ".." + upper;
        default:
            return kOddRanges[below(kOddRanges.size())];
    }
}

std::optional<std::string> RandomValueMaps::listedEntry(const Entries& earlier) {
    if (onceIn(300))
        return limitNumber();
    switch (below(12)) {
        case 0:
            return std::nullopt;
        case 1:
            return kJunkTexts[below(kJunkTexts.size())];
        case 2:
            return earlier.empty() ? number() : earlier[below(earlier.size())];
        default:
            return number();
    }
}

std::optional<std::string> RandomValueMaps::entry(const Entries& earlier) {
    if (onceIn(400)) {
        const std::string limit = limitNumber();
        return onceIn(2) ? limit + ".." : ".." + limit;
    }
    switch (below(8)) {
        case 0:
            return "..";
        case 1:
        case 2:
            return range();
        default:
            return listedEntry(earlier);
    }
}

RandomValueMaps::Entries RandomValueMaps::valuesOnly() {
    Entries entries;
    const unsigned long count = below(kMaxEntries + 1);
    while (entries.size() < count)
        entries.push_back(listedEntry(entries));
    return entries;
}

RandomValueMaps::Entries RandomValueMaps::valuesAndRanges() {
    Entries entries;
    const unsigned long count = 1 + below(kMaxEntries);
    while (entries.size() < count)
        entries.push_back(entry(entries));
    if (onceIn(8))
        entries.front() = "..";
    if (onceIn(4))
        entries.back() = "..";
    if (std::none_of(entries.begin(), entries.end(), holdsDotDot)) {
        const unsigned long position = below(count);
        entries[position] = onceIn(2) ? range() : "..";
    }
    return entries;
}

RandomValueMaps::Entries RandomValueMaps::countedValuesThenLoneDotDot() {
    Entries entries;
    const unsigned long counted = 1 + below(6);
    for (unsigned long value = 0; value < counted; ++value) {
        if (onceIn(16))
            continue;
        if (onceIn(16))
            entries.push_back(std::nullopt);
        entries.push_back(onceIn(4) ? "0x" + inBase16(value, false) : std::to_string(value));
    }
    if (onceIn(8))
        std::reverse(entries.begin(), entries.end());
    // A range in between is not listed, but it is what the lone ".." looks back on.
    if (onceIn(8))
        entries.push_back(range());
    if (onceIn(8))
        entries.push_back(std::to_string(counted) + "..");
    if (onceIn(60))
        entries.push_back(kLargestNumbers[below(kLargestNumbers.size())]);
    while (entries.size() > kMaxEntries - 1)
        entries.pop_back();
    entries.push_back("..");
    const unsigned long count = entries.size() + below(kMaxEntries + 1 - entries.size());
    while (entries.size() < count)
        entries.push_back(entry(entries));
    return entries;
}

void RandomValueMaps::shortenGaps(Entries& entries) {
    std::optional<std::string>* previous = nullptr;
    for (std::optional<std::string>& current : entries) {
        if (!current)
            continue;
        if (*current == ".." && previous != nullptr && makesLongGaps(**previous)) {
            *previous = std::to_string(smallNumber());
        }
        previous = &current;
    }
}

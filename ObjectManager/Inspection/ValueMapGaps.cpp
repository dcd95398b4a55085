#include "ObjectManager/Inspection/ValueMapGaps.h"

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <iterator>
#include <set>
#include <string>
#include <string_view>

#include "Platform/Util/TSKValSlistIterator.h"

namespace Inspection {

namespace {

// As documents read it, which know decimal and hexadecimal numbers of up to 63 bits; larger ones
// are the largest.
long numberOf(const std::string& text) {
    const bool isHexadecimal = text.find_first_of("xX") != std::string::npos;
    return std::strtol(text.c_str(), nullptr, isHexadecimal ? 16 : 10);
}

// What stands above the largest number is a range without gaps, and so is what follows as many
// listed values as there are up to the number.
unsigned long gapsBelow(long number, const std::set<long>& listed) {
    if (number <= 0 || number == LONG_MAX || listed.size() > static_cast<std::size_t>(number))
        return 0;
    const auto among = std::distance(listed.lower_bound(0), listed.lower_bound(number));
    return static_cast<unsigned long>(number - among);
}

}  // namespace

unsigned long countGaps(const ITeskValue& valueMap) {
    constexpr std::string_view kDotDot = "..";
    const auto values = valueMap.getArrayValues();
    if (!values)
        return 0;
    unsigned long gaps = 0;
    std::set<long> listed;
    long before = -1;
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> next(*values);
    while (next()) {
        if (!next.key())
            continue;
        const std::string entry(next.key()->toString());
        if (entry == kDotDot)
            gaps += std::min(gapsBelow(before, listed), ULONG_MAX - gaps);
        else if (entry.find(kDotDot) == std::string::npos)
            listed.insert(numberOf(entry));
        before = numberOf(entry);
    }
    return gaps;
}

}  // namespace Inspection

#include "ObjectManager/Commands/NumberText.h"

#include <cstdio>
#include <iterator>

namespace Commands {

namespace {

std::string fixed(double number, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, number);
    return text;
}

}  // namespace

std::string groupedDigits(std::size_t number) {
    std::string digits = std::to_string(number);
    for (std::size_t end = digits.size(); end > 3; end -= 3)
        digits.insert(end - 3, 1, ',');
    return digits;
}

std::string counted(std::size_t number, std::string_view singular, std::string_view plural) {
    return groupedDigits(number) + " " + std::string(number == 1 ? singular : plural);
}

std::string bytesText(std::size_t bytes) {
    constexpr const char* kUnits[] = {"KB", "MB", "GB", "TB"};
    constexpr double kThousand = 1000;
    constexpr double kRoundsToThousand = 999.95;
    if (bytes < 1000)
        return counted(bytes, "byte", "bytes");
    double size = static_cast<double>(bytes) / kThousand;
    const char* const* unit = std::begin(kUnits);
    while (size >= kRoundsToThousand && unit + 1 != std::end(kUnits)) {
        size /= kThousand;
        ++unit;
    }
    return fixed(size, 1) + " " + *unit;
}

std::string secondsText(double seconds) {
    return fixed(seconds, 2) + " s";
}

}  // namespace Commands

#include "ObjectManager/Commands/NamePattern.h"

#include <cstddef>

#include "ObjectManager/Base/NameMap.h"

namespace Commands {

bool isNamePattern(std::string_view text) noexcept {
    return text.find_first_of("*?") != std::string_view::npos;
}

bool matchesNamePattern(std::string_view name, std::string_view pattern) noexcept {
    std::size_t inName = 0;
    std::size_t inPattern = 0;
    // The last star, and how far the name goes that it stands for. An earlier star never needs to
    // stand for more than it did when a later one was reached.
    std::size_t star = std::string_view::npos;
    std::size_t starEnd = 0;
    while (inName < name.size()) {
        if (inPattern < pattern.size() && pattern[inPattern] == '*') {
            star = inPattern++;
            starEnd = inName;
        } else if (inPattern < pattern.size() &&
                   (pattern[inPattern] == '?' ||
                    Base::lowerCase(pattern[inPattern]) == Base::lowerCase(name[inName]))) {
            ++inPattern;
            ++inName;
        } else if (star != std::string_view::npos) {
            inPattern = star + 1;
            inName = ++starEnd;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', inPattern) == std::string_view::npos;
}

}  // namespace Commands

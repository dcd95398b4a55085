#include "ObjectManager/Base/NamePattern.h"

#include <fnmatch.h>

namespace Base {

// Brackets and backslashes stand for themselves.
NamePattern::NamePattern(std::string_view text) {
    for (const char byte : text) {
        if (byte == '[' || byte == '\\')
            pattern_ += '\\';
        pattern_ += byte;
    }
}

bool NamePattern::fits(const char* name) const noexcept {
    return fnmatch(pattern_.c_str(), name, FNM_CASEFOLD) == 0;
}

}  // namespace Base

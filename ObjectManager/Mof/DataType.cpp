#include "ObjectManager/Mof/DataType.h"

#include <cstddef>

namespace Mof {

const char* keywordOf(DataType type) noexcept {
    static constexpr const char* kKeywords[] = {
        "uint8",  "sint8",  "uint16", "sint16", "uint32",  "sint32",   "uint64", "sint64",
        "real32", "real64", "char16", "string", "boolean", "datetime", "ref",
    };
    return kKeywords[static_cast<std::size_t>(type)];
}

}  // namespace Mof

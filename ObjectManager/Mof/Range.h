#pragma once

#include <cstddef>

namespace Mof {

/// The bytes of a source text from `begin` to before `end`.
struct Range {
    std::size_t begin = 0;
    std::size_t end = 0;
};

}  // namespace Mof

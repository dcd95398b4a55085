#pragma once

#include <cstddef>

namespace Mof {

/// Where something stands: a byte of one of the files that were compiled.
struct Position {
    std::size_t file = 0;    ///< its number in Compilation::files
    std::size_t offset = 0;  ///< from the beginning of its text
};

}  // namespace Mof

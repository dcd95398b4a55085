#pragma once

#include <cstddef>

namespace Security {

/// Fills `length` bytes at `bytes` from the random source of the system.
/// Errors: TeskBaseException when it gives none.
void fillWithRandomBytes(unsigned char* bytes, std::size_t length);

}  // namespace Security

#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Numbers as people read them.

namespace Commands {

/// "1,234,567".
[[nodiscard]] std::string groupedDigits(std::size_t number);

/// "1 class", "1,438 classes".
[[nodiscard]] std::string counted(std::size_t number, std::string_view singular,
                                  std::string_view plural);

/// "512 bytes", "43.1 KB", "1.2 MB": thousands, not 1,024s.
[[nodiscard]] std::string bytesText(std::size_t bytes);

/// "0.52 s".
[[nodiscard]] std::string secondsText(double seconds);

}  // namespace Commands

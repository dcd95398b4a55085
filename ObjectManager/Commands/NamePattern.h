#pragma once

#include <string_view>

namespace Commands {

/// Whether `text` is a pattern and no name: holds `*`, which stands for any bytes, or `?`, which
/// stands for one byte.
[[nodiscard]] bool isNamePattern(std::string_view text) noexcept;

/// Whether all of `name` is what `pattern` describes, in any case. Takes time proportional to the
/// product of the lengths at worst.
[[nodiscard]] bool matchesNamePattern(std::string_view name, std::string_view pattern) noexcept;

}  // namespace Commands

#pragma once

#include <string_view>

namespace Commands {

/// What keeps `name`, such as one that comes out of a MOF file, from being the name of a file or a
/// folder inside a given folder: "is empty", "is \"..\"", "holds a \"/\"", "holds a zero byte", "is
/// longer than 255 bytes". Empty when nothing does.
[[nodiscard]] std::string_view faultOfFileName(std::string_view name) noexcept;

}  // namespace Commands

#pragma once

#include <string>
#include <string_view>

namespace Http {

/// `text` as it may stand in a line of the log, whoever it comes from: what is not printable ASCII
/// is written as \xHH, a backslash as \\; after 200 bytes "..." stands for the rest.
[[nodiscard]] std::string toLogText(std::string_view text);

}  // namespace Http

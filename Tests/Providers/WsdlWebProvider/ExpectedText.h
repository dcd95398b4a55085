#pragma once

#include <cstddef>
#include <string>
#include <string_view>

/// How tests write expected texts of many lines.
namespace ExpectedText {

/// A text that begins on a line of its own in the test.
[[nodiscard]] inline std::string block(std::string_view lines) {
    return std::string(lines.substr(1));
}

/// `lines` with `value` wherever `placeholder` stands.
[[nodiscard]] inline std::string with(std::string_view placeholder, std::string_view value,
                                      std::string lines) {
    for (std::size_t position = lines.find(placeholder); position != std::string::npos;
         position = lines.find(placeholder, position + value.size()))
        lines.replace(position, placeholder.size(), value);
    return lines;
}

/// How often `part` stands in `whole`.
[[nodiscard]] inline std::size_t count(std::string_view whole, std::string_view part) {
    std::size_t found = 0;
    for (std::size_t position = whole.find(part); position != std::string_view::npos;
         position = whole.find(part, position + part.size()))
        ++found;
    return found;
}

}  // namespace ExpectedText

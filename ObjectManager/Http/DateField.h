#pragma once

#include <ctime>
#include <string>

namespace Http {

/// The field "Date" for that time, with the end of its line (RFC 9110, sections 5.6.7 and 6.6.1).
/// The year has four digits.
[[nodiscard]] std::string formatDateField(std::time_t time);

/// The one for now. Formats once a second and thread, so the result is valid until the next call by
/// the same thread. May be used by several threads at once.
[[nodiscard]] const std::string& currentDateField();

}  // namespace Http

#pragma once

#include <string_view>

namespace Http {

/// Writes a line to the log, as an error of the front end. What comes from outside goes through
/// toLogText first. May be used by several threads at once.
void logError(std::string_view line);

}  // namespace Http

#pragma once

#include <string>

#include "Platform/Util/TeskTraceLog.h"

namespace Commands {

/// Logs what the service itself does, as opposed to its parts: with the component "tesk".
///
/// Thread safety: may be called by several threads at once.
void logService(TeskTraceLog::Severity severity, const std::string& message);

}  // namespace Commands

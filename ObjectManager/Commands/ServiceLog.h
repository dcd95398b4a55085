#pragma once

#include <string>

#include "Platform/Util/TeskTraceLog.h"

namespace Commands {

/// Logs what the service itself does, as opposed to its parts.
void logService(TeskTraceLog::Severity severity, const std::string& message);

}  // namespace Commands

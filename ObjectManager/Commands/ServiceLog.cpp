#include "ObjectManager/Commands/ServiceLog.h"

#include "Platform/Util/TSKLog.h"

namespace Commands {

void logService(TeskTraceLog::Severity severity, const std::string& message) {
    TSKLog::log("tesk", TSKString(message), severity, TeskTraceLog::VerbosityNormal, 0,
                TSKLog::CIMOMLOG);
}

}  // namespace Commands

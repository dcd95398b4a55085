#include "ObjectManager/Http/ErrorLog.h"

#include "Platform/Util/TSKLog.h"

namespace Http {

void logError(std::string_view line) {
    TSKLog::log("HttpFrontEnd", TSKString(line), TeskTraceLog::SeverityError,
                TeskTraceLog::VerbosityNormal, 0, TSKLog::CIMOMLOG);
}

}  // namespace Http

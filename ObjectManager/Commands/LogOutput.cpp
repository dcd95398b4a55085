#include "ObjectManager/Commands/LogOutput.h"

#include <cerrno>
#include <string>
#include <system_error>

#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TSKStreamLogSink.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

LogOutput::LogOutput(const Configuration::LogSettings& settings) {
    TSKLog::setLevel(static_cast<TeskTraceLog::Severity>(settings.level));
    if (settings.file.empty())
        return;
    file_.reset(std::fopen(settings.file.c_str(), "ae"));
    if (!file_) {
        const std::string reason = std::generic_category().message(errno);
        const std::string message =
            "the log file " + settings.file + " cannot be written: " + reason;
        throw TeskBaseException("LogOutput", TSKString(message), CIM_ERR_FAILED);
    }
    // A line is in the file when it was written, also when the process is killed.
    std::setvbuf(file_.get(), nullptr, _IOLBF, BUFSIZ);
    before_ = TSKLog::setSink(TSKSmrPtr<TSKStreamLogSink>::make(file_.get()));
}

LogOutput::~LogOutput() {
    if (file_)
        TSKLog::setSink(before_);
}

}  // namespace Commands

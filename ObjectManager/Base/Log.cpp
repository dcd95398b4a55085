#include "ObjectManager/Base/Log.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <new>
#include <system_error>
#include <utility>

#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TSKStreamLogSink.h"
#include "Platform/Util/TSKString.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Base {

namespace {

struct Close {
    void operator()(std::FILE* file) const noexcept { (void)std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, Close>;

// Closes its file once no thread writes a line through it any more.
class FileLogSink final : public TSKStreamLogSink {
  public:
    explicit FileLogSink(File file) : TSKStreamLogSink(file.get()), file_(std::move(file)) {}

  private:
    File file_;
};

TSKSmrPtr<TSKLogSink> openSink(const std::string& path) {
    File file(std::fopen(path.c_str(), "ae"));
    if (!file) {
        const std::string reason = std::generic_category().message(errno);
        const std::string message = "the log file " + path + " cannot be written: " + reason;
        throw TeskBaseException("Base::LogOutput", TSKString(message), CIM_ERR_FAILED);
    }
    // A line is in the file as soon as it is written, even if the process is killed then.
    (void)std::setvbuf(file.get(), nullptr, _IOLBF, BUFSIZ);
    return TSKSmrPtr<FileLogSink>::make(std::move(file));
}

}  // namespace

void log(std::string_view component, TeskTraceLog::Severity severity, std::string_view text) {
    try {
        TSKLog::log(TSKString(component), TSKString(text), severity, TeskTraceLog::VerbosityNormal,
                    0, TSKLog::CIMOMLOG);
    } catch (const std::bad_alloc&) {
        // The line is lost; the caller goes on.
    }
}

LogOutput::LogOutput(std::string path, TeskTraceLog::Severity level) : path_(std::move(path)) {
    TSKLog::setLevel(level);
    if (!path_.empty())
        before_ = TSKLog::setSink(openSink(path_));
}

LogOutput::~LogOutput() {
    if (!path_.empty())
        TSKLog::setSink(before_);
}

void LogOutput::reopen() const {
    if (!path_.empty())
        TSKLog::setSink(openSink(path_));
}

}  // namespace Base

#include "ObjectManager/Commands/LogOutput.h"

#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>
#include <utility>

#include "Platform/Util/TSKLog.h"
#include "Platform/Util/TSKStreamLogSink.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

struct Close {
    void operator()(std::FILE* file) const noexcept { (void)std::fclose(file); }
};

using File = std::unique_ptr<std::FILE, Close>;

// Closes its file when the last thread that writes a line has let go of it.
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
        throw TeskBaseException("LogOutput", TSKString(message), CIM_ERR_FAILED);
    }
    // A line is in the file when it was written, also when the process is killed.
    (void)std::setvbuf(file.get(), nullptr, _IOLBF, BUFSIZ);
    return TSKSmrPtr<FileLogSink>::make(std::move(file));
}

}  // namespace

LogOutput::LogOutput(const Configuration::LogSettings& settings) : path_(settings.file) {
    TSKLog::setLevel(static_cast<TeskTraceLog::Severity>(settings.level));
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

}  // namespace Commands

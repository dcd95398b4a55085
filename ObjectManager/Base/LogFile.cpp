#include "ObjectManager/Base/LogFile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <sys/uio.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Base {

namespace {

constexpr mode_t kPermissions = 0640;

[[noreturn]] void fail(const std::string& path, const std::string& reason) {
    const std::string message = "the log file " + path + " cannot be written: " + reason;
    throw TeskBaseException("Base::LogFile", TSKString(message), CIM_ERR_FAILED);
}

// Of what the paths "/dev/stdout" and "/dev/stderr" lead to, a socket cannot be opened.
int openPath(const std::string& path) noexcept {
    if (path == "/dev/stdout")
        return fcntl(STDOUT_FILENO, F_DUPFD_CLOEXEC, 0);
    if (path == "/dev/stderr")
        return fcntl(STDERR_FILENO, F_DUPFD_CLOEXEC, 0);
    constexpr int kFlags = O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK;
    return open(path.c_str(), kFlags, kPermissions);
}

bool isStandardStream(const std::string& path) noexcept {
    return path == "/dev/stdout" || path == "/dev/stderr";
}

bool isNullDevice(const struct stat& status) noexcept {
    return S_ISCHR(status.st_mode) && status.st_rdev == makedev(1, 3);
}

FileDescriptor openLog(const std::string& path) {
    FileDescriptor file(openPath(path));
    // What opening a pipe that nobody reads fails with, when it does not wait.
    if (!file.isOpen() && errno == ENXIO)
        fail(path, "it is not a regular file");
    struct stat status = {};
    if (!file.isOpen() || fstat(file.get(), &status) != 0)
        fail(path, std::generic_category().message(errno));
    if (!S_ISREG(status.st_mode) && !isNullDevice(status) && !isStandardStream(path))
        fail(path, "it is not a regular file");
    return file;
}

}  // namespace

LogFile::LogFile(std::string path) : path_(std::move(path)), file_(openLog(path_)) {}

void LogFile::reopen() {
    const FileDescriptor file = openLog(path_);
    // In one step, so that other threads go on writing meanwhile.
    if (dup3(file.get(), file_.get(), O_CLOEXEC) < 0)
        fail(path_, std::generic_category().message(errno));
}

std::uint64_t LogFile::write(std::string_view line) noexcept {
    if (writeWhole(line))
        return lost_ == 0 ? 0 : lost_.exchange(0);
    if (lost_.fetch_add(1) == 0) {
        (void)dprintf(STDERR_FILENO,
                      "tesk: the log file %s cannot be written: %s; its lines are lost until it "
                      "can\n",
                      path_.c_str(), errno == 0 ? "a line was cut short" : std::strerror(errno));
    }
    return 0;
}

bool LogFile::writeWhole(std::string_view line) noexcept {
    char lineEnd = '\n';
    iovec parts[] = {{.iov_base = &lineEnd, .iov_len = 1},
                     {.iov_base = const_cast<char*>(line.data()), .iov_len = line.size()}};
    const bool endsCutLine = isCut_.exchange(false);
    ssize_t count = 0;
    do {
        count = endsCutLine ? writev(file_.get(), parts, 2)
                            : ::write(file_.get(), line.data(), line.size());
    } while (count < 0 && errno == EINTR);
    const std::size_t length = line.size() + (endsCutLine ? 1 : 0);
    if (count >= 0 && static_cast<std::size_t>(count) == length)
        return true;
    if (count > 0)
        errno = 0;
    if (count > 0 || endsCutLine)
        isCut_ = true;
    return false;
}

}  // namespace Base

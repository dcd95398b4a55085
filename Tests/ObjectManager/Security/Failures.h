#pragma once

#include <csignal>
#include <string>
#include <sys/resource.h>

#include "Platform/Util/TeskBaseException.h"

/// The message of the TeskBaseException that `operation` throws; "no failure" if it throws none.
template <typename Operation>
std::string failureOf(const Operation& operation) {
    try {
        operation();
    } catch (const TeskBaseException& exception) {
        return exception.getMessage().data();
    }
    return "no failure";
}

/// While this lives, the process can write no more than so many bytes to a file, as on a full disk.
class FileSizeLimit {
  public:
    explicit FileSizeLimit(rlim_t size) {
        // The signal would end the process before write() can fail.
        previousAction_ = signal(SIGXFSZ, SIG_IGN);
        getrlimit(RLIMIT_FSIZE, &previous_);
        rlimit limit = previous_;
        limit.rlim_cur = size;
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    FileSizeLimit(const FileSizeLimit&) = delete;
    FileSizeLimit& operator=(const FileSizeLimit&) = delete;
    ~FileSizeLimit() {
        setrlimit(RLIMIT_FSIZE, &previous_);
        static_cast<void>(signal(SIGXFSZ, previousAction_));
    }

  private:
    rlimit previous_ = {};
    void (*previousAction_)(int) = nullptr;
};

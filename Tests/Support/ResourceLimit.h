#pragma once

#include <csignal>
#include <sys/resource.h>

/// Lowers a limit of the process while this lives. With RLIMIT_FSIZE a file takes so many bytes and
/// no more, much as on a full disk; the signal that the system sends then is ignored for the time.
class ResourceLimit {
  public:
    /// `resource` is one such as RLIMIT_NOFILE.
    ResourceLimit(int resource, rlim_t value) : resource_(resource) {
        previousAction_ = std::signal(SIGXFSZ, SIG_IGN);
        getrlimit(static_cast<__rlimit_resource>(resource_), &before_);
        const rlimit limit = {.rlim_cur = value, .rlim_max = before_.rlim_max};
        setrlimit(static_cast<__rlimit_resource>(resource_), &limit);
    }
    ResourceLimit(const ResourceLimit&) = delete;
    ResourceLimit& operator=(const ResourceLimit&) = delete;
    ~ResourceLimit() {
        setrlimit(static_cast<__rlimit_resource>(resource_), &before_);
        (void)std::signal(SIGXFSZ, previousAction_);
    }

  private:
    int resource_;
    rlimit before_ = {};
    void (*previousAction_)(int) = nullptr;
};

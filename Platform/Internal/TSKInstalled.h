#pragma once

#include <mutex>

#include "Platform/Util/TSKSmrPtr.h"

/// The place where the object manager installs one of its services for the whole process: a static
/// object, empty at first. It is initialised statically, and its destructor releases nothing, since
/// other threads may still use the service while the process runs its exit handlers.
///
/// Thread safety: may be used by several threads at once. A service that was got stays alive, also
/// when another one is installed meanwhile.
template <typename T>
class TSKInstalled {
  public:
    constexpr TSKInstalled() noexcept : service_() {}
    TSKInstalled(const TSKInstalled&) = delete;
    TSKInstalled& operator=(const TSKInstalled&) = delete;
    // The default would be deleted: the union below has a member with a destructor.
    ~TSKInstalled() {}  // NOLINT(modernize-use-equals-default)

    [[nodiscard]] TSKSmrPtr<T> get() const {
        const std::lock_guard lock(mutex_);
        return service_;
    }

    /// Returns what was installed before. Null installs nothing.
    TSKSmrPtr<T> install(TSKSmrPtr<T> service) {
        const std::lock_guard lock(mutex_);
        service_.swap(service);
        return service;
    }

  private:
    mutable std::mutex mutex_;
    union {                     // so that no destructor runs
        TSKSmrPtr<T> service_;  // guarded by mutex_
    };
};

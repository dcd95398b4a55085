#pragma once

#include <mutex>

#include "Platform/Util/TSKSmrPtr.h"

/// The place where the object manager installs one of its services for the whole process. Empty
/// until then.
///
/// Thread safety: may be used by several threads at once. Whoever got the service keeps it alive,
/// also when another one is installed meanwhile.
template <typename T>
class TSKInstalled {
  public:
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
    TSKSmrPtr<T> service_;  // guarded by mutex_
};

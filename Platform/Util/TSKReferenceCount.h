#pragma once

#include <atomic>

#include "Platform/Util/Export.h"

/// The number of TSKSmrPtr that own an object.
///
/// A class that derives from it carries its own count, which saves TSKSmrPtr an allocation; for
/// other classes TSKSmrPtr makes one. An object that derives from it may also live on the stack, as
/// long as no TSKSmrPtr is made from it.
///
/// Thread safety: may be used by several threads at once.
class TESK_PLATFORM_EXPORT TSKReferenceCount {
  public:
    TSKReferenceCount(const TSKReferenceCount&) = delete;
    TSKReferenceCount& operator=(const TSKReferenceCount&) = delete;
    virtual ~TSKReferenceCount();

    void addOwner() noexcept { owners_.fetch_add(1, std::memory_order_relaxed); }

    /// As addOwner, for an object that no other thread knows yet: spares the locked instruction.
    void addFirstOwner() noexcept {
        owners_.store(owners_.load(std::memory_order_relaxed) + 1, std::memory_order_relaxed);
    }

    /// Deletes this object with its last owner.
    void removeOwner() noexcept {
        // A sole owner needs no locked instruction: no other is left that could add one.
        if (owners_.load(std::memory_order_acquire) == 1 ||
            owners_.fetch_sub(1, std::memory_order_acq_rel) == 1)
            delete this;
    }

    /// A snapshot; other threads may change it at any time.
    [[nodiscard]] long owners() const noexcept { return owners_.load(std::memory_order_relaxed); }

  protected:
    TSKReferenceCount() noexcept = default;

  private:
    std::atomic<long> owners_{0};
};

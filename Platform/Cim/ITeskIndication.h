#pragma once

#include "Platform/Cim/ITeskInstance.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"

/// A notice that something happened (DSP1054, "Indications").
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT ITeskIndication {
  public:
    /// What an indication tells of: a change of instances, or an event of its own.
    enum IndicationType : int {
        InstanceCreation,
        InstanceDeletion,
        InstanceModification,
        Process,
    };

    virtual ~ITeskIndication();

    [[nodiscard]] virtual IndicationType getIndicationType() const = 0;

    /// The instance of the indication class.
    [[nodiscard]] virtual TSKSmrPtr<ITeskInstance> getInstance() const = 0;
};

#pragma once

#include "Platform/Cim/ITeskInstance.h"
#include "Platform/Cim/ITeskInstanceName.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"

/// The object manager's own store of instances, for providers that keep theirs there.
///
/// Thread safety: may be used by several threads at once.
class TESK_PLATFORM_EXPORT ITeskInstanceManager {
  public:
    virtual ~ITeskInstanceManager();

    /// Null when there is no such instance.
    [[nodiscard]] virtual TSKSmrPtr<ITeskInstance> find(
        const TSKSmrPtr<ITeskInstanceName>& name) const = 0;
};

#pragma once

#include "Platform/Cim/ITeskInstanceName.h"
#include "Platform/Cim/ITeskValue.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"

/// An instance of a class.
///
/// Thread safety: belongs to one thread.
class TESK_PLATFORM_EXPORT ITeskInstance {
  public:
    virtual ~ITeskInstance();

    [[nodiscard]] virtual TSKSmrPtr<ITeskInstanceName> getInstanceName() const = 0;

    /// The value of a property, its name in any case; null when the instance has no such property.
    [[nodiscard]] virtual TSKSmrPtr<ITeskValue> getProperty(const TSKString& name) const = 0;
};

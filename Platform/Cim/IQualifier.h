#pragma once

#include "Platform/Cim/ITeskValue.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"

namespace urma {

/// A qualifier of a class, property, method or parameter (DSP0004, "Qualifiers").
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT IQualifier {
  public:
    virtual ~IQualifier();

    [[nodiscard]] virtual TSKString getName() const = 0;

    [[nodiscard]] virtual bool hasValue() const = 0;

    /// The value, null without one. `[Key]`, written without a value, has the value true.
    [[nodiscard]] virtual TSKSmrPtr<ITeskValue> getValue() const = 0;
};

}  // namespace urma

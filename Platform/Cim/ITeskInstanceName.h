#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// The path of an instance: its namespace, class and keys (DSP0004, "Object paths").
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT ITeskInstanceName {
  public:
    virtual ~ITeskInstanceName();

    [[nodiscard]] virtual TSKString getNameSpace() const = 0;
    [[nodiscard]] virtual TSKString getClassName() const = 0;

    /// The path as text, such as `root/cimv2:CIM_Foo.Name="a"`.
    [[nodiscard]] virtual TSKString toString() const = 0;
};

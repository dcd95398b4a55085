#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// The data type of a property, parameter, method result or value (DSP0004, "CIM data types").
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT ITeskType {
  public:
    virtual ~ITeskType();

    /// Whether it is a reference to an object.
    [[nodiscard]] virtual bool isReference() const = 0;

    [[nodiscard]] virtual bool isArray() const = 0;

    /// The MOF keyword of the type, or of an array's elements, in lower case, such as "uint16".
    /// Embedded objects and instances are "string". For a reference the name means nothing.
    [[nodiscard]] virtual TSKString getTypeName() const = 0;
};

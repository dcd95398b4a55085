#pragma once

#include "Platform/Cim/ITeskType.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"
#include "Platform/Util/TSKValSlist.h"

/// A value of a CIM data type: of a qualifier, a property or a parameter.
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT ITeskValue {
  public:
    virtual ~ITeskValue();

    /// The type of the value, null when it has none.
    [[nodiscard]] virtual TSKSmrPtr<ITeskType> getType() const = 0;

    /// The value as text: strings as they are, numbers in decimal, booleans as "true" and "false",
    /// null as the empty text.
    [[nodiscard]] virtual TSKString toString() const = 0;

    /// True for the boolean true, false for everything else.
    [[nodiscard]] virtual bool toBoolean() const = 0;

    /// The elements of an array, with a null pointer for each null element. Null or empty for a
    /// value that is no array and for an array without elements.
    [[nodiscard]] virtual TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> getArrayValues() const = 0;
};

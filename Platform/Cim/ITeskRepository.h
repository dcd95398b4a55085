#pragma once

#include "Platform/Cim/ITeskClass.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKString.h"

/// The class definitions that the object manager holds.
///
/// Thread safety: may be used by several threads at once.
class TESK_PLATFORM_EXPORT ITeskRepository {
  public:
    virtual ~ITeskRepository();

    /// Looks a class up; namespace and name in any case. Null when the namespace has no such class.
    /// Errors: TeskBaseException with CIM_ERR_INVALID_NAMESPACE when there is no such namespace.
    [[nodiscard]] virtual TSKSmrPtr<ITeskClass> getClass(const TSKString& nameSpace,
                                                         const TSKString& className) const = 0;
};

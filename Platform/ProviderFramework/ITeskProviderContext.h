#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// Settings that the object manager holds for one provider.
///
/// Thread safety: may be used by several threads at once.
class TESK_PLATFORM_EXPORT ITeskProviderContext {
  public:
    virtual ~ITeskProviderContext();

    /// The value of a setting, empty when there is none.
    [[nodiscard]] virtual TSKString getSetting(const TSKString& name) const = 0;
};

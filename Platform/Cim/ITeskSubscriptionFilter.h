#pragma once

#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

/// Says which indications a subscriber wants (DSP1054, "CIM_IndicationFilter").
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT ITeskSubscriptionFilter {
  public:
    virtual ~ITeskSubscriptionFilter();

    [[nodiscard]] virtual TSKString getQuery() const = 0;
    [[nodiscard]] virtual TSKString getQueryLanguage() const = 0;
};

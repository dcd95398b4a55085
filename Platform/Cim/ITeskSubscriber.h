#pragma once

#include "Platform/Cim/ITeskIndication.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKSmrPtr.h"

/// Receives indications.
///
/// Thread safety: may be used by several threads at once.
class TESK_PLATFORM_EXPORT ITeskSubscriber {
  public:
    virtual ~ITeskSubscriber();

    virtual void notify(TSKSmrPtr<ITeskIndication> indication) = 0;
};

#pragma once

#include "Platform/Cim/ITeskClass.h"

class ITeskRepository {
  public:
    virtual TSKSmrPtr<ITeskClass> getClass(const TSKString& nameSpace,
                                           const TSKString& className) const = 0;
};

#pragma once

#include "Platform/Cim/ITeskType.h"
#include "Platform/Util/TSKSmrPtr.h"
#include "Platform/Util/TSKValSlist.h"

class ITeskValue {
  public:
    virtual TSKSmrPtr<ITeskType> getType() const = 0;
    virtual TSKString toString() const = 0;
    virtual bool toBoolean() const = 0;
    virtual TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> getArrayValues() const = 0;
};

#pragma once

#include "Platform/Cim/ITeskValue.h"

namespace urma {

class IQualifier {
  public:
    virtual TSKString getName() const = 0;
    virtual bool hasValue() const = 0;
    virtual TSKSmrPtr<ITeskValue> getValue() const = 0;
};

}  // namespace urma

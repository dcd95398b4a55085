#pragma once

#include "Platform/Util/TSKString.h"

class ITeskType {
  public:
    virtual bool isReference() const = 0;
    virtual bool isArray() const = 0;
    virtual TSKString getTypeName() const = 0;
};

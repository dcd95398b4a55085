#pragma once

#include "Platform/Cim/IQualifier.h"

namespace urma {

class IParameterDef {
  public:
    virtual TSKString getName() const = 0;
    virtual const ITeskType& getType() const = 0;
    virtual const IQualifier* getQualifier(const TSKString& name, bool includePropagated) const = 0;
};

}  // namespace urma

#pragma once

#include "Platform/Cim/IParameterDef.h"
#include "Platform/Cim/Iterator.h"
#include "Platform/Util/CI_AutoPtr_U.h"

namespace urma {

class IMethodDef {
  public:
    virtual TSKString getName() const = 0;
    virtual const ITeskType& getReturnType() const = 0;
    virtual CI_AutoPtr_U<Iterator<const IParameterDef&>> getParameters() const = 0;
    virtual CI_AutoPtr_U<Iterator<const IQualifier&>> getQualifiers(
        bool includePropagated) const = 0;
};

}  // namespace urma

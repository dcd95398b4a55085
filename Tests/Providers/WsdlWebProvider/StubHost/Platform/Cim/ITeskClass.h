#pragma once

#include "Platform/Cim/IMethodDef.h"
#include "Platform/Cim/IPropertyDef.h"

class ITeskClass {
  public:
    virtual TSKString getName() const = 0;
    virtual CI_AutoPtr_U<urma::Iterator<const urma::IPropertyDef&>> getProperties(
        bool includeInherited) const = 0;
    virtual CI_AutoPtr_U<urma::Iterator<const urma::IMethodDef&>> getMethods(
        bool includeInherited) const = 0;
    virtual CI_AutoPtr_U<urma::Iterator<const urma::IQualifier&>> getQualifiers(
        bool includePropagated) const = 0;
};

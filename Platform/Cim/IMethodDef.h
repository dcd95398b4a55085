#pragma once

#include "Platform/Cim/IParameterDef.h"
#include "Platform/Cim/IQualified.h"
#include "Platform/Cim/ITeskType.h"
#include "Platform/Cim/Iterator.h"
#include "Platform/Util/CI_AutoPtr_U.h"
#include "Platform/Util/Export.h"

namespace urma {

/// The definition of a method of a class.
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT IMethodDef : public IQualified {
  public:
    ~IMethodDef() override;

    /// Belongs to this definition.
    [[nodiscard]] virtual const ITeskType& getReturnType() const = 0;

    /// The parameters in the order of their declaration. Never null.
    [[nodiscard]] virtual CI_AutoPtr_U<Iterator<const IParameterDef&>> getParameters() const = 0;
};

}  // namespace urma

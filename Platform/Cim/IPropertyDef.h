#pragma once

#include "Platform/Cim/IQualified.h"
#include "Platform/Cim/ITeskType.h"
#include "Platform/Util/Export.h"

namespace urma {

/// The definition of a property of a class.
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT IPropertyDef : public IQualified {
  public:
    ~IPropertyDef() override;

    /// Belongs to this definition.
    [[nodiscard]] virtual const ITeskType& getType() const = 0;
};

}  // namespace urma

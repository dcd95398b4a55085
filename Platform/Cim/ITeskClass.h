#pragma once

#include "Platform/Cim/IMethodDef.h"
#include "Platform/Cim/IPropertyDef.h"
#include "Platform/Cim/IQualified.h"
#include "Platform/Cim/Iterator.h"
#include "Platform/Util/CI_AutoPtr_U.h"
#include "Platform/Util/Export.h"

/// The definition of a class, association or indication, resolved against its superclasses.
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT ITeskClass : public urma::IQualified {
  public:
    ~ITeskClass() override;

    /// The properties, references included; those of the superclasses only with
    /// `includeInherited`. Never null. The order is the repository's: by name in byte order, or as
    /// declared with superclasses first.
    [[nodiscard]] virtual CI_AutoPtr_U<urma::Iterator<const urma::IPropertyDef&>> getProperties(
        bool includeInherited) const = 0;

    /// The methods, superclass first, an override in the place of what it overrides; those of the
    /// superclasses only with `includeInherited`. Never null.
    [[nodiscard]] virtual CI_AutoPtr_U<urma::Iterator<const urma::IMethodDef&>> getMethods(
        bool includeInherited) const = 0;
};

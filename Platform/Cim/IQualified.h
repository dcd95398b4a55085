#pragma once

#include "Platform/Cim/IQualifier.h"
#include "Platform/Cim/Iterator.h"
#include "Platform/Util/CI_AutoPtr_U.h"
#include "Platform/Util/Export.h"
#include "Platform/Util/TSKString.h"

namespace urma {

/// What classes, properties, methods and parameters have in common: a name and qualifiers.
///
/// A qualifier is written, on the declaration itself, or propagated, from the declaration that this
/// one overrides (DSP0004, flavor ToSubclass and not Restricted). An inherited declaration that is
/// not overridden is the superclass's own, so its qualifiers count as written. Declared defaults
/// count as neither.
///
/// Thread safety: immutable, may be used by several threads at once.
class TESK_PLATFORM_EXPORT IQualified {
  public:
    virtual ~IQualified();

    /// The name as it was declared.
    [[nodiscard]] virtual TSKString getName() const = 0;

    /// The qualifier of that name, in any case; it belongs to this definition. With
    /// `includePropagated` false only written ones are found.
    ///
    /// Null means that the declaration has no such qualifier: it is neither written there nor, with
    /// `includePropagated`, propagated to it. It does not mean that the qualifier is false or that
    /// its type is not declared: what DSP0004 has as the default of an absent qualifier is the
    /// caller's to know. A qualifier whose value is null is found, and says so by hasValue().
    [[nodiscard]] virtual const IQualifier* getQualifier(const TSKString& name,
                                                         bool includePropagated) const = 0;

    /// The qualifiers, the propagated ones only with `includePropagated`. Never null.
    [[nodiscard]] virtual CI_AutoPtr_U<Iterator<const IQualifier&>> getQualifiers(
        bool includePropagated) const = 0;
};

}  // namespace urma

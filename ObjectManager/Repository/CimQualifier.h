#pragma once

#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Repository/RepositoryOptions.h"
#include "Platform/Cim/IQualifier.h"

namespace Repository {

/// A qualifier that is written on a declaration.
///
/// Thread safety: immutable, may be used by several threads at once.
class CimQualifier : public urma::IQualifier {
  public:
    /// Takes the texts out of `qualifier`.
    CimQualifier(Mof::Qualifier&& qualifier, const RepositoryOptions& options);

    [[nodiscard]] TSKString getName() const override { return name_; }
    [[nodiscard]] bool hasValue() const override { return !value_.isNull(); }
    [[nodiscard]] TSKSmrPtr<ITeskValue> getValue() const override { return value_; }

    /// As getName, without a copy.
    [[nodiscard]] const TSKString& name() const noexcept { return name_; }
    [[nodiscard]] bool isNamed(const TSKString& name) const noexcept {
        return name_.equalsIgnoreCase(name);
    }
    /// Whether what overrides the declaration has the qualifier as well.
    [[nodiscard]] bool propagates() const noexcept { return propagates_; }

  private:
    TSKString name_;
    bool propagates_;
    TSKSmrPtr<ITeskValue> value_;  // made after the name, on which it depends
};

}  // namespace Repository

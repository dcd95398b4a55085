#pragma once

#include <vector>

#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Repository/CimValue.h"
#include "ObjectManager/Repository/Options.h"
#include "Platform/Cim/IQualified.h"

namespace Repository {

/// A qualifier that is written on a declaration.
///
/// Thread safety: immutable, may be used by several threads at once.
class CimQualifier : public urma::IQualifier {
  public:
    /// Takes the texts out of `qualifier`.
    CimQualifier(Mof::Qualifier&& qualifier, const Options& options);

    [[nodiscard]] TSKString getName() const override { return name_; }
    [[nodiscard]] bool hasValue() const override { return !value_.isNull(); }
    [[nodiscard]] TSKSmrPtr<ITeskValue> getValue() const override { return value_; }

    /// As getName, without a copy.
    [[nodiscard]] const TSKString& name() const noexcept { return name_; }
    [[nodiscard]] bool isNamed(const TSKString& name) const noexcept {
        return name_.equalsIgnoreCase(name);
    }
    /// As getValue, without a copy; null without one.
    [[nodiscard]] const CimValue* value() const noexcept { return value_.get(); }
    /// Whether what overrides the declaration has the qualifier as well.
    [[nodiscard]] bool propagates() const noexcept { return propagates_; }

  private:
    TSKString name_;
    bool propagates_;
    TSKSmrPtr<CimValue> value_;  // made after the name, on which it depends
};

/// The qualifiers of a definition: those written on it, and those that the overridden definition
/// propagates, which stay the overridden definition's.
///
/// Thread safety: may be used by several threads at once, except while it inherits.
class CimQualifiers {
  public:
    /// Takes the texts out of `written`.
    CimQualifiers(Mof::Qualifiers&& written, const Options& options);
    CimQualifiers(const CimQualifiers&) = delete;
    CimQualifiers& operator=(const CimQualifiers&) = delete;
    CimQualifiers(CimQualifiers&&) noexcept = default;
    CimQualifiers& operator=(CimQualifiers&&) = delete;
    ~CimQualifiers() = default;

    /// Adds what `overridden`, which must outlive this, propagates and is not written here. Called
    /// once at most.
    void inherit(const CimQualifiers& overridden);

    /// In any case; null when there is none, or it is written with the value null: that takes away
    /// what the overridden definition propagates. The iterator shows it nevertheless.
    [[nodiscard]] const CimQualifier* find(const TSKString& name,
                                           bool includePropagated) const noexcept;

    /// The written ones in their order, then the propagated ones.
    [[nodiscard]] CI_AutoPtr_U<urma::Iterator<const urma::IQualifier&>> iterate(
        bool includePropagated) const;

  private:
    // What the pointers below point to stays where it is when this object moves.
    std::vector<CimQualifier> written_;
    std::vector<const CimQualifier*> all_;  // the written ones first
};

/// Whether a definition has a qualifier of that name, written or propagated, that is true.
[[nodiscard]] bool isTrue(const urma::IQualified& definition, const TSKString& qualifier);

}  // namespace Repository

#pragma once

#include <cstddef>
#include <vector>

#include "ObjectManager/Mof/Declarations.h"
#include "ObjectManager/Repository/CimQualifier.h"
#include "ObjectManager/Repository/RepositoryOptions.h"
#include "Platform/Cim/Iterator.h"
#include "Platform/Util/CI_AutoPtr_U.h"

namespace Repository {

/// The qualifiers of a definition: those written on it, and those that the overridden definition
/// propagates, which stay the overridden definition's.
///
/// Thread safety: may be used by several threads at once, except while it inherits.
class CimQualifiers {
  public:
    /// Takes the texts out of `written`.
    CimQualifiers(Mof::Qualifiers&& written, const RepositoryOptions& options);
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

}  // namespace Repository

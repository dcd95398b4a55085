#pragma once

#include <utility>

#include "ObjectManager/Repository/CimQualifiers.h"
#include "Platform/Cim/IQualified.h"

namespace Repository {

/// What classes, properties, methods and parameters have in common: `Interface` as far as its name
/// and its qualifiers go.
///
/// Thread safety: immutable once its class is made, may be used by several threads at once then.
template <typename Interface>
class CimDefinition : public Interface {
  public:
    [[nodiscard]] TSKString getName() const override { return name_; }

    [[nodiscard]] const urma::IQualifier* getQualifier(const TSKString& name,
                                                       bool includePropagated) const override {
        return qualifiers_.find(name, includePropagated);
    }

    [[nodiscard]] CI_AutoPtr_U<urma::Iterator<const urma::IQualifier&>> getQualifiers(
        bool includePropagated) const override {
        return qualifiers_.iterate(includePropagated);
    }

    /// As getName, without a copy.
    [[nodiscard]] const TSKString& name() const noexcept { return name_; }

  protected:
    CimDefinition(TSKString name, Mof::Qualifiers&& qualifiers, const RepositoryOptions& options)
        : name_(std::move(name)), qualifiers_(std::move(qualifiers), options) {}

    void inheritQualifiers(const CimDefinition& overridden) {
        qualifiers_.inherit(overridden.qualifiers_);
    }

  private:
    TSKString name_;
    CimQualifiers qualifiers_;
};

}  // namespace Repository

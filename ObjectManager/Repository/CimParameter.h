#pragma once

#include <utility>

#include "ObjectManager/Repository/CimDefinition.h"
#include "ObjectManager/Repository/CimType.h"
#include "Platform/Cim/IParameterDef.h"

namespace Repository {

/// A parameter of a method.
///
/// Thread safety: immutable once its class is made, may be used by several threads at once then.
class CimParameter : public CimDefinition<urma::IParameterDef> {
  public:
    /// Takes the texts out of `parameter`.
    CimParameter(Mof::Parameter&& parameter, const RepositoryOptions& options)
        : CimDefinition(std::move(parameter.name.text), std::move(parameter.qualifiers), options),
          type_(CimType::of(parameter.type.dataType, parameter.type.isArray)),
          referencedClass_(std::move(parameter.type.referencedClass.text)) {}

    [[nodiscard]] const ITeskType& getType() const override { return *type_; }

    /// The class that a reference refers to, empty for other types.
    [[nodiscard]] const TSKString& referencedClass() const noexcept { return referencedClass_; }

    /// Takes the propagated qualifiers of the definition that this one overrides.
    void override(const CimParameter& overridden) { inheritQualifiers(overridden); }

  private:
    const TSKSmrPtr<ITeskType>& type_;
    TSKString referencedClass_;
};

}  // namespace Repository

#pragma once

#include <utility>

#include "ObjectManager/Repository/CimDefinition.h"
#include "ObjectManager/Repository/CimType.h"
#include "Platform/Cim/IPropertyDef.h"

namespace Repository {

/// A property that a class declares.
///
/// Thread safety: immutable once its class is made, may be used by several threads at once then.
class CimProperty : public CimDefinition<urma::IPropertyDef> {
  public:
    /// Takes the texts out of `property`.
    CimProperty(Mof::Property&& property, const RepositoryOptions& options)
        : CimDefinition(std::move(property.name.text), std::move(property.qualifiers), options),
          type_(CimType::of(property.type.dataType, property.type.isArray)),
          referencedClass_(std::move(property.type.referencedClass.text)) {}

    [[nodiscard]] const ITeskType& getType() const override { return *type_; }

    /// The class that a reference refers to, empty for other types.
    [[nodiscard]] const TSKString& referencedClass() const noexcept { return referencedClass_; }

    /// Takes the propagated qualifiers of the definition that this one overrides.
    void override(const CimProperty& overridden) { inheritQualifiers(overridden); }

  private:
    const TSKSmrPtr<ITeskType>& type_;
    TSKString referencedClass_;
};

}  // namespace Repository

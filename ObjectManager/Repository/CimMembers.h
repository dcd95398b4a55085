#pragma once

#include <cstdint>
#include <utility>
#include <vector>

#include "ObjectManager/Repository/CimDefinition.h"
#include "Platform/Cim/IMethodDef.h"
#include "Platform/Cim/IParameterDef.h"
#include "Platform/Cim/IPropertyDef.h"

namespace Repository {

/// What properties and parameters have in common: a definition with a type.
///
/// Thread safety: immutable once its class is made, may be used by several threads at once then.
template <typename Interface>
class CimTypedDefinition : public CimDefinition<Interface> {
  public:
    [[nodiscard]] const ITeskType& getType() const override { return *type_; }

    /// The class that a reference refers to, empty for other types.
    [[nodiscard]] const TSKString& referencedClass() const noexcept { return referencedClass_; }

    /// Takes the propagated qualifiers of the definition that this one overrides.
    void override(const CimTypedDefinition& overridden) { this->inheritQualifiers(overridden); }

  protected:
    CimTypedDefinition(TSKString name, Mof::Type&& type, Mof::Qualifiers&& qualifiers,
                       const Options& options)
        : CimDefinition<Interface>(std::move(name), std::move(qualifiers), options),
          type_(CimType::of(type.dataType, type.isArray)),
          referencedClass_(std::move(type.referencedClass.text)) {}

  private:
    const TSKSmrPtr<ITeskType>& type_;
    TSKString referencedClass_;
};

/// A property that a class declares.
///
/// Thread safety: immutable once its class is made, may be used by several threads at once then.
class CimProperty : public CimTypedDefinition<urma::IPropertyDef> {
  public:
    /// Takes the texts out of `property`.
    CimProperty(Mof::Property&& property, const Options& options)
        : CimTypedDefinition(std::move(property.name.text), std::move(property.type),
                             std::move(property.qualifiers), options) {}

    /// What it takes of a document (Repository/DocumentSize.h).
    [[nodiscard]] std::uint64_t documentSize() const noexcept { return documentSize_; }

    /// Finds documentSize(), once all qualifiers are inherited.
    void measure();

  private:
    std::uint64_t documentSize_ = 0;
};

/// A parameter of a method.
///
/// Thread safety: immutable once its class is made, may be used by several threads at once then.
class CimParameter : public CimTypedDefinition<urma::IParameterDef> {
  public:
    /// Takes the texts out of `parameter`.
    CimParameter(Mof::Parameter&& parameter, const Options& options)
        : CimTypedDefinition(std::move(parameter.name.text), std::move(parameter.type),
                             std::move(parameter.qualifiers), options) {}
};

/// A method that a class declares.
///
/// Thread safety: immutable once its class is made, may be used by several threads at once then.
class CimMethod : public CimDefinition<urma::IMethodDef> {
  public:
    /// Takes the texts out of `method`.
    CimMethod(Mof::Method&& method, const Options& options);

    [[nodiscard]] const ITeskType& getReturnType() const override { return *returnType_; }
    [[nodiscard]] CI_AutoPtr_U<urma::Iterator<const urma::IParameterDef&>> getParameters()
        const override;

    /// The class that a returned reference refers to, empty for other types.
    [[nodiscard]] const TSKString& referencedClass() const noexcept { return referencedClass_; }

    /// As getParameters, without an iterator.
    [[nodiscard]] const std::vector<CimParameter>& parameters() const noexcept {
        return parameters_;
    }

    /// Takes the propagated qualifiers of the definition that this one overrides; each parameter
    /// those of the parameter of its name.
    void override(const CimMethod& overridden);

    /// What it takes of a document (Repository/DocumentSize.h).
    [[nodiscard]] std::uint64_t documentSize() const noexcept { return documentSize_; }

    /// Finds documentSize(), once all qualifiers are inherited.
    void measure();

  private:
    const TSKSmrPtr<ITeskType>& returnType_;
    TSKString referencedClass_;
    std::vector<CimParameter> parameters_;
    std::vector<const CimParameter*> parameterList_;
    std::uint64_t documentSize_ = 0;
};

}  // namespace Repository

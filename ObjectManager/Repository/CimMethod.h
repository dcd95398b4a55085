#pragma once

#include <vector>

#include "ObjectManager/Repository/CimDefinition.h"
#include "ObjectManager/Repository/CimParameter.h"
#include "ObjectManager/Repository/CimType.h"
#include "Platform/Cim/IMethodDef.h"

namespace Repository {

/// A method that a class declares.
///
/// Thread safety: immutable once its class is made, may be used by several threads at once then.
class CimMethod : public CimDefinition<urma::IMethodDef> {
  public:
    /// Takes the texts out of `method`.
    CimMethod(Mof::Method&& method, const RepositoryOptions& options);

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

  private:
    const TSKSmrPtr<ITeskType>& returnType_;
    TSKString referencedClass_;
    std::vector<CimParameter> parameters_;
    std::vector<const CimParameter*> parameterList_;
};

}  // namespace Repository

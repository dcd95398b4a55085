#include "ObjectManager/Repository/CimMembers.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Repository/DocumentSize.h"

namespace Repository {

void CimProperty::measure() {
    documentSize_ = sizeInDocument(*this);
}

CimMethod::CimMethod(Mof::Method&& method, const Options& options)
    : CimDefinition(std::move(method.name.text), std::move(method.qualifiers), options),
      returnType_(CimType::of(method.returnType.dataType, method.returnType.isArray)),
      referencedClass_(std::move(method.returnType.referencedClass.text)) {
    parameters_.reserve(method.parameters.size());
    parameterList_.reserve(method.parameters.size());
    for (Mof::Parameter& parameter : method.parameters)
        parameterList_.push_back(&parameters_.emplace_back(std::move(parameter), options));
}

CI_AutoPtr_U<urma::Iterator<const urma::IParameterDef&>> CimMethod::getParameters() const {
    return iterateOver<urma::IParameterDef>(parameterList_);
}

void CimMethod::override(const CimMethod& overridden) {
    inheritQualifiers(overridden);
    Base::NameMap<const CimParameter*> overriddenParameters;
    for (const CimParameter& parameter : overridden.parameters_)
        overriddenParameters.emplace(parameter.name(), &parameter);
    for (CimParameter& parameter : parameters_) {
        const auto found = overriddenParameters.find(parameter.name());
        if (found != overriddenParameters.end())
            parameter.override(*found->second);
    }
}

void CimMethod::measure() {
    documentSize_ = sizeInDocument(*this);
}

}  // namespace Repository

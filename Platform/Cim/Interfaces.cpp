// The destructors of the interfaces stand here, so that each interface has its virtual table and
// its type information in this library alone: exceptions and casts then work across libraries.

#include "Platform/Cim/IMethodDef.h"
#include "Platform/Cim/IParameterDef.h"
#include "Platform/Cim/IPropertyDef.h"
#include "Platform/Cim/IQualified.h"
#include "Platform/Cim/IQualifier.h"
#include "Platform/Cim/ITeskClass.h"
#include "Platform/Cim/ITeskIndication.h"
#include "Platform/Cim/ITeskInstance.h"
#include "Platform/Cim/ITeskInstanceName.h"
#include "Platform/Cim/ITeskRepository.h"
#include "Platform/Cim/ITeskSubscriber.h"
#include "Platform/Cim/ITeskSubscriptionFilter.h"
#include "Platform/Cim/ITeskType.h"
#include "Platform/Cim/ITeskValue.h"

namespace urma {

IQualifier::~IQualifier() = default;
IQualified::~IQualified() = default;
IPropertyDef::~IPropertyDef() = default;
IParameterDef::~IParameterDef() = default;
IMethodDef::~IMethodDef() = default;

}  // namespace urma

ITeskClass::~ITeskClass() = default;
ITeskIndication::~ITeskIndication() = default;
ITeskInstance::~ITeskInstance() = default;
ITeskInstanceName::~ITeskInstanceName() = default;
ITeskRepository::~ITeskRepository() = default;
ITeskSubscriber::~ITeskSubscriber() = default;
ITeskSubscriptionFilter::~ITeskSubscriptionFilter() = default;
ITeskType::~ITeskType() = default;
ITeskValue::~ITeskValue() = default;

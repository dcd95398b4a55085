#include "Tests/Support/RepositoryText.h"

#include <stdexcept>

#include "Platform/Util/TSKValSlistIterator.h"

namespace {

template <typename Iterator>
std::string namesOf(const Iterator& iterator) {
    std::string names;
    for (; iterator->hasCurrent(); iterator->advance()) {
        names += names.empty() ? "" : " ";
        names += iterator->current().getName().data();
    }
    return names;
}

template <typename Iterator>
const auto& named(const Iterator& iterator, const char* name) {
    for (; iterator->hasCurrent(); iterator->advance()) {
        if (iterator->current().getName().equals(name))
            return iterator->current();
    }
    throw std::out_of_range(name);
}

}  // namespace

std::string textOf(const ITeskValue* value) {
    if (value == nullptr)
        return "null";
    const auto elements = value->getArrayValues();
    if (!value->getType()->isArray())
        return value->toString().data();
    std::string text = "{";
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> element(*elements);
    while (element())
        text += (text == "{" ? "" : ", ") + textOf(element.key().get());
    return text + "}";
}

std::string textOf(const ITeskType& type) {
    return (type.isReference() ? "ref" : type.getTypeName().data()) +
           std::string(type.isArray() ? "[]" : "");
}

std::string qualifiersOf(const urma::IQualified& definition, bool includePropagated) {
    std::string text;
    const auto qualifiers = definition.getQualifiers(includePropagated);
    for (; qualifiers->hasCurrent(); qualifiers->advance()) {
        const urma::IQualifier& qualifier = qualifiers->current();
        text += text.empty() ? "" : " ";
        text += qualifier.getName().data();
        text += "(" + textOf(qualifier.getValue().get()) + ")";
    }
    return text;
}

std::string propertiesOf(const ITeskClass& cimClass, bool includeInherited) {
    return namesOf(cimClass.getProperties(includeInherited));
}

std::string methodsOf(const ITeskClass& cimClass, bool includeInherited) {
    return namesOf(cimClass.getMethods(includeInherited));
}

std::string parametersOf(const urma::IMethodDef& method) {
    return namesOf(method.getParameters());
}

const urma::IPropertyDef& propertyOf(const ITeskClass& cimClass, const char* name) {
    return named(cimClass.getProperties(true), name);
}

const urma::IMethodDef& methodOf(const ITeskClass& cimClass, const char* name) {
    return named(cimClass.getMethods(true), name);
}

const urma::IParameterDef& parameterOf(const urma::IMethodDef& method, const char* name) {
    return named(method.getParameters(), name);
}

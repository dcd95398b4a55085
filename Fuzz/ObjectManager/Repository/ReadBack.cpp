#include "Fuzz/ObjectManager/Repository/ReadBack.h"

#include <algorithm>
#include <vector>

#include "Fuzz/Support/Require.h"
#include "ObjectManager/Base/NameMap.h"
#include "ObjectManager/Base/Utf8.h"
#include "Platform/Util/TSKValSlistIterator.h"

namespace {

void requireUtf8(const TSKString& text) {
    require(Base::isUtf8(text), "every text is UTF-8");
}

void requireName(const TSKString& name) {
    require(!name.isEmpty(), "everything has a name");
    requireUtf8(name);
}

void readType(const ITeskType& type) {
    require(type.isReference() == type.getTypeName().equals("ref"), "a reference is of type ref");
}

void readScalar(const ITeskValue& value) {
    require(!value.getType().isNull(), "a value has a type");
    readType(*value.getType());
    requireUtf8(value.toString());
    require(value.toBoolean() == (value.getType()->getTypeName().equals("boolean") &&
                                  value.toString().equals("true")),
            "the one value that is true is the boolean");
}

void readValue(const ITeskValue& value) {
    readScalar(value);
    const TSKSmrPtr<TSKValSlist<TSKSmrPtr<ITeskValue>>> elements = value.getArrayValues();
    require(elements.isNull() != value.getType()->isArray(), "an array has elements");
    if (elements.isNull())
        return;
    require(value.toString().isEmpty(), "the text of an array is empty");
    TSKValSlistIterator<TSKSmrPtr<ITeskValue>> element(*elements);
    while (element()) {
        if (element.key().isNull())
            continue;
        require(element.key()->getArrayValues().isNull(), "an element is no array");
        readScalar(*element.key());
    }
}

void readQualifier(const urma::IQualifier& qualifier) {
    requireName(qualifier.getName());
    require(qualifier.hasValue() == !qualifier.getValue().isNull(), "hasValue says so");
    if (qualifier.hasValue())
        readValue(*qualifier.getValue());
}

// Reads the qualifiers of a definition; returns how many there are.
std::size_t readQualifiers(const urma::IQualified& definition, bool includePropagated) {
    std::size_t count = 0;
    const auto qualifiers = definition.getQualifiers(includePropagated);
    for (; qualifiers->hasCurrent(); qualifiers->advance()) {
        const urma::IQualifier& qualifier = qualifiers->current();
        readQualifier(qualifier);
        require(definition.getQualifier(qualifier.getName(), includePropagated) ==
                    (qualifier.hasValue() ? &qualifier : nullptr),
                "a qualifier that is listed is found, unless it is null");
        ++count;
    }
    return count;
}

void readDefinition(const urma::IQualified& definition) {
    requireName(definition.getName());
    require(readQualifiers(definition, false) <= readQualifiers(definition, true),
            "what is written is part of what is propagated as well");
}

void readParameters(const urma::IMethodDef& method) {
    std::vector<TSKString> names;
    const auto parameters = method.getParameters();
    for (; parameters->hasCurrent(); parameters->advance()) {
        readDefinition(parameters->current());
        readType(parameters->current().getType());
        names.push_back(parameters->current().getName());
    }
    Base::NameSet different(names.begin(), names.end());
    require(different.size() == names.size(), "the parameters of a method have names of their own");
}

// The names of the properties of a class, which are read.
std::vector<TSKString> readProperties(const ITeskClass& cimClass, bool includeInherited) {
    std::vector<TSKString> names;
    const auto properties = cimClass.getProperties(includeInherited);
    for (; properties->hasCurrent(); properties->advance()) {
        readDefinition(properties->current());
        readType(properties->current().getType());
        names.push_back(properties->current().getName());
    }
    require(std::is_sorted(names.begin(), names.end()), "properties are listed by their names");
    return names;
}

std::vector<TSKString> readMethods(const ITeskClass& cimClass, bool includeInherited) {
    std::vector<TSKString> names;
    const auto methods = cimClass.getMethods(includeInherited);
    for (; methods->hasCurrent(); methods->advance()) {
        readDefinition(methods->current());
        readType(methods->current().getReturnType());
        readParameters(methods->current());
        names.push_back(methods->current().getName());
    }
    return names;
}

// Requires that all of `some` are among `all`, which differ from each other.
void requireAmong(const std::vector<TSKString>& some, const std::vector<TSKString>& all) {
    const Base::NameSet names(all.begin(), all.end());
    require(names.size() == all.size(), "the members of a class have names of their own");
    require(std::all_of(some.begin(), some.end(),
                        [&](const TSKString& name) { return names.contains(name); }),
            "what a class declares or inherits is listed");
}

void readClass(const Repository::CimClass& cimClass) {
    readDefinition(cimClass);
    const std::vector<TSKString> properties = readProperties(cimClass, true);
    const std::vector<TSKString> methods = readMethods(cimClass, true);
    requireAmong(readProperties(cimClass, false), properties);
    requireAmong(readMethods(cimClass, false), methods);
    if (cimClass.superclass() == nullptr)
        return;
    requireAmong(readProperties(*cimClass.superclass(), true), properties);
    requireAmong(readMethods(*cimClass.superclass(), true), methods);
}

}  // namespace

void readBack(const Repository::ClassRepository& repository) {
    for (const Repository::CimNamespace& nameSpace : repository.namespaces()) {
        for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace.classes()) {
            const TSKSmrPtr<ITeskClass> found =
                repository.getClass(nameSpace.name(), cimClass->name());
            require(found.get() == cimClass.get(), "a class is found by its name");
            readClass(*cimClass);
        }
    }
}

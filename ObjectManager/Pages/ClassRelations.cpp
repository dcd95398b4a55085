#include "ObjectManager/Pages/ClassRelations.h"

namespace Pages {

using Repository::CimClass;
using Repository::CimNamespace;
using Repository::CimProperty;

// The classes of a namespace are in ascending order, and so are the lists that are made of them.
ClassRelations::ClassRelations(const CimNamespace& nameSpace) : nameSpace_(nameSpace) {
    for (const TSKSmrPtr<CimClass>& cimClass : nameSpace.classes()) {
        if (cimClass->superclass() != nullptr)
            related_[cimClass->superclass()].subclasses.push_back(cimClass.get());
        if (Repository::isTrue(*cimClass, "Association"))
            addEnds(*cimClass);
    }
}

void ClassRelations::addEnds(const CimClass& association) {
    for (const CimProperty* const reference : referencesOf(association)) {
        const TSKSmrPtr<CimClass> referenced = nameSpace_.findClass(reference->referencedClass());
        if (referenced)
            related_[referenced.get()].ends.push_back(
                {.association = &association, .reference = reference});
    }
}

const ClassRelations::Related& ClassRelations::relatedTo(const CimClass& cimClass) const noexcept {
    const auto found = related_.find(&cimClass);
    return found == related_.end() ? none_ : found->second;
}

const std::vector<const CimClass*>& ClassRelations::subclassesOf(
    const CimClass& cimClass) const noexcept {
    return relatedTo(cimClass).subclasses;
}

const std::vector<AssociationEnd>& ClassRelations::endsAt(const CimClass& cimClass) const noexcept {
    return relatedTo(cimClass).ends;
}

std::vector<const CimProperty*> referencesOf(const CimClass& cimClass) {
    std::vector<const CimProperty*> references;
    for (const CimProperty* const property : cimClass.properties()) {
        if (property->getType().isReference())
            references.push_back(property);
    }
    return references;
}

}  // namespace Pages

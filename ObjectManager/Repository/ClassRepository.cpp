#include "ObjectManager/Repository/ClassRepository.h"

#include <utility>

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Repository {

ClassRepository::ClassRepository(std::vector<CimNamespace> namespaces)
    : namespaces_(std::move(namespaces)) {
    for (std::size_t place = 0; place < namespaces_.size(); ++place)
        places_.emplace(namespaces_[place].name(), place);
}

TSKSmrPtr<ITeskClass> ClassRepository::getClass(const TSKString& nameSpace,
                                                const TSKString& className) const {
    const CimNamespace* const found = findNamespace(nameSpace);
    if (found == nullptr) {
        throw TeskBaseException("ClassRepository::getClass", "no such namespace: " + nameSpace,
                                CIM_ERR_INVALID_NAMESPACE);
    }
    return found->findClass(className);
}

TSKValSlist<TSKString> ClassRepository::getNamespaceList() const {
    TSKValSlist<TSKString> names;
    for (const CimNamespace& nameSpace : namespaces_)
        names.append(nameSpace.name());
    return names;
}

const CimNamespace* ClassRepository::findNamespace(const TSKString& name) const noexcept {
    const auto found = places_.find(name);
    return found == places_.end() ? nullptr : &namespaces_[found->second];
}

std::size_t ClassRepository::countClasses() const noexcept {
    std::size_t count = 0;
    for (const CimNamespace& nameSpace : namespaces_)
        count += nameSpace.classes().size();
    return count;
}

}  // namespace Repository

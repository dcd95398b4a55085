#include "Tests/Support/ModelRepository.h"

#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"
#include "Tests/Support/HostCalls.h"

void ModelRepository::add(const char* nameSpace, const ModelClass& cimClass) {
    entries_.push_back({nameSpace, cimClass.getName(), cimClass.share()});
}

TSKSmrPtr<ITeskClass> ModelRepository::getClass(const TSKString& nameSpace,
                                                const TSKString& className) const {
    HostCalls::note("ITeskRepository::getClass");
    bool knownNamespace = false;
    for (const Entry& entry : entries_) {
        if (!entry.nameSpace.equalsIgnoreCase(nameSpace))
            continue;
        knownNamespace = true;
        if (entry.className.equalsIgnoreCase(className))
            return entry.cimClass;
    }
    if (!knownNamespace)
        throw TeskBaseException("ModelRepository::getClass", "no such namespace",
                                CIM_ERR_INVALID_NAMESPACE);
    return {};
}

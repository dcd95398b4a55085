#pragma once

#include <string>
#include <utility>
#include <vector>

#include "ObjectManager/Repository/ClassRepository.h"

/// A repository of empty classes, given as namespaces and the names of their classes, which may be
/// names that no MOF file could declare.
inline TSKSmrPtr<Repository::ClassRepository> makeNamedClasses(
    const std::vector<std::pair<std::string, std::vector<std::string>>>& names) {
    std::vector<Repository::CimNamespace> namespaces;
    for (const auto& [nameSpace, classNames] : names) {
        std::vector<Mof::ClassDeclaration> declarations;
        for (const std::string& className : classNames)
            declarations.emplace_back().name.text = TSKString(std::string_view(className));
        namespaces.emplace_back(TSKString(std::string_view(nameSpace)), std::move(declarations),
                                Repository::Options());
    }
    return TSKSmrPtr<Repository::ClassRepository>::make(std::move(namespaces));
}

#include "ObjectManager/Commands/ClassSelection.h"

#include <algorithm>
#include <utility>

#include "ObjectManager/Commands/NamePattern.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

std::vector<const Repository::CimClass*> classesNamed(const Repository::CimNamespace& nameSpace,
                                                      const std::string& name) {
    std::vector<const Repository::CimClass*> found;
    if (!isNamePattern(name)) {
        const TSKSmrPtr<Repository::CimClass> cimClass = nameSpace.findClass(TSKString(name));
        if (!cimClass.isNull())
            found.push_back(cimClass.get());
        return found;
    }
    for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace.classes()) {
        if (matchesNamePattern(cimClass->name(), name))
            found.push_back(cimClass.get());
    }
    return found;
}

void sortOnce(std::vector<const Repository::CimClass*>& classes) {
    std::sort(classes.begin(), classes.end(),
              [](const Repository::CimClass* left, const Repository::CimClass* right) {
                  return left->name() < right->name();
              });
    classes.erase(std::unique(classes.begin(), classes.end()), classes.end());
}

void requireNone(const std::vector<std::string>& unknown) {
    if (unknown.empty())
        return;
    std::string message = "there is no class";
    for (const std::string& name : unknown) {
        message += &name == &unknown.front() ? " \"" : ", \"";
        message += name + "\"";
    }
    message += "; \"tesk classes\" lists them";
    throw TeskBaseException("selectClasses", TSKString(message), CIM_ERR_NOT_FOUND);
}

}  // namespace

std::vector<ClassSelection> selectAllClasses(const Repository::ClassRepository& repository) {
    std::vector<ClassSelection> selections;
    for (const Repository::CimNamespace& nameSpace : repository.namespaces()) {
        ClassSelection& selection =
            selections.emplace_back(ClassSelection{.nameSpace = &nameSpace, .classes = {}});
        for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace.classes())
            selection.classes.push_back(cimClass.get());
    }
    return selections;
}

std::vector<ClassSelection> selectClasses(const Repository::ClassRepository& repository,
                                          const std::vector<std::string>& names) {
    std::vector<ClassSelection> selections;
    std::vector<std::string> unknown = names;
    for (const Repository::CimNamespace& nameSpace : repository.namespaces()) {
        ClassSelection selection{.nameSpace = &nameSpace, .classes = {}};
        for (const std::string& name : names) {
            const std::vector<const Repository::CimClass*> found = classesNamed(nameSpace, name);
            if (!found.empty())
                std::erase(unknown, name);
            selection.classes.insert(selection.classes.end(), found.begin(), found.end());
        }
        sortOnce(selection.classes);
        if (!selection.classes.empty())
            selections.push_back(std::move(selection));
    }
    requireNone(unknown);
    return selections;
}

}  // namespace Commands

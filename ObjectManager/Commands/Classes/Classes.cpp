#include <iostream>
#include <memory>
#include <string>
#include <vector>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/Classes/ClassListing.h"
#include "ObjectManager/Commands/Commands.h"
#include "ObjectManager/Commands/Model.h"
#include "ObjectManager/Configuration/SettingValues.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

struct ClassesOptions {
    ModelOptions model;
    OutputFormat format = OutputFormat::kText;
    std::string nameSpace;  // empty for all
    std::string className;  // empty for all
};

constexpr const char* kDetails = R"(Examples:
  tesk classes
  tesk classes root/cimv2 CIM_ComputerSystem
  tesk classes --namespace root/acme=mof/ --format json)";

const Repository::CimNamespace& findNamespace(const Repository::ClassRepository& repository,
                                              const std::string& name) {
    const std::string bareName = Configuration::parseNamespaceName(name);
    const Repository::CimNamespace* const found = repository.findNamespace(TSKString(bareName));
    if (found != nullptr)
        return *found;
    std::string names;
    for (const Repository::CimNamespace& nameSpace : repository.namespaces())
        names += (names.empty() ? "" : ", ") + std::string(nameSpace.name());
    const std::string message =
        "there is no namespace " + Base::quoted(bareName) + "; there are: " + names;
    throw TeskBaseException("tesk classes", TSKString(message), CIM_ERR_INVALID_NAMESPACE);
}

std::string list(const Repository::ClassRepository& repository, const ClassesOptions& options) {
    std::vector<const Repository::CimNamespace*> namespaces;
    if (options.nameSpace.empty()) {
        for (const Repository::CimNamespace& nameSpace : repository.namespaces())
            namespaces.push_back(&nameSpace);
    } else {
        namespaces.push_back(&findNamespace(repository, options.nameSpace));
    }
    return listClasses(namespaces, options.format);
}

std::string describe(const Repository::ClassRepository& repository, const ClassesOptions& options) {
    const Repository::CimNamespace& nameSpace = findNamespace(repository, options.nameSpace);
    const TSKSmrPtr<Repository::CimClass> cimClass =
        nameSpace.findClass(TSKString(options.className));
    if (!cimClass) {
        const std::string message = "the namespace " + Base::quoted(nameSpace.name()) +
                                    " has no class " + Base::quoted(options.className) + "; " +
                                    Base::quoted("tesk classes " + std::string(nameSpace.name())) +
                                    " lists them";
        throw TeskBaseException("tesk classes", TSKString(message), CIM_ERR_INVALID_CLASS);
    }
    return describeClass(nameSpace, *cimClass, options.format);
}

int runClasses(const ClassesOptions& options) {
    const TSKSmrPtr<Repository::ClassRepository> repository = loadModel(options.model);
    std::cout << (options.className.empty() ? list(*repository, options)
                                            : describe(*repository, options));
    return 0;
}

}  // namespace

Command classesCommand() {
    const auto options = std::make_shared<ClassesOptions>();
    Command command = {
        .name = "classes",
        .summary = "Lists namespaces and classes, or the properties and methods of one class",
        .details = kDetails,
        .options = {},
        .run = [options] { return runClasses(*options); }};
    command.options.push_back(
        {.name = "NAMESPACE", .help = "Only this namespace", .target = &options->nameSpace});
    command.options.push_back({.name = "CLASS",
                               .help = "The class to describe, in any case",
                               .target = &options->className});
    addModelOptions(command, options->model);
    command.options.push_back(formatOption(options->format));
    return command;
}

}  // namespace Commands

#include "ObjectManager/Commands/ModelOptions.h"

#include <CLI/CLI.hpp>
#include <iostream>
#include <utility>

#include "ObjectManager/Commands/NumberText.h"
#include "ObjectManager/Commands/OptionCheck.h"
#include "ObjectManager/Configuration/NamespaceOption.h"
#include "ObjectManager/Configuration/SettingsReader.h"
#include "ObjectManager/Host/InstallationPaths.h"
#include "ObjectManager/Repository/RepositoryLoader.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

std::vector<Repository::NamespaceSource> sampleModel() {
    const std::filesystem::path models = Host::InstallationPaths::ofThisProgram().models;
    return {{.name = "root/cimv2", .paths = {models / "cimv2/cimv2.mof"}},
            {.name = "interop", .paths = {models / "interop/interop.mof"}}};
}

Configuration::Settings configurationOf(const ModelOptions& options, std::ostream& faults) {
    if (options.configuration.empty())
        return {};
    Configuration::SettingsReading reading = Configuration::readSettings(options.configuration);
    for (const Configuration::SettingsError& error : reading.errors)
        faults << error.toString();
    if (!reading.errors.empty()) {
        throw TeskBaseException("settingsOf", "the configuration has errors and is not used",
                                CIM_ERR_FAILED);
    }
    return std::move(reading.settings);
}

}  // namespace

void addModelOptions(CLI::App& command, ModelOptions& options) {
    command
        .add_option("--namespace", options.namespaces,
                    "A namespace and its classes: a MOF file with what it includes, or a folder. "
                    "May be given again; without any, the sample model is used")
        ->check(checkedBy(Configuration::parseNamespaceOption))
        ->type_name("NAME=PATH")
        ->allow_extra_args(false);
    command.add_option("--config", options.configuration, "The configuration file")
        ->type_name("FILE");
}

Configuration::Settings settingsOf(const ModelOptions& options, std::ostream& faults) {
    Configuration::Settings settings = configurationOf(options, faults);
    if (!options.namespaces.empty())
        settings.namespaces.clear();
    for (const std::string& text : options.namespaces)
        settings.namespaces.push_back(Configuration::parseNamespaceOption(text));
    if (settings.namespaces.empty())
        settings.namespaces = sampleModel();
    return settings;
}

Configuration::Settings settingsOf(const ModelOptions& options) {
    return settingsOf(options, std::cerr);
}

TSKSmrPtr<Repository::ClassRepository> loadModel(const Configuration::Settings& settings,
                                                 std::ostream& faults) {
    const Repository::LoadedRepository loaded =
        Repository::loadRepository(settings.namespaces, settings.includePath, settings.repository);
    for (const Mof::Diagnostic& diagnostic : loaded.diagnostics)
        faults << diagnostic.toString();
    if (!loaded.repository) {
        throw TeskBaseException("loadModel", "the classes have errors and are not used",
                                CIM_ERR_FAILED);
    }
    for (const Repository::CimNamespace& nameSpace : loaded.repository->namespaces()) {
        if (nameSpace.classes().empty())
            faults << "tesk: warning: the namespace " << nameSpace.name() << " has no class\n";
    }
    return loaded.repository;
}

TSKSmrPtr<Repository::ClassRepository> loadModel(const Configuration::Settings& settings) {
    return loadModel(settings, std::cerr);
}

std::string contentText(const Repository::ClassRepository& repository) {
    return counted(repository.countClasses(), "class", "classes") + " in " +
           counted(repository.namespaces().size(), "namespace", "namespaces");
}

}  // namespace Commands

#include "ObjectManager/Commands/Model.h"

#include <iostream>
#include <utility>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Configuration/SettingValues.h"
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

Configuration::Settings readConfiguration(const ModelOptions& options, std::ostream& messages) {
    if (options.configuration.empty())
        return {};
    Configuration::SettingsReading reading = Configuration::readSettings(options.configuration);
    for (const Configuration::SettingsError& error : reading.errors)
        messages << error.toString();
    if (!reading.errors.empty()) {
        throw TeskBaseException("Commands::readSettings",
                                "the configuration has errors and is not used", CIM_ERR_FAILED);
    }
    return std::move(reading.settings);
}

}  // namespace

Configuration::Settings readSettings(const ModelOptions& options, std::ostream& messages) {
    Configuration::Settings settings = readConfiguration(options, messages);
    if (!options.namespaces.empty())
        settings.namespaces.clear();
    for (const std::string& text : options.namespaces)
        settings.namespaces.push_back(Configuration::parseNamespaceOption(text));
    if (settings.namespaces.empty())
        settings.namespaces = sampleModel();
    return settings;
}

TSKSmrPtr<Repository::ClassRepository> loadModel(const Configuration::Settings& settings,
                                                 std::ostream& messages) {
    const Repository::LoadedRepository loaded =
        Repository::loadRepository(settings.namespaces, settings.includePath, settings.repository);
    for (const Mof::Diagnostic& diagnostic : loaded.diagnostics)
        messages << diagnostic.toString();
    if (!loaded.repository) {
        throw TeskBaseException("Commands::loadModel", "the classes have errors and are not used",
                                CIM_ERR_FAILED);
    }
    for (const Repository::CimNamespace& nameSpace : loaded.repository->namespaces()) {
        if (nameSpace.classes().empty())
            messages << "tesk: warning: the namespace " << nameSpace.name() << " has no class\n";
    }
    return loaded.repository;
}

TSKSmrPtr<Repository::ClassRepository> loadModel(const ModelOptions& options) {
    return loadModel(readSettings(options, std::cerr), std::cerr);
}

std::string contentText(const Repository::ClassRepository& repository) {
    return Base::counted(repository.countClasses(), "class", "classes") + " in " +
           Base::counted(repository.namespaces().size(), "namespace", "namespaces");
}

}  // namespace Commands

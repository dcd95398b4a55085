#include "ObjectManager/Commands/Model.h"

#include <algorithm>
#include <iostream>
#include <utility>
#include <vector>

#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Configuration/SettingValues.h"
#include "ObjectManager/Configuration/SettingsReader.h"
#include "ObjectManager/Host/InstallationPaths.h"
#include "ObjectManager/Loading/RepositoryLoader.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

std::vector<Loading::NamespaceSource> sampleModel() {
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

// A model may have any number of such classes.
void warnOfOmittedClasses(const Repository::CimNamespace& nameSpace, std::ostream& messages) {
    constexpr std::size_t kMaxShown = 20;
    const std::vector<Repository::OmittedClass>& omitted = nameSpace.omittedClasses();
    for (std::size_t index = 0; index < std::min(omitted.size(), kMaxShown); ++index)
        messages << "tesk: warning: the class " << nameSpace.name() << ":"
                 << Base::logText(omitted[index].name) << " is left out: " << omitted[index].reason
                 << "\n";
    if (omitted.size() > kMaxShown)
        messages << "tesk: warning: " << nameSpace.name() << ": "
                 << Base::counted(omitted.size() - kMaxShown, "more class is", "more classes are")
                 << " left out likewise\n";
}

// In place of the namespaces of the configuration.
void useServer(const ModelOptions& options, Configuration::Settings& settings) {
    settings.servers = {serverSource(options.server)};
    settings.namespaces.clear();
    for (const std::string& text : options.namespaces)
        settings.namespaces.push_back(Configuration::parseServerNamespaceOption(text));
    if (settings.namespaces.empty())
        settings.namespaces.push_back({.name = ""});
    for (Loading::NamespaceSource& source : settings.namespaces) {
        source.server = kServerOption;
        source.patterns = options.serverClasses;
    }
}

void useFiles(const ModelOptions& options, Configuration::Settings& settings) {
    if (!options.namespaces.empty())
        settings.namespaces.clear();
    for (const std::string& text : options.namespaces)
        settings.namespaces.push_back(Configuration::parseNamespaceOption(text));
}

}  // namespace

Configuration::Settings readSettings(const ModelOptions& options, std::ostream& messages) {
    Configuration::Settings settings = readConfiguration(options, messages);
    if (options.server.url.empty())
        useFiles(options, settings);
    else
        useServer(options, settings);
    settings.includePath.insert(settings.includePath.end(), options.includePath.begin(),
                                options.includePath.end());
    if (settings.namespaces.empty()) {
        settings.namespaces = sampleModel();
        // Its namespaces share files.
        settings.includePath.push_back(Host::InstallationPaths::ofThisProgram().models);
    }
    for (Loading::ServerSource& server : settings.servers)
        messages << complete(server.options);
    return settings;
}

Loading::LoadedRepository loadModel(const Configuration::Settings& settings, std::ostream& messages,
                                    const Loading::LoadOptions& how) {
    Loading::LoadedRepository loaded = Loading::loadSources({.namespaces = settings.namespaces,
                                                             .servers = settings.servers,
                                                             .includePath = settings.includePath},
                                                            settings.repository, how);
    for (const Mof::Diagnostic& diagnostic : loaded.diagnostics)
        messages << diagnostic.toString();
    if (!loaded.repository) {
        throw TeskBaseException("Commands::loadModel", "the classes have errors and are not used",
                                CIM_ERR_FAILED);
    }
    for (const Repository::CimNamespace& nameSpace : loaded.repository->namespaces()) {
        warnOfOmittedClasses(nameSpace, messages);
        if (nameSpace.classes().empty())
            messages << "tesk: warning: the namespace " << nameSpace.name() << " has no class\n";
    }
    return loaded;
}

TSKSmrPtr<Repository::ClassRepository> loadModel(const ModelOptions& options) {
    ModelOptions complete = options;
    askForPassword(complete.server);
    return loadModel(readSettings(complete, std::cerr), std::cerr).repository;
}

std::string contentText(const Repository::ClassRepository& repository) {
    return Base::counted(repository.countClasses(), "class", "classes") + " in " +
           Base::counted(repository.namespaces().size(), "namespace", "namespaces");
}

}  // namespace Commands

#include "ObjectManager/Commands/ModelOptions.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "ObjectManager/Commands/NamespaceOption.h"
#include "ObjectManager/Host/ProgramFolders.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

std::vector<NamespaceSource> sampleModel() {
    const std::filesystem::path models = ProgramFolders::ofThisProgram().models;
    return {{.name = "root/cimv2", .paths = {models / "cimv2/cimv2.mof"}},
            {.name = "interop", .paths = {models / "interop/interop.mof"}}};
}

}  // namespace

void addModelOptions(CLI::App& command, ModelOptions& options) {
    command
        .add_option("--namespace", options.namespaces,
                    "A namespace and its classes: a MOF file with what it includes, or a folder. "
                    "May be given again; without any, the sample model is used")
        ->check(faultOfNamespaceOption)
        ->type_name("NAME=PATH")
        ->allow_extra_args(false);
    command.add_option("--config", options.configuration, "The configuration file")
        ->type_name("FILE");
}

std::vector<NamespaceSource> sourcesOf(const ModelOptions& options) {
    if (options.namespaces.empty())
        return sampleModel();
    std::vector<NamespaceSource> sources;
    for (const std::string& text : options.namespaces)
        sources.push_back(parseNamespaceOption(text));
    return sources;
}

TSKSmrPtr<ClassRepository> loadModel(const ModelOptions& options) {
    const LoadedRepository loaded = loadRepository(sourcesOf(options), {}, {});
    for (const Mof::Diagnostic& diagnostic : loaded.diagnostics)
        std::cerr << diagnostic.toString();
    if (!loaded.repository) {
        throw TeskBaseException("loadModel", "the classes have errors and are not used",
                                CIM_ERR_FAILED);
    }
    for (const CimNamespace& nameSpace : loaded.repository->namespaces()) {
        if (nameSpace.classes().empty())
            std::cerr << "tesk: warning: the namespace " << nameSpace.name() << " has no class\n";
    }
    return loaded.repository;
}

}  // namespace Commands

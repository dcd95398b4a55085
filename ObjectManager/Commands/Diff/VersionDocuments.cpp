#include "ObjectManager/Commands/Diff/VersionDocuments.h"

#include <cstddef>
#include <filesystem>
#include <system_error>

#include "ObjectManager/Base/Files.h"
#include "ObjectManager/Base/Text.h"
#include "ObjectManager/Commands/DocumentRequest.h"
#include "ObjectManager/Commands/Model.h"
#include "ObjectManager/Commands/ParallelWork.h"
#include "ObjectManager/Host/InstallationPaths.h"
#include "ObjectManager/Host/MemoryClient.h"
#include "ObjectManager/Host/ProviderHost.h"
#include "Platform/Util/TeskBaseException.h"
#include "Platform/Util/TeskStatusCode.h"

namespace Commands {

namespace {

namespace fs = std::filesystem;

constexpr const char* kExtension = ".wsdl";

TeskBaseException unusable(const std::string& reason) {
    return {"Commands::readVersion", TSKString(reason), CIM_ERR_FAILED};
}

std::string readDocument(const fs::path& file) {
    // Exports of any version and any limit.
    constexpr std::size_t kMaxBytes = std::size_t{256} << 20U;
    try {
        return Base::readFile(file.string(), kMaxBytes);
    } catch (const std::system_error& error) {
        throw unusable(file.string() + " cannot be read: " + error.code().message());
    }
}

// Empty for a directory without documents.
VersionDocuments readExport(const fs::path& directory) {
    VersionDocuments documents;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(directory)) {
        const fs::path& file = entry.path();
        if (file.extension() != kExtension || !entry.is_regular_file())
            continue;
        const fs::path nameSpace = file.parent_path().lexically_relative(directory);
        documents[{nameSpace.generic_string(), file.stem().string()}] = readDocument(file);
    }
    return documents;
}

// Makes all documents: the providers know one repository at a time.
VersionDocuments makeDocuments(const ModelOptions& model, const VersionOptions& options) {
    struct Making {
        const Repository::CimNamespace* nameSpace;
        TSKString document;
        std::string* target;
    };
    const TSKSmrPtr<Repository::ClassRepository> repository = loadModel(model);
    const Host::ProviderHost host(repository, TSKSmrPtr<Host::LocalAuthenticator>::make(),
                                  Host::InstallationPaths::ofThisProgram().installation);
    const Host::MemoryClient client(host.manager(), {.host = options.host});
    VersionDocuments documents;
    std::vector<Making> makings;
    for (const Repository::CimNamespace& nameSpace : repository->namespaces()) {
        for (const TSKSmrPtr<Repository::CimClass>& cimClass : nameSpace.classes()) {
            std::string& target = documents[{nameSpace.name().data(), cimClass->name().data()}];
            makings.push_back({&nameSpace, cimClass->name() + kExtension, &target});
        }
    }
    workInParallel(makings.size(), options.jobs, [&](std::size_t number) {
        const Making& making = makings[number];
        const RequestedDocument made = requestDocument(client, *making.nameSpace, making.document);
        if (!made.response)
            throw unusable(made.failure);
        *making.target = made.response->body();
    });
    return documents;
}

}  // namespace

VersionDocuments readVersion(const std::string& argument, const VersionOptions& options) {
    std::error_code error;
    const bool isPath = fs::exists(argument, error);
    if (isPath && fs::is_directory(argument)) {
        VersionDocuments exported = readExport(argument);
        if (!exported.empty())
            return exported;
    }
    const bool isNamed = !isPath && argument.find('=') != std::string::npos;
    if (!isPath && !isNamed)
        throw unusable(Base::quoted(argument) + " is not there");
    ModelOptions model;
    model.namespaces = {isNamed ? argument : "root/cimv2=" + argument};
    model.includePath = options.includePath;
    return makeDocuments(model, options);
}

}  // namespace Commands
